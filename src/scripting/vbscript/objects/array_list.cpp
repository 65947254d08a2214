#include "scripting/vbscript/objects/array_list.h"

#include <algorithm>
#include <utility>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

Array& ArrayList::items(Heap& memory, std::size_t room) {
  if (items_.is(Type::array) && items_.array()->count >= room) return *items_.array();
  Ref<Array> larger = make_list(memory, std::max<std::size_t>(room + room / 2, 8));
  for (std::size_t i = 0; i < count; ++i) larger->elements[i].swap(items_.array()->elements[i]);
  items_ = Value(std::move(larger));
  return *items_.array();
}

Value ArrayList::take_items() {
  count = 0;
  return std::exchange(items_, Value());
}

Value ArrayList::list(Machine& machine) const {
  Ref<Array> copy = make_list(machine.heap, count);
  for (std::size_t i = 0; i < count; ++i) copy->elements[i] = item(i);
  return Value(std::move(copy));
}

Value ArrayList::enumerate(Machine& machine) {
  return list(machine);
}

namespace {

ArrayList& self(NativeObject& object) {
  return static_cast<ArrayList&>(object);
}

// An index of an item, or of the place behind the last one.
std::size_t index_argument(Machine& machine, const Value& value, std::size_t end) {
  const std::int64_t index = to_long(machine, value);
  if (index < 0 || static_cast<std::uint64_t>(index) >= end) raise(error::invalid_call);
  return static_cast<std::size_t>(index);
}

// Objects are the same where they are one, other values where both have one type and value.
bool same(Machine& machine, const Value& a, const Value& b) {
  if (a.is(Type::object) || b.is(Type::object)) {
    return a.is(Type::object) && b.is(Type::object) && a.object() == b.object();
  }
  if (a.is(Type::array) || b.is(Type::array) || a.is(Type::string) != b.is(Type::string)) return false;
  if (a.is(Type::null) || b.is(Type::null)) return a.type() == b.type();
  return compare(machine, a, b, {}) == 0;
}

std::int64_t place_of(Machine& machine, const ArrayList& list, const Value& value, std::size_t from) {
  for (std::size_t i = from; i < list.count; ++i) {
    machine.heap.work(sizeof(Value));
    if (same(machine, list.item(i), value)) return static_cast<std::int64_t>(i);
  }
  return -1;
}

void insert(Machine& machine, ArrayList& list, std::size_t at, const Value& value) {
  Value held = value;
  Value* const items = list.items(machine.heap, list.count + 1).elements;
  machine.heap.work((list.count - at) * sizeof(Value));
  for (std::size_t i = list.count; i > at; --i) items[i].swap(items[i - 1]);
  items[at].swap(held);
  ++list.count;
}

void remove(Machine& machine, ArrayList& list, std::size_t at) {
  Value* const items = list.items(machine.heap, list.count).elements;
  machine.heap.work((list.count - at) * sizeof(Value));
  const Value removed = std::exchange(items[at], Value());
  for (std::size_t i = at; i + 1 < list.count; ++i) items[i].swap(items[i + 1]);
  --list.count;
}

Value add(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  insert(machine, self(object), self(object).count, arguments[0]);
  return Value::long_integer(static_cast<std::int64_t>(self(object).count) - 1);
}

Value add_range(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  Value items = arguments[0];
  if (items.is(Type::object) && items.object()) {
    auto* native = as_native(items.object());
    items = native ? native->enumerate(machine) : Value();
  }
  if (!items.is(Type::array)) raise(error::type_mismatch);
  for (std::size_t i = 0; i < items.array()->count; ++i) {
    insert(machine, self(object), self(object).count, items.array()->elements[i]);
  }
  return {};
}

Value item(Machine& machine, NativeObject& object, Use use, Arguments arguments) {
  ArrayList& list = self(object);
  const std::size_t index = index_argument(machine, arguments[0], list.count);
  if (use == Use::get) return list.item(index);
  Value value = arguments[1];
  if (use == Use::let && value.is(Type::object)) value = machine.default_value(value);
  if (index >= list.count) raise(error::invalid_call);
  list.items(machine.heap, list.count).elements[index].swap(value);
  return {};
}

Value count(Machine&, NativeObject& object, Use, Arguments) {
  return Value::long_integer(static_cast<std::int64_t>(self(object).count));
}

Value insert_at(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  ArrayList& list = self(object);
  insert(machine, list, index_argument(machine, arguments[0], list.count + 1), arguments[1]);
  return {};
}

Value remove_at(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  ArrayList& list = self(object);
  remove(machine, list, index_argument(machine, arguments[0], list.count));
  return {};
}

Value remove_item(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const std::int64_t place = place_of(machine, self(object), arguments[0], 0);
  if (place >= 0) remove(machine, self(object), static_cast<std::size_t>(place));
  return {};
}

Value contains(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  return Value::boolean(place_of(machine, self(object), arguments[0], 0) >= 0);
}

Value index_of(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  ArrayList& list = self(object);
  const std::size_t from = arguments.has(1) ? index_argument(machine, arguments[1], list.count + 1) : 0;
  return Value::long_integer(place_of(machine, list, arguments[0], from));
}

Value last_index_of(Machine& machine, NativeObject& object, Use, Arguments arguments) {
  const ArrayList& list = self(object);
  for (std::size_t i = list.count; i-- > 0;) {
    machine.heap.work(sizeof(Value));
    if (same(machine, list.item(i), arguments[0])) return Value::long_integer(static_cast<std::int64_t>(i));
  }
  return Value::long_integer(-1);
}

Value clear(Machine&, NativeObject& object, Use, Arguments) {
  const Value dropped = self(object).take_items();
  return {};
}

Value reverse(Machine& machine, NativeObject& object, Use, Arguments) {
  ArrayList& list = self(object);
  machine.heap.work(list.count * sizeof(Value));
  Value* const items = list.items(machine.heap, list.count).elements;
  for (std::size_t i = 0; i < list.count / 2; ++i) items[i].swap(items[list.count - 1 - i]);
  return {};
}

// Texts among each other without regard to case, as people sort; numbers and dates by value. Anything else
// cannot be put in order.
int order(Machine& machine, const Value& a, const Value& b) {
  machine.heap.work(sizeof(Value));
  if (a.is(Type::string) && b.is(Type::string)) {
    machine.heap.work(std::min(a.text().size(), b.text().size()));
    const int by_letters = compare_ignoring_case(a.text(), b.text());
    return by_letters != 0 ? by_letters : -a.text().compare(b.text());
  }
  if (a.is(Type::string) || b.is(Type::string) || a.is(Type::object) || b.is(Type::object)) {
    raise(error::invalid_call);
  }
  const int by_value = compare(machine, a, b, {});
  if (by_value == unordered) raise(error::invalid_call);
  return by_value;
}

Value sort(Machine& machine, NativeObject& object, Use, Arguments) {
  ArrayList& list = self(object);
  // On pointers, which an error half way leaves in no bad state.
  HeapVector<const Value*> places{HeapAllocator<const Value*>(machine.heap)};
  places.reserve(list.count);
  for (std::size_t i = 0; i < list.count; ++i) places.push_back(&list.item(i));
  std::stable_sort(places.begin(), places.end(),
                   [&](const Value* a, const Value* b) { return order(machine, *a, *b) < 0; });
  Ref<Array> sorted = make_list(machine.heap, list.count);
  for (std::size_t i = 0; i < list.count; ++i) sorted->elements[i] = *places[i];
  Value* const items = list.items(machine.heap, list.count).elements;
  for (std::size_t i = 0; i < list.count; ++i) items[i].swap(sorted->elements[i]);
  return {};
}

Value to_array(Machine& machine, NativeObject& object, Use, Arguments) {
  return self(object).list(machine);
}

Value clone(Machine& machine, NativeObject& object, Use, Arguments) {
  Ref<ArrayList> copy = machine.heap.make<ArrayList>();
  for (std::size_t i = 0; i < self(object).count; ++i) insert(machine, *copy, i, self(object).item(i));
  return Value(Ref<Object>(copy.get()));
}

constexpr NativeMember list_members[] = {
    {"item", 1, 1, true, true, item},
    {"add", 1, 1, false, false, add},
    {"count", 0, 0, false, false, count},
    {"addrange", 1, 1, false, false, add_range},
    {"clear", 0, 0, false, false, clear},
    {"clone", 0, 0, false, false, clone},
    {"contains", 1, 1, false, false, contains},
    {"indexof", 1, 2, false, false, index_of},
    {"insert", 2, 2, false, false, insert_at},
    {"lastindexof", 1, 1, false, false, last_index_of},
    {"remove", 1, 1, false, false, remove_item},
    {"removeat", 1, 1, false, false, remove_at},
    {"reverse", 0, 0, false, false, reverse},
    {"sort", 0, 0, false, false, sort},
    {"toarray", 0, 0, false, false, to_array},
};

}  // namespace

std::span<const NativeMember> ArrayList::members() const {
  return list_members;
}

}  // namespace zrl::vbs
