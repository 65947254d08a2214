#include "scripting/vbscript/value.h"

namespace zrl::vbs {

void Value::release() noexcept {
  if (type_ == Type::array_lock) --a_->locks;
  if (--counted_->references != 0) return;
  switch (type_) {
    case Type::string:
      s_->heap->free_string(s_);
      break;
    case Type::object:
      o_->heap->retire(o_);
      break;
    default:
      a_->heap->retire(a_);
  }
}

Value Value::lock(Array* array) {
  Value value;
  value.a_ = array;
  value.type_ = Type::array_lock;
  ++array->references;
  ++array->locks;
  return value;
}

}  // namespace zrl::vbs
