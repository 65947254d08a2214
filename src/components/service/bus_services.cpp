#include "components/service/bus_services.h"

#include <functional>

#include "components/service/system_bus.h"

namespace zrl::service {

namespace {

constexpr const char* answer = "answer of the service manager";

// Calls `take` for each structure of the array that the reply holds, until it returns true.
void each_struct(const BusMessage& reply, const char* contents, const std::function<bool()>& take) {
  const std::string structure = "(" + std::string(contents) + ")";
  check_bus(sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_ARRAY, structure.c_str()), answer);
  for (;;) {
    const int entered = sd_bus_message_enter_container(reply.get(), SD_BUS_TYPE_STRUCT, contents);
    check_bus(entered, answer);
    if (entered == 0 || take()) return;
    check_bus(sd_bus_message_exit_container(reply.get()), answer);
  }
}

Unit read_unit(const BusMessage& reply) {
  Unit unit;
  unit.name = read_text(reply);
  read_text(reply);  // its description
  unit.load = read_text(reply);
  unit.active = read_text(reply);
  unit.sub = read_text(reply);
  read_text(reply);  // the unit that it follows
  unit.path = read_text(reply, SD_BUS_TYPE_OBJECT_PATH);
  std::uint32_t job = 0;
  check_bus(sd_bus_message_read_basic(reply.get(), SD_BUS_TYPE_UINT32, &job), answer);
  unit.has_job = job != 0;
  read_text(reply);  // the job's type
  read_text(reply, SD_BUS_TYPE_OBJECT_PATH);
  return unit;
}

// The first unit of the reply that belongs to the service and exists.
Unit find_unit(const BusMessage& reply, std::string_view service) {
  Unit found;
  each_struct(reply, "ssssssouso", [&] {
    Unit unit = read_unit(reply);
    if (!is_unit_of(service, unit.name) || !unit.exists()) return false;
    found = std::move(unit);
    return true;
  });
  return found;
}

Unit loaded_unit(const SystemBus& bus, std::string_view service) {
  const BusMessage call = bus.new_call("ListUnitsByPatterns");
  append_texts(call, {});
  append_texts(call, {unit_pattern(service)});
  return find_unit(bus.call(call), service);
}

// The name of the first unit file that belongs to the service.
std::string unit_file(const SystemBus& bus, std::string_view service) {
  const BusMessage call = bus.new_call("ListUnitFilesByPatterns");
  append_texts(call, {});
  append_texts(call, {unit_pattern(service)});
  const BusMessage reply = bus.call(call);
  std::string found;
  each_struct(reply, "ss", [&] {
    const std::string path = read_text(reply);
    read_text(reply);  // whether it is enabled
    const std::string name = path.substr(path.rfind('/') + 1);
    if (!is_unit_of(service, name)) return false;
    found = name;
    return true;
  });
  return found;
}

// The manager unloads stopped units, but loads them again when they are asked for by name. For an alias it
// answers with the unit's own name.
Unit unit_of(const SystemBus& bus, std::string_view service) {
  if (!can_be_unit(service)) return {};
  Unit unit = loaded_unit(bus, service);
  if (unit.exists()) return unit;
  const std::string name = unit_file(bus, service);
  if (name.empty()) return {};
  const BusMessage call = bus.new_call("ListUnitsByNames");
  append_texts(call, {name});
  const BusMessage reply = bus.call(call);
  each_struct(reply, "ssssssouso", [&] {
    unit = read_unit(reply);
    return true;
  });
  return unit;
}

}  // namespace

ServiceState BusServices::inspect(std::string_view service) {
  const SystemBus bus(time_limit_);
  Unit unit = unit_of(bus, service);
  if (unit.exists()) unit.since = bus.read_time(unit.path, "StateChangeTimestamp");
  return state_of(unit);
}

void BusServices::order(const char* method, std::string_view service) const {
  const SystemBus bus(time_limit_);
  const Unit unit = unit_of(bus, service);
  if (!unit.exists()) throw unknown_service(service);
  const BusMessage call = bus.new_call(method);
  check_bus(sd_bus_message_append(call.get(), "ss", unit.name.c_str(), "replace"), method);
  bus.call(call);
}

}  // namespace zrl::service
