// Scripts: any text is refused or runs to an end under small limits, and leaves no memory behind.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "scripting/vbscript/engine.h"

namespace {

class SilentHost : public zrl::vbs::EngineHost {
 public:
  int msg_box(const std::string&, int, const std::string&) override { return 1; }
  std::optional<std::string> input_box(const std::string&, const std::string&, const std::string&) override {
    return "x";
  }
  void echo(const std::string&) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  SilentHost host;
  zrl::vbs::Limits limits;
  limits.call_time = std::chrono::milliseconds(50);
  limits.memory = std::size_t{1} << 20;
  limits.string_units = 20'000;
  limits.call_depth = 100;
  zrl::vbs::Engine engine(host, limits, true);
  const std::size_t before = engine.memory_used();
  try {
    engine.add_code("fuzz", {reinterpret_cast<const char*>(data), size});
    (void)engine.call("f", "argument");
  } catch (const zrl::vbs::ScriptError& error) {
    if (error.description.empty() && error.number < 1000 && error.source.empty()) std::abort();
  } catch (const zrl::vbs::ScriptQuit&) {  // as a script may
  }
  engine.reset();
  if (engine.memory_used() != before) std::abort();
  return 0;
}
