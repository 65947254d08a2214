#include "components/checks/checks.h"

namespace zrl::checks {

namespace {

class PluginTransport : public PluginHost {
 public:
  explicit PluginTransport(const ComponentRegistry& components) : components_(components) {}

  std::string call_module(std::string_view check, std::string_view position, std::string_view command,
                          std::string_view text) override {
    const auto plugin = components_.create<CheckPlugin>(check);
    if (plugin->info() <= 0 || !plugin->initmodule({})) return {};
    plugin->send(position, command, text);
    return plugin->send();
  }

 private:
  const ComponentRegistry& components_;
};

}  // namespace

std::shared_ptr<PluginHost> make_plugin_host(ConsoleServices& console) {
  return std::make_shared<PluginTransport>(console.components());
}

}  // namespace zrl::checks
