#include "scripting/vbscript/builtins.h"

#include <algorithm>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

bool ignores_case(Machine& machine, Arguments arguments, std::size_t i) {
  if (!arguments.has(i)) return false;
  const std::int64_t mode = to_long(machine, arguments[i]);
  if (mode != 0 && mode != 1) raise(error::invalid_call);
  return mode == 1;
}

HeapText lower_text(Machine& machine, std::u16string_view text) {
  HeapText result(text, HeapAllocator<char16_t>(machine.heap));
  std::transform(result.begin(), result.end(), result.begin(), to_lower);
  return result;
}

Builtins::Builtins(Symbols& symbols, bool with_wscript) {
  for (const auto& table :
       {string_functions(), byte_functions(), math_functions(), conversion_functions(), type_functions(),
        array_functions(), date_functions(), format_functions(), host_functions()}) {
    for (const Builtin& builtin : table) {
      if (!with_wscript && std::string_view(builtin.name) == "WScript") continue;
      functions_.push_back(builtin);
      add(symbols, builtin.name, Kind::function, static_cast<std::uint32_t>(functions_.size() - 1));
    }
  }
  std::uint32_t index = 0;
  for (const BuiltinConstant& constant : builtin_constants()) {
    add(symbols, constant.name, Kind::constant, index++);
  }
  add(symbols, "execute", Kind::execute, 0);
  add(symbols, "executeglobal", Kind::execute_global, 0);
  add(symbols, "eval", Kind::eval, 0);
}

void Builtins::add(Symbols& symbols, const char* name, Kind kind, std::uint32_t index) {
  const SymbolId symbol = symbols.intern(lower_cased(ascii(name)));
  if (names_.size() <= symbol) names_.resize(symbol + 1);
  names_[symbol] = {kind, index};
}

}  // namespace zrl::vbs
