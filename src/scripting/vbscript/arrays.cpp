#include "scripting/vbscript/arrays.h"

#include <algorithm>
#include <memory>
#include <new>

#include "scripting/vbscript/errors.h"

namespace zrl::vbs {

namespace {

Ref<Array> bare_array(Heap& heap, std::size_t dimensions) {
  void* block = heap.allocate(sizeof(Array) + dimensions * sizeof(std::uint32_t));
  auto* array = new (block) Array;
  array->heap = &heap;
  array->references = 1;
  array->is_array = true;
  array->dimensions = static_cast<std::uint16_t>(dimensions);
  return Ref<Array>::adopt(array);
}

void allocate_elements(Heap& heap, Array& array, std::size_t count) {
  if (count == 0) return;
  array.elements = static_cast<Value*>(heap.allocate(count * sizeof(Value)));
  std::uninitialized_value_construct_n(array.elements, count);
  array.count = count;
}

}  // namespace

Ref<Array> copy_of(const Array& original) {
  Ref<Array> copy = bare_array(*original.heap, original.dimensions);
  std::copy_n(original.sizes(), original.dimensions, copy->sizes());
  allocate_elements(*original.heap, *copy, original.count);
  std::copy_n(original.elements, original.count, copy->elements);
  copy->fixed = original.fixed;
  return copy;
}

Value storable(Value array) {
  if (!array.array()->fixed && array.array()->locks == 0) return array;
  Value own(copy_of(*array.array()));
  own.array()->fixed = false;
  if (array.array()->locks == 0) return own;
  for (std::size_t i = 0; i < own.array()->count; ++i) {
    Value& element = own.array()->elements[i];
    if (element.is(Type::array) && element.array()->locks > 0) element = storable(element);
  }
  return own;
}

namespace {

// Moves the elements that both have; all dimensions but the last are alike.
void move_elements(Array& from, Array& to) {
  const std::size_t count = std::min(from.count, to.count);
  for (std::size_t i = 0; i < count; ++i) to.elements[i].swap(from.elements[i]);
}

void check_preservable(const Array& old, std::span<const std::int64_t> upper_bounds) {
  if (old.dimensions != upper_bounds.size()) raise(error::subscript);
  for (std::size_t i = 0; i + 1 < upper_bounds.size(); ++i) {
    if (old.sizes()[i] != static_cast<std::uint64_t>(upper_bounds[i] + 1)) raise(error::subscript);
  }
}

}  // namespace

Ref<Array> make_unbounded_array(Heap& heap) {
  return bare_array(heap, 0);
}

Ref<Array> make_array(Heap& heap, std::span<const std::int64_t> upper_bounds) {
  if (upper_bounds.size() > most_dimensions) raise(error::subscript);
  std::size_t count = 1;
  for (const std::int64_t bound : upper_bounds) {
    if (bound < -1) raise(error::subscript);
    if (bound >= std::int64_t{0x7fffffff}) raise(error::out_of_memory);
    count *= static_cast<std::size_t>(bound + 1);
    if (count > (std::size_t{1} << 40)) raise(error::out_of_memory);
  }
  Ref<Array> array = bare_array(heap, upper_bounds.size());
  for (std::size_t i = 0; i < upper_bounds.size(); ++i) {
    array->sizes()[i] = static_cast<std::uint32_t>(upper_bounds[i] + 1);
  }
  allocate_elements(heap, *array, count);
  return array;
}

Ref<Array> make_list(Heap& heap, std::size_t count) {
  const std::int64_t bound = static_cast<std::int64_t>(count) - 1;
  return make_array(heap, {&bound, 1});
}

Array& writable(Value& variable) {
  Array* array = variable.array();
  if (array->references > 1 + array->locks) {
    variable = Value(copy_of(*array));
    array = variable.array();
  }
  return *array;
}

void redimension(Heap& heap, Value& variable, std::span<const std::int64_t> upper_bounds, bool preserve) {
  const bool was_array = variable.is(Type::array);
  if (was_array && (variable.array()->fixed || variable.array()->locks > 0)) raise(error::array_locked);
  if (!was_array && !variable.is(Type::empty)) {
    if (preserve) raise(error::type_mismatch);
  }
  if (preserve && was_array && variable.array()->dimensions > 0) {
    check_preservable(*variable.array(), upper_bounds);
    Ref<Array> array = make_array(heap, upper_bounds);
    move_elements(writable(variable), *array);
    variable = Value(std::move(array));
    return;
  }
  variable = Value(make_array(heap, upper_bounds));
}

void erase(Heap& heap, Value& variable) {
  if (!variable.is(Type::array)) raise(error::type_mismatch);
  if (variable.array()->fixed) {
    Array& array = writable(variable);
    heap.work(array.count * sizeof(Value));
    for (std::size_t i = 0; i < array.count; ++i) array.elements[i].clear();
    return;
  }
  if (variable.array()->locks > 0) raise(error::array_locked);
  variable = Value(make_unbounded_array(heap));
}

Value& element_at(Array& array, std::span<const std::int64_t> indexes) {
  if (array.dimensions == 0 || indexes.size() != array.dimensions) raise(error::subscript);
  std::size_t position = 0;
  std::size_t stride = 1;
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    const std::uint32_t size = array.sizes()[i];
    if (indexes[i] < 0 || indexes[i] >= size) raise(error::subscript);
    position += static_cast<std::size_t>(indexes[i]) * stride;
    stride *= size;
  }
  return array.elements[position];
}

std::int64_t upper_bound(const Array& array, std::int64_t dimension) {
  if (dimension < 1 || dimension > array.dimensions) raise(error::subscript);
  return std::int64_t{array.sizes()[dimension - 1]} - 1;
}

}  // namespace zrl::vbs
