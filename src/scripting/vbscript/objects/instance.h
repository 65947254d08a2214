#pragma once

#include <span>

#include "scripting/vbscript/code.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// An object of a class of the script. Its fields stand behind it in the same block.
class Instance final : public Object {
 public:
  static Ref<Instance> make(Heap& heap, const ClassInfo& type);
  ~Instance() override;

  const ClassInfo& type() const { return type_; }
  Value& field(std::size_t i) { return fields()[i]; }
  void clear() override;
  bool wants_termination() const override { return type_.terminate != nullptr && !terminated_; }
  void mark_terminated() { terminated_ = true; }

 private:
  explicit Instance(const ClassInfo& type);
  Value* fields() { return reinterpret_cast<Value*>(this + 1); }

  const ClassInfo& type_;
  bool terminated_ = false;
};

// nullptr for other objects.
inline Instance* as_instance(Object* object) {
  return object && object->kind == Object::Kind::instance ? static_cast<Instance*>(object) : nullptr;
}

}  // namespace zrl::vbs
