#pragma once

#include "components/service/service.h"
#include "components/service/unit.h"

namespace zrl::service {

// systemd's services by the program "systemctl", which has other ways to reach the manager: as root, it needs
// no bus.
class SystemctlServices : public ServiceManager {
 public:
  SystemctlServices(RunProgram run, std::chrono::milliseconds time_limit)
      : run_(std::move(run)), time_limit_(time_limit) {}

  ServiceState inspect(std::string_view service) override { return state_of(unit_of(service)); }
  void start(std::string_view service) override { order("start", service); }
  void stop(std::string_view service) override { order("stop", service); }

 private:
  Unit unit_of(std::string_view service) const;
  void order(const char* verb, std::string_view service) const;
  std::string run(std::vector<std::string> words) const;

  RunProgram run_;
  std::chrono::milliseconds time_limit_;
};

}  // namespace zrl::service
