#include "components/service/bus_services.h"
#include "components/service/service.h"
#include "components/service/systemctl_services.h"

namespace zrl::service {

namespace {

// Uses the bus, and the program if the bus fails for any other reason than an unknown service.
class Services : public ServiceManager {
 public:
  Services(RunProgram run, std::chrono::milliseconds time_limit)
      : bus_(time_limit), systemctl_(std::move(run), time_limit) {}

  ServiceState inspect(std::string_view service) override {
    ServiceState state;
    try_both([&](ServiceManager& manager) { state = manager.inspect(service); });
    return state;
  }
  void start(std::string_view service) override {
    try_both([&](ServiceManager& manager) { manager.start(service); });
  }
  void stop(std::string_view service) override {
    try_both([&](ServiceManager& manager) { manager.stop(service); });
  }

 private:
  void try_both(const std::function<void(ServiceManager&)>& action) {
    try {
      action(bus_);
    } catch (const Error& on_bus) {
      if (on_bus.number() == no_such_service) throw;
      try {
        action(systemctl_);
      } catch (const Error& by_program) {
        throw Error(on_bus.number(), std::string(on_bus.what()) + "; systemctl: " + by_program.what());
      }
    }
  }

  BusServices bus_;
  SystemctlServices systemctl_;
};

}  // namespace

std::shared_ptr<ServiceManager> make(ConsoleServices&, RunProgram run, std::chrono::milliseconds time_limit) {
  return std::make_shared<Services>(std::move(run), time_limit);
}

}  // namespace zrl::service
