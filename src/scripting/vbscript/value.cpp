#include "scripting/vbscript/value.h"

namespace zrl::vbs {

void Value::release() noexcept {
  if (type_ == Type::array_lock) --array()->locks;
  if (--counted_->references != 0) return;
  switch (type_) {
    case Type::string:
      counted_->heap->free_string(string());
      break;
    case Type::object:
      counted_->heap->retire(object());
      break;
    default:
      counted_->heap->retire(array());
  }
}

Value Value::lock(Array* array) {
  Value value;
  value.counted_ = array;
  value.type_ = Type::array_lock;
  ++array->references;
  ++array->locks;
  return value;
}

}  // namespace zrl::vbs
