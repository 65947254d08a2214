#include "scripting/vbscript/objects/err_object.h"

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// Above are the codes of the language's own errors only, which are negative.
constexpr std::int32_t most_number = 65535;

Value number(Machine& machine, NativeObject&, Use use, Arguments arguments) {
  ErrState& err = machine.err();
  if (use == Use::get) return Value::long_integer(err.number);
  err.number = static_cast<std::int32_t>(to_long(machine, arguments[0]));
  return {};
}

Value text_member(Machine& machine, std::u16string& text, Use use, Arguments arguments) {
  if (use == Use::get) return Value(machine.heap.string(text));
  text = std::u16string(Text(machine, arguments[0]));
  return {};
}

Value source(Machine& machine, NativeObject&, Use use, Arguments arguments) {
  machine.err().own_source |= use != Use::get;
  return text_member(machine, machine.err().source, use, arguments);
}

Value description(Machine& machine, NativeObject&, Use use, Arguments arguments) {
  machine.err().own_description |= use != Use::get;
  return text_member(machine, machine.err().description, use, arguments);
}

Value help_file(Machine& machine, NativeObject&, Use use, Arguments arguments) {
  return text_member(machine, machine.err().help_file, use, arguments);
}

Value help_context(Machine& machine, NativeObject&, Use use, Arguments arguments) {
  ErrState& err = machine.err();
  if (use == Use::get) return Value::long_integer(err.help_context);
  err.help_context = static_cast<std::int32_t>(to_long(machine, arguments[0]));
  return {};
}

Value clear(Machine& machine, NativeObject&, Use, Arguments) {
  machine.err() = {};
  return {};
}

// Raise number, source, description, help file, help context
Value raise_error(Machine& machine, NativeObject&, Use, Arguments arguments) {
  Failure failure;
  const ErrState& err = machine.err();
  failure.number = static_cast<std::int32_t>(to_long(machine, arguments[0]));
  if (failure.number == 0 || failure.number > most_number) raise(error::invalid_call);
  failure.number = number_of_system_code(failure.number);
  const auto text = [&](std::size_t i, const std::u16string& otherwise) {
    return arguments.has(i) ? std::u16string(Text(machine, arguments[i])) : otherwise;
  };
  // What is left out comes from Err where a script put it there, or where it is about the same error.
  const bool same = err.number == failure.number;
  const std::string_view known = error_text(failure.number);
  const std::u16string standard = to_utf16(known.empty() ? "Unknown runtime error" : known);
  const bool keeps_source = err.own_source || (same && !err.source.empty());
  const bool keeps_description = err.own_description || (same && !err.description.empty());
  failure.source = text(1, keeps_source ? err.source : u"Microsoft VBScript runtime error");
  failure.description = text(2, keeps_description ? err.description : standard);
  failure.own_source = err.own_source || arguments.has(1);
  failure.own_description = err.own_description || arguments.has(2);
  failure.help_file = text(3, u"");
  if (arguments.has(4)) failure.help_context = static_cast<std::int32_t>(to_long(machine, arguments[4]));
  throw failure;
}

constexpr NativeMember err_members[] = {
    {"number", 0, 0, true, true, number},
    {"source", 0, 0, true, false, source},
    {"description", 0, 0, true, false, description},
    {"helpfile", 0, 0, true, false, help_file},
    {"helpcontext", 0, 0, true, false, help_context},
    {"clear", 0, 0, false, false, clear},
    {"raise", 1, 5, false, false, raise_error},
};

}  // namespace

std::span<const NativeMember> ErrObject::members() const {
  return err_members;
}

}  // namespace zrl::vbs
