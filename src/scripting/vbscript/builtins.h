#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "scripting/vbscript/symbols.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

class Machine;

// The arguments of a call; variables are looked through.
class Arguments {
 public:
  Arguments(Value* first, std::size_t count) : first_(first), count_(count) {}
  std::size_t size() const { return count_; }
  Value& operator[](std::size_t i) const { return first_[i].get(); }
  // Whether there is an argument i that was not left out.
  bool has(std::size_t i) const { return i < count_ && !(*this)[i].is_missing(); }
  Value* raw() const { return first_; }

 private:
  Value* first_;
  std::size_t count_;
};

using BuiltinFunction = Value (*)(Machine& machine, Arguments arguments);

inline constexpr std::uint8_t any_number = 255;

struct Builtin {
  const char* name;  // as errors show it
  std::uint8_t least;
  std::uint8_t most;  // or any_number
  BuiltinFunction function;
};

struct BuiltinConstant {
  const char* name;
  Type type;
  std::int64_t number;
  const char16_t* text;  // of strings; length in `number`
};

// Whether argument i, where there is one, is vbTextCompare. Raises 5 for what is no way to compare.
bool ignores_case(Machine& machine, Arguments arguments, std::size_t i);
// In lower case; a copy on the heap's account.
HeapText lower_text(Machine& machine, std::u16string_view text);

// The tables of functions, one a topic.
std::span<const Builtin> string_functions();
std::span<const Builtin> byte_functions();
std::span<const Builtin> math_functions();
std::span<const Builtin> conversion_functions();
std::span<const Builtin> type_functions();
std::span<const Builtin> array_functions();
std::span<const Builtin> date_functions();
std::span<const Builtin> format_functions();
std::span<const Builtin> host_functions();
std::span<const BuiltinConstant> builtin_constants();

// Names that the engine brings, by symbol.
class Builtins {
 public:
  enum class Kind : std::uint8_t { none, function, constant, execute, execute_global, eval };
  struct Entry {
    Kind kind = Kind::none;
    std::uint32_t index = 0;
  };
  explicit Builtins(Symbols& symbols, bool with_wscript);
  Entry find(SymbolId canonical) const { return canonical < names_.size() ? names_[canonical] : Entry(); }
  const Builtin& function(std::uint32_t index) const { return functions_[index]; }
  const BuiltinConstant& constant(std::uint32_t index) const { return builtin_constants()[index]; }

 private:
  void add(Symbols& symbols, const char* name, Kind kind, std::uint32_t index);
  std::vector<Builtin> functions_;
  std::vector<Entry> names_;
};

}  // namespace zrl::vbs
