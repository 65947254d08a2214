#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zrl {

// What the machine's service manager reports about a service, in its own words, which are not translated. A
// service that it does not know has empty texts.
struct ServiceState {
  std::string status;            // "active", "failed", or why it cannot be started, "masked" for example
  std::string state;             // in more detail: "running", "dead", "stop-sigterm"
  std::uint32_t checkpoint = 0;  // not 0 while the service is being started or stopped
  std::int64_t since = 0;        // when the state began, in seconds since 1970 (UTC); 0 if that is not known
};

// Starts, stops and inspects the services of this machine. The case of a service's name is ignored.
//
// Each call asks the manager anew and returns within seconds, whether it answers or not; it raises
// zrl::Error if the manager does not answer or refuses. The texts of errors distinguish a service that
// does not exist from a permission that the console lacks.
class ServiceManager {
 public:
  static constexpr std::string_view program_id = "winmgmts:win32_service";
  static constexpr int no_such_service = 1060;

  virtual ~ServiceManager() = default;

  virtual ServiceState inspect(std::string_view service) = 0;

  // Return when the manager has accepted the order, not when it is done; inspect() shows the progress. A
  // service that is in the wanted state already stays as it is. One that the manager does not know raises
  // the error number `no_such_service`.
  virtual void start(std::string_view service) = 0;
  virtual void stop(std::string_view service) = 0;
};

}  // namespace zrl
