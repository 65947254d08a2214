#pragma once

#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// Me outside of classes: the global procedures, constants and variables as members. It has no state of its
// own; the machine looks its members up in the global name space.
class ModuleObject final : public Object {
 public:
  ModuleObject() : Object(Kind::module) {}
};

}  // namespace zrl::vbs
