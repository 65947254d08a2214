#include "scripting/vbscript/objects/native.h"

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

bool equals(std::u16string_view name, std::string_view ascii_name) {
  return name.size() == ascii_name.size() &&
         std::equal(name.begin(), name.end(), ascii_name.begin(), [](char16_t a, char b) {
           return a == static_cast<unsigned char>(b);
         });
}

}  // namespace

Value use_member(Machine& machine, NativeObject& object, std::u16string_view lower_name, Use use,
                 Arguments arguments, std::u16string_view shown_name) {
  for (const NativeMember& member : object.members()) {
    const bool found = lower_name.empty() ? member.is_default : equals(lower_name, member.name);
    if (!found) continue;
    const std::size_t values = use == Use::get ? 0 : 1;
    if (use != Use::get && !member.writable) raise(error::no_such_member, std::u16string(shown_name));
    const std::size_t count = arguments.size() - values;
    if (count < member.least || count > member.most) {
      raise(error::argument_count, std::u16string(shown_name));
    }
    return member.function(machine, object, use, arguments);
  }
  raise(error::no_such_member, std::u16string(shown_name));
}

}  // namespace zrl::vbs
