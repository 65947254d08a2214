#include "components/service/system_bus.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "components/service/unit.h"
#include "core/text/error.h"

namespace zrl::service {

namespace {

constexpr const char* manager_name = "org.freedesktop.systemd1";
constexpr const char* manager_path = "/org/freedesktop/systemd1";
constexpr const char* manager_interface = "org.freedesktop.systemd1.Manager";

struct BusError {
  BusError() = default;
  BusError(const BusError&) = delete;
  BusError& operator=(const BusError&) = delete;
  ~BusError() { sd_bus_error_free(&error); }

  bool denies() const {
    return sd_bus_error_has_names(&error, SD_BUS_ERROR_ACCESS_DENIED,
                                  SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED) != 0;
  }

  sd_bus_error error = SD_BUS_ERROR_NULL;
};

}  // namespace

void check_bus(int result, const char* what) {
  if (result < 0) throw Error(-result, std::string(what) + ": " + std::strerror(-result));
}

SystemBus::SystemBus(std::chrono::milliseconds time_limit)
    : end_(std::chrono::steady_clock::now() + time_limit) {
  sd_bus* bus = nullptr;
  check_bus(sd_bus_open_system(&bus), "no system bus");
  bus_.reset(bus);
  connect();
}

// By default the library waits 90 s for a bus that does not complete the authentication.
void SystemBus::connect() {
  for (;;) {
    const int ready = sd_bus_is_ready(bus_.get());
    check_bus(ready, "no system bus");
    if (ready > 0) return;
    const int progress = sd_bus_process(bus_.get(), nullptr);
    check_bus(progress, "no system bus");
    if (progress > 0) continue;
    if (std::chrono::steady_clock::now() >= end_) check_bus(-ETIMEDOUT, "no system bus");
    check_bus(sd_bus_wait(bus_.get(), microseconds_left()), "no system bus");
  }
}

// Never 0, which means the library's default time limit.
std::uint64_t SystemBus::microseconds_left() const {
  using std::chrono::microseconds;
  const auto left = std::chrono::duration_cast<microseconds>(end_ - std::chrono::steady_clock::now());
  return static_cast<std::uint64_t>(std::max(left, microseconds(1)).count());
}

BusMessage SystemBus::new_call(const char* method) const {
  sd_bus_message* message = nullptr;
  check_bus(sd_bus_message_new_method_call(bus_.get(), &message, manager_name, manager_path,
                                           manager_interface, method),
            method);
  BusMessage result(message);
  check_bus(sd_bus_message_set_auto_start(message, 0), method);
  return result;
}

BusMessage SystemBus::call(const BusMessage& message) const {
  BusError failure;
  sd_bus_message* reply = nullptr;
  const int result = sd_bus_call(bus_.get(), message.get(), microseconds_left(), &failure.error, &reply);
  if (result >= 0) return BusMessage(reply);
  const char* told = failure.error.message == nullptr ? std::strerror(-result) : failure.error.message;
  const std::string method = sd_bus_message_get_member(message.get());
  throw Error(-result, (failure.denies() ? "no permission: " : "") + method + ": " + excerpt(told));
}

std::int64_t SystemBus::read_time(const std::string& unit_path, const char* property) const {
  constexpr std::uint64_t microseconds = 1'000'000;
  sd_bus_message* message = nullptr;
  check_bus(sd_bus_message_new_method_call(bus_.get(), &message, manager_name, unit_path.c_str(),
                                           "org.freedesktop.DBus.Properties", "Get"),
            property);
  const BusMessage request(message);
  check_bus(sd_bus_message_append(message, "ss", "org.freedesktop.systemd1.Unit", property), property);
  std::uint64_t time = 0;
  try {
    const BusMessage reply = call(request);
    if (sd_bus_message_read(reply.get(), "v", "t", &time) < 0) return 0;
  } catch (const Error&) {  // the state is worth more than its time
    return 0;
  }
  return static_cast<std::int64_t>(time / microseconds);
}

void append_texts(const BusMessage& message, const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  check_bus(sd_bus_message_append_strv(message.get(), pointers.data()), "question to the service manager");
}

std::string read_text(const BusMessage& message, char type) {
  const char* text = nullptr;
  check_bus(sd_bus_message_read_basic(message.get(), type, static_cast<void*>(&text)),
            "answer of the service manager");
  return text;
}

}  // namespace zrl::service
