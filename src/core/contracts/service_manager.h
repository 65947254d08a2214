#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

// What the machine's service manager tells of a service, in its own words. A service that it does
// not know has empty texts.
struct ServiceState {
  std::string status;            // "active", "failed"; why it cannot be started, "masked" say
  std::string state;             // closer: "running", "dead", "stop-sigterm"
  std::uint32_t checkpoint = 0;  // not 0 while the service is being started or stopped
};

// Starts, stops and watches the services of this machine. Services are named without regard to
// case.
//
// Each call asks the manager anew and is back within seconds, whether it answers or not; it raises
// zrl::Error if it does not, or refuses. The texts of errors tell apart that there is no such
// service and that the console lacks the permission.
class ServiceManager {
 public:
  static constexpr std::string_view program_id = "winmgmts:win32_service";
  static constexpr int no_such_service = 1060;

  virtual ~ServiceManager() = default;

  virtual ServiceState inspect(std::string_view service) = 0;

  // Return when the manager has taken the order on, which takes its time; inspect() tells how far
  // it is. A service that is there already stays as it is. One that the manager does not know raises
  // error `no_such_service`.
  virtual void start(std::string_view service) = 0;
  virtual void stop(std::string_view service) = 0;
};

}  // namespace zrl
