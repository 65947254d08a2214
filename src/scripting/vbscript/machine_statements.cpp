#include <utility>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// variable = value
void Machine::let(Value& variable, const Value& value) {
  const Value& actual = value.get();
  if (actual.is(Type::object)) {
    Value scalar = default_value(actual);
    if (scalar.is(Type::array)) scalar = storable(std::move(scalar));
    variable.get() = std::move(scalar);
  } else if (actual.is(Type::array)) {
    variable.get() = storable(actual);
  } else {
    Value copy = actual;
    variable.get() = std::move(copy);
  }
}

// The same for a value that nobody needs any more.
void Machine::let_taken(Value& variable, Value& value) {
  if (value.is(Type::object) || value.is(Type::reference) || value.is(Type::array)) {
    let(variable, value);
    value.clear();
  } else {
    variable.get() = std::move(value);
  }
}

// Set variable = value
void Machine::set(Value& variable, const Value& value) {
  if (!value.get().is(Type::object)) raise(error::object_required, description_of(value.get()));
  Value copy = value.get();
  variable.get() = std::move(copy);
}

// Whether the loop runs at all. bounds: limit, step.
bool Machine::prepare_for(Value& variable, Value* bounds, const Value& from) {
  // Should this fail, an Empty step shows the loop's end that it never began.
  const Value asked = std::exchange(bounds[1], Value());
  Value first = to_numeric(*this, from);
  Value limit = to_numeric(*this, bounds[0]);
  Value step = to_numeric(*this, asked);
  if (first.is(Type::null) || limit.is(Type::null) || step.is(Type::null)) raise(error::null_use);
  const bool up = to_number(*this, step) >= 0;
  const int order = compare(*this, first, limit, {});
  bounds[0] = std::move(limit);
  bounds[1] = std::move(step);
  variable.get() = std::move(first);
  return up ? order <= 0 : order >= 0;
}

bool Machine::next_for(Value& variable, Value* bounds) {
  if (bounds[1].is(Type::empty)) raise(error::for_not_initialised);
  variable.get() = arithmetic(*this, Operator::add, variable, bounds[1]);
  const int order = compare(*this, variable, bounds[0], {});
  return to_number(*this, bounds[1]) >= 0 ? order <= 0 : order >= 0 && order != unordered;
}

// state: what is walked over, and how far.
void Machine::prepare_each(Value* state, const Value& collection) {
  Value actual = collection.get();
  if (actual.is(Type::object)) {
    if (!actual.object()) raise(error::object_not_set);
    auto* native = as_native(actual.object());
    Value list = native ? native->enumerate(*this) : Value();
    if (!list.is(Type::array)) raise(error::no_such_member);
    actual = std::move(list);
  }
  if (!actual.is(Type::array)) raise(error::not_a_collection);
  state[0] = Value::lock(actual.array());
  state[1] = Value::integer(0);
}

bool Machine::next_each(Value& variable, Value* state) {
  if (!state[0].is(Type::array_lock)) raise(error::not_a_collection);
  const Array& array = *state[0].array();
  const auto position = static_cast<std::size_t>(state[1].i());
  if (position >= array.count) {
    variable.get().clear();
    return false;
  }
  Value element = array.elements[position];
  state[1] = Value::long_integer(static_cast<std::int64_t>(position + 1));
  variable.get() = std::move(element);
  return true;
}

void Machine::dim(Value& variable, Value* bounds, std::size_t count) {
  Value& target = variable.get();
  if (target.is(Type::array)) raise(error::type_mismatch);
  if (count == 0) {
    target = Value(make_unbounded_array(heap));
    return;
  }
  std::int64_t uppers[most_dimensions];
  if (count > most_dimensions) raise(error::subscript);
  for (std::size_t i = 0; i < count; ++i) uppers[i] = bounds[i].i();
  Ref<Array> array = make_array(heap, {uppers, count});
  array->fixed = true;
  target = Value(std::move(array));
}

void Machine::redim(Value& variable, Value* bounds, std::size_t count, bool preserve) {
  std::int64_t uppers[most_dimensions];
  if (count > most_dimensions) raise(error::subscript);
  for (std::size_t i = 0; i < count; ++i) uppers[i] = to_long(*this, bounds[i]);
  redimension(heap, variable.get(), {uppers, count}, preserve);
}

void Machine::on_error(bool resume) {
  frame().resume_next = resume;
  err_ = {};
}

void Machine::fail(std::int32_t number, SymbolId symbol) {
  raise(number, symbol == Symbols::none ? std::u16string() : symbol_text(symbol));
}

}  // namespace zrl::vbs
