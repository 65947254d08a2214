#pragma once

#include "scripting/vbscript/code.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// What GetRef returns; its default member is the call.
class ProcedureObject final : public Object {
 public:
  explicit ProcedureObject(const Proc& proc) : Object(Kind::procedure), proc_(proc) {}
  const Proc& proc() const { return proc_; }

 private:
  const Proc& proc_;
};

// nullptr for other objects.
inline ProcedureObject* as_procedure(Object* object) {
  return object && object->kind == Object::Kind::procedure ? static_cast<ProcedureObject*>(object) : nullptr;
}

}  // namespace zrl::vbs
