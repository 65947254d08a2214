#include "scripting/vbscript/objects/wscript_object.h"

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// What a script was given by whoever started it: nothing.
class NoArguments final : public NativeObject {
 public:
  std::string_view type_name() const override { return "Object"; }
  std::span<const NativeMember> members() const override;
  Value enumerate(Machine& machine) override;
};

Value echo(Machine& machine, NativeObject&, Use, Arguments arguments) {
  std::u16string line;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) line += u' ';
    line += arguments[i].is(Type::null) ? u"null" : Text(machine, arguments[i]).view();
  }
  machine.host().echo(to_utf8(line));
  return {};
}

Value quit(Machine& machine, NativeObject&, Use, Arguments arguments) {
  Failure failure;
  failure.number = arguments.has(0) ? static_cast<std::int32_t>(to_long(machine, arguments[0])) : 0;
  failure.final = failure.quit = true;
  throw failure;
}

Value sleep(Machine& machine, NativeObject&, Use, Arguments arguments) {
  const std::int64_t milliseconds = to_long(machine, arguments[0]);
  if (milliseconds < 0) raise(error::invalid_call);
  machine.sleep(std::chrono::milliseconds(milliseconds));
  return {};
}

Value script_name(Machine& machine, NativeObject&, Use, Arguments) {
  const std::u16string name = to_utf16(machine.running_text());
  const std::size_t slash = name.find_last_of(u"/\\");
  return Value(machine.heap.string(slash == name.npos ? name : name.substr(slash + 1)));
}

Value arguments_list(Machine& machine, NativeObject&, Use, Arguments) {
  return Value(Ref<Object>(machine.heap.make<NoArguments>().get()));
}

constexpr NativeMember wscript_members[] = {
    {"echo", 0, any_number, false, false, echo},
    {"quit", 0, 1, false, false, quit},
    {"sleep", 1, 1, false, false, sleep},
    {"scriptname", 0, 0, false, false, script_name},
    {"arguments", 0, 0, false, false, arguments_list},
};

Value no_item(Machine&, NativeObject&, Use, Arguments) {
  raise(error::subscript);
}

Value no_count(Machine&, NativeObject&, Use, Arguments) {
  return Value::long_integer(0);
}

Value not_there(Machine&, NativeObject&, Use, Arguments) {
  return Value::boolean(false);
}

Value itself(Machine&, NativeObject& object, Use, Arguments) {
  return Value(Ref<Object>(&object));
}

constexpr NativeMember argument_members[] = {
    {"item", 1, 1, false, true, no_item},     {"count", 0, 0, false, false, no_count},
    {"length", 0, 0, false, false, no_count}, {"exists", 1, 1, false, false, not_there},
    {"named", 0, 0, false, false, itself},    {"unnamed", 0, 0, false, false, itself},
};

}  // namespace

std::span<const NativeMember> NoArguments::members() const {
  return argument_members;
}

Value NoArguments::enumerate(Machine& machine) {
  return Value(make_list(machine.heap, 0));
}

std::span<const NativeMember> WScriptObject::members() const {
  return wscript_members;
}

}  // namespace zrl::vbs
