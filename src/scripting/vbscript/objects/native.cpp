#include "scripting/vbscript/objects/native.h"

#include <algorithm>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

bool equals(std::u16string_view name, std::string_view ascii_name) {
  return name.size() == ascii_name.size() &&
         std::equal(name.begin(), name.end(), ascii_name.begin(),
                    [](char16_t a, char b) { return a == static_cast<unsigned char>(b); });
}

}  // namespace

const NativeMember* find_member(const NativeObject& object, std::u16string_view lower_name) {
  for (const NativeMember& member : object.members()) {
    if (lower_name.empty() ? member.is_default : equals(lower_name, member.name)) return &member;
  }
  return nullptr;
}

Value use_member(Machine& machine, NativeObject& object, std::u16string_view lower_name, Use use,
                 Arguments arguments, std::u16string_view shown_name) {
  const NativeMember* member = find_member(object, lower_name);
  const bool writes = use != Use::get;
  if (!member || (writes && !member->writable)) raise(error::no_such_member, std::u16string(shown_name));
  const std::size_t count = arguments.size() - (writes ? 1 : 0);
  if (count < member->least || (count > member->most && member->most != any_number)) {
    raise(error::argument_count, std::u16string(shown_name));
  }
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i].is(Type::string)) machine.heap.work(arguments[i].string()->length);
  }
  return member->function(machine, object, use, arguments);
}

}  // namespace zrl::vbs
