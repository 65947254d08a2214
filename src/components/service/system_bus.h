#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

namespace zrl::service {

struct BusMessageUnref {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageUnref>;

// A connection to the system bus for a few calls on systemd's manager, all of which must be done
// within the time limit. Failures raise zrl::Error.
class SystemBus {
 public:
  explicit SystemBus(std::chrono::milliseconds time_limit);

  BusMessage new_call(const char* method) const;
  BusMessage call(const BusMessage& message) const;
  // A moment that the manager notes of a unit, in seconds since 1970; 0 if it does not tell.
  std::int64_t read_time(const std::string& unit_path, const char* property) const;

 private:
  struct Close {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  };

  void connect();
  std::uint64_t microseconds_left() const;

  std::chrono::steady_clock::time_point end_;
  std::unique_ptr<sd_bus, Close> bus_;
};

// Raises if a function of the bus library returned an error.
void check_bus(int result, const char* what);

void append_texts(const BusMessage& message, const std::vector<std::string>& texts);
std::string read_text(const BusMessage& message, char type = SD_BUS_TYPE_STRING);

}  // namespace zrl::service
