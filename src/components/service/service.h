#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "core/contracts/console_services.h"
#include "core/contracts/host.h"
#include "core/contracts/service_manager.h"

namespace zrl::service {

// How a program ended, and what it wrote.
struct ProgramResult {
  int exit_status = 0;
  std::string text;  // standard output and error together, in the order of writing; any bytes
};

// Runs a program to its end, without a shell, and blocks meanwhile. Raises zrl::Error if the program cannot
// be started or takes longer than the given time. The component has no code for this, because starting
// programs is the host's business.
using RunProgram = std::function<ProgramResult(const ProgramStart&, std::chrono::milliseconds)>;

// The services of systemd. They are asked for over the system bus (the environment variable
// DBUS_SYSTEM_BUS_ADDRESS names another bus) and, if that fails for any reason but an unknown service, by the
// program "systemctl" through `run`. If both fail, the error has the number of the first failure and the
// texts of both. The service "Mirvan" is the unit "mirvan.service", its letters in any case.
//
// `time_limit` is how long one call may take on the bus, and then again by the program. Calls block without
// serving events. The object does not use the console and may outlive it; it owns a copy of `run`.
std::shared_ptr<ServiceManager> make(ConsoleServices& console, RunProgram run,
                                     std::chrono::milliseconds time_limit = std::chrono::seconds(3));

}  // namespace zrl::service
