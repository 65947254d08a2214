#include "components/checks/check_components.h"

namespace zrl {

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

std::function<std::shared_ptr<PluginHost>()> make_plugin_transport_factory(
    const ComponentRegistry& components) {
  return [&components] { return std::make_shared<PluginTransport>(components); };
}

}  // namespace zrl
