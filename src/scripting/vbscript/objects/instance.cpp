#include "scripting/vbscript/objects/instance.h"

#include <memory>

#include "scripting/vbscript/arrays.h"

namespace zrl::vbs {

Instance::Instance(const ClassInfo& type) : Object(Kind::instance), type_(type) {
  std::uninitialized_value_construct_n(fields(), type.fields);
}

Instance::~Instance() {
  std::destroy_n(fields(), type_.fields);
}

Ref<Instance> Instance::make(Heap& heap, const ClassInfo& type) {
  const std::size_t bytes = sizeof(Instance) + type.fields * sizeof(Value);
  auto* instance = new (heap.allocate(bytes)) Instance(type);
  heap.enlist(*instance, bytes);
  auto result = Ref<Instance>::adopt(instance);
  // What never was initialised needs no end.
  instance->terminated_ = true;
  for (const ClassInfo::ArrayField& array : type.arrays) {
    Value& field = instance->field(array.field);
    if (array.bounds.empty()) {
      field = Value(make_unbounded_array(heap));
    } else {
      Ref<Array> made = make_array(heap, array.bounds);
      made->fixed = true;
      field = Value(std::move(made));
    }
  }
  instance->terminated_ = false;
  return result;
}

void Instance::clear() {
  for (std::size_t i = 0; i < type_.fields; ++i) field(i).clear();
}

}  // namespace zrl::vbs
