#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "core/contracts/console_services.h"
#include "core/contracts/host.h"
#include "core/contracts/service_manager.h"

namespace zrl::service {

// What a program wrote on its standard output and error, and how it ended.
struct ProgramResult {
  int exit_status = 0;
  std::string text;
};

// Runs a program to its end, without a shell; raises zrl::Error if it cannot be started, or takes
// longer than this.
using RunProgram = std::function<ProgramResult(const ProgramStart&, std::chrono::milliseconds)>;

// The services of systemd, asked over the system bus (DBUS_SYSTEM_BUS_ADDRESS names another one), and
// by the program "systemctl" if that fails. The service "Mirvan" is the unit "mirvan.service", its
// letters in any case.
//
// `time_limit` is how long one call may take on the bus, and then again by the program.
std::shared_ptr<ServiceManager> make(ConsoleServices& console, RunProgram run,
                                     std::chrono::milliseconds time_limit = std::chrono::seconds(3));

}  // namespace zrl::service
