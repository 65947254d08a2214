#pragma once

#include <chrono>
#include <optional>

#include "components/service/unit.h"

namespace zrl::service {

class SystemBus;

// systemd's services over the system bus. Every call opens its own connection, so that a restart of the bus
// or of the manager does no harm.
class BusServices : public ServiceManager {
 public:
  explicit BusServices(std::chrono::milliseconds time_limit) : time_limit_(time_limit) {}

  ServiceState inspect(std::string_view service) override;
  void start(std::string_view service) override { order("StartUnit", service); }
  void stop(std::string_view service) override { order("StopUnit", service); }

 private:
  void order(const char* method, std::string_view service) const;

  std::chrono::milliseconds time_limit_;
};

}  // namespace zrl::service
