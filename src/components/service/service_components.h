#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "core/contracts/host.h"
#include "core/contracts/service_manager.h"

namespace zrl {

// What a program wrote on its standard output and error, and how it ended.
struct ProgramResult {
  int exit_status = 0;
  std::string text;
};

struct ServiceSettings {
  // Runs a program to its end, without a shell; raises zrl::Error if it cannot be started, or takes
  // longer than this.
  std::function<ProgramResult(const ProgramStart&, std::chrono::milliseconds)> run;
  // How long one call may take on the bus, and then again by "systemctl".
  std::chrono::milliseconds time_limit{3000};
};

// The services of systemd, asked over the system bus (DBUS_SYSTEM_BUS_ADDRESS names another one), and
// by the program "systemctl" if that fails. The service "Mirvan" is the unit "mirvan.service", its
// letters in any case.
std::shared_ptr<ServiceManager> make_service_manager(ServiceSettings settings);

}  // namespace zrl
