#include "scripting/vbscript/objects/wscript_object.h"

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

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

constexpr NativeMember wscript_members[] = {
    {"echo", 0, any_number, false, false, echo},
    {"quit", 0, 1, false, false, quit},
};

}  // namespace

std::span<const NativeMember> WScriptObject::members() const {
  return wscript_members;
}

}  // namespace zrl::vbs
