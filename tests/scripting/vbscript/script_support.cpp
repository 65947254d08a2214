#include "scripting/vbscript/script_support.h"

#include <algorithm>

namespace zrl::vbs::test {

std::string description_of(const ScriptError& error) {
  const std::string kind = error.kind == ScriptError::Kind::compilation ? "compile error " : "error ";
  return kind + std::to_string(error.number) + " (" + std::to_string(error.line) + ", " +
         std::to_string(error.column) + "): " + error.description;
}

std::vector<std::string> output_of(std::string_view script, const Limits& limits, bool with_services) {
  ScriptHost host;
  host.with_services = with_services;
  {
    Engine engine(host, limits, true);
    try {
      engine.add_code("test", script);
    } catch (const ScriptError& error) {
      host.lines.push_back(description_of(error));
    } catch (const ScriptQuit& quit) {
      host.lines.push_back("quit " + std::to_string(quit.status));
    }
  }
  return host.lines;
}

}  // namespace zrl::vbs::test
