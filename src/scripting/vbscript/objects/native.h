#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "scripting/vbscript/builtins.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// How a member is used.
enum class Use : std::uint8_t { get, let, set };

class NativeObject;

// A member of an object that the engine brings. For let and set the value is the last argument.
struct NativeMember {
  const char* name;    // in lower case
  std::uint8_t least;  // arguments, without the value
  std::uint8_t most;
  bool writable;
  bool is_default;
  Value (*function)(Machine& machine, NativeObject& object, Use use, Arguments arguments);
};

class NativeObject : public Object {
 public:
  virtual std::string_view type_name() const = 0;
  virtual std::span<const NativeMember> members() const = 0;
  // The members of a collection, for For Each; an empty value where there are none to walk over.
  virtual Value enumerate(Machine&) { return {}; }
};

// nullptr for other objects.
inline NativeObject* as_native(Object* object) {
  return object && object->kind == Object::Kind::native ? static_cast<NativeObject*>(object) : nullptr;
}

// nullptr where there is none. An empty name is the default member.
const NativeMember* find_member(const NativeObject& object, std::u16string_view lower_name);
// Finds and runs a member. An empty name is the default member. Raises 438 and 450.
Value use_member(Machine& machine, NativeObject& object, std::u16string_view lower_name, Use use,
                 Arguments arguments, std::u16string_view shown_name);

}  // namespace zrl::vbs
