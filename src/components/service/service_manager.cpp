#include "components/service/bus_services.h"
#include "components/service/service_components.h"
#include "components/service/systemctl_services.h"

namespace zrl {

namespace {

// The bus, and the program where that fails for any other reason than that there is no such service.
class Services : public ServiceManager {
 public:
  explicit Services(ServiceSettings settings) : bus_(settings.time_limit), systemctl_(std::move(settings)) {}

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

std::shared_ptr<ServiceManager> make_service_manager(ServiceSettings settings) {
  return std::make_shared<Services>(std::move(settings));
}

}  // namespace zrl
