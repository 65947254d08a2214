#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/native.h"
#include "scripting/vbscript/objects/procedure_object.h"
#include "scripting/vbscript/unicode.h"

// Members of objects, elements of arrays, default members.
namespace zrl::vbs {

namespace {

constexpr int longest_default_chain = 32;

std::int64_t index_of(Context& context, const Value& value) {
  const Value& actual = value.get();
  if (actual.is(Type::integer) || actual.is(Type::long_integer)) return actual.i();
  return to_long(context, actual);
}

}  // namespace

const Member& Machine::member_of(const Instance& instance, SymbolId symbol, bool own) const {
  const Member* member = instance.type().find(symbols_.canonical(symbol));
  if (!member) raise(error::no_such_member, symbol_text(symbol));
  if (!own) {
    const Proc* any = member->get ? member->get : member->let ? member->let : member->set;
    const bool is_public = member->is_field ? member->is_public : any->is_public;
    if (!is_public) raise(error::no_such_member, symbol_text(symbol));
  }
  return *member;
}

bool Machine::is_module(const Value& object) const {
  return object.object()->kind == Object::Kind::module;
}

// For an object that is no instance. What GetRef makes has no members.
NativeObject& Machine::native_of(const Value& object) {
  NativeObject* native = as_native(object.object());
  if (!native) raise(error::no_such_member);
  return *native;
}

void Machine::get_of_module(Value& target, SymbolId symbol) {
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  if (name && name->kind == GlobalName::Kind::procedure) {
    Frame& next = push(*name->procedure, frame().top, 0, nullptr);
    next.result = &target;
    return;
  }
  if (name && name->kind == GlobalName::Kind::constant) {
    target = name->constant;
    return;
  }
  const Value* variable = globals_.existing(symbols_.canonical(symbol));
  if (!variable) raise(error::no_such_member, symbol_text(symbol));
  target = *variable;
}

void Machine::call_of_module(Value* window, std::size_t count, SymbolId symbol) {
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  if (name && name->kind == GlobalName::Kind::procedure) {
    window[0].clear();
    push(*name->procedure, window, count, nullptr);
    return;
  }
  Value* variable = globals_.existing(symbols_.canonical(symbol));
  if (count == 0 || !variable) return get_of_module(window[0], symbol);
  window[0] = Value::reference_to(variable);
  index_many(window, count);
}

void Machine::put_of_module(Value* window, std::size_t count, SymbolId symbol, bool set) {
  Value* variable = globals_.existing(symbols_.canonical(symbol));
  if (!variable) raise(error::no_such_member, symbol_text(symbol));
  if (count > 0) {
    window[0] = Value::reference_to(variable);
    return put_index(window, count, set);
  }
  put_element(*variable, window[1], set);
}

// object.symbol, without arguments
void Machine::get_member(Value& target, const Value& object, SymbolId symbol, std::size_t) {
  const Value& actual = object.get();
  if (actual.is(Type::object) && actual.object()) {
    if (auto* instance = as_instance(actual.object())) {
      const bool own = instance == frame().me;
      const Member& member = member_of(*instance, symbol, own);
      if (member.is_field) {
        target = Value(instance->field(member.field));
        return;
      }
      if (!member.get) raise(error::no_such_member, symbol_text(symbol));
      Frame& next = push(*member.get, frame().top, 0, instance);
      next.result = &target;
      return;
    }
    if (is_module(actual)) return get_of_module(target, symbol);
  }
  Value window[2] = {actual, Value()};
  call_member(window, 0, symbol, false);
  target = std::move(window[0]);
}

// object.symbol(arguments); the object stands where the result goes
void Machine::call_member(Value* window, std::size_t count, SymbolId symbol, bool own) {
  if (own) {
    Instance* const me = frame().me;
    return call_instance(window, count, symbol, *me);
  }
  const Value& object = window[0].get();
  if (!object.is(Type::object)) raise(error::object_required, symbol_text(symbol));
  if (!object.object()) raise(error::object_required, symbol_text(symbol));
  const Value held = object;
  if (auto* instance = as_instance(held.object())) {
    return call_instance(window, count, symbol, *instance);
  }
  if (is_module(held)) return call_of_module(window, count, symbol);
  NativeObject& native = native_of(held);
  const std::u16string& name = symbols_.name(symbols_.canonical(symbol));
  const NativeMember* member = find_member(native, name);
  if (member && count > 0 && member->most == 0) {
    // The arguments are for what the property returns.
    window[0] = use_member(*this, native, name, Use::get, Arguments(nullptr, 0), symbols_.name(symbol));
    return index_many(window, count);
  }
  window[0] = use_member(*this, native, name, Use::get, Arguments(window + 1, count), symbols_.name(symbol));
  for (std::size_t i = 1; i <= count; ++i) window[i].clear();
}

void Machine::call_instance(Value* window, std::size_t count, SymbolId symbol, Instance& instance) {
  const Member& member = member_of(instance, symbol, &instance == frame().me);
  if (member.is_field) {
    if (count == 0) {
      window[0] = Value(instance.field(member.field));
      return;
    }
    const Value held{Ref<Object>(&instance)};
    const Type type = instance.field(member.field).type();
    if (type != Type::array && type != Type::object) raise(error::no_such_member, symbol_text(symbol));
    window[0] = Value::reference_to(&instance.field(member.field));
    return index_many(window, count);
  }
  if (!member.get) raise(error::argument_count, symbol_text(symbol));
  if (count != member.get->parameters && member.get->kind == ProcKind::get && member.get->parameters == 0) {
    // A property without parameters whose value is indexed.
    const Value value = invoke(*member.get, &instance, {});
    if (!value.is(Type::array) && !value.is(Type::object)) raise(error::argument_count, symbol_text(symbol));
    window[0] = value;
    return index_many(window, count);
  }
  push(*member.get, window, count, &instance);
}

// object.symbol(arguments) = value
void Machine::put_member(Value* window, std::size_t count, SymbolId symbol, bool set, bool own) {
  if (set && !window[count + 1].get().is(Type::object)) raise(error::object_required);
  if (own) return put_instance(window, count, symbol, *frame().me, set);
  const Value held = window[0].get();
  if (!held.is(Type::object)) raise(error::object_required, symbol_text(symbol));
  if (!held.object()) raise(error::object_required, symbol_text(symbol));
  if (auto* instance = as_instance(held.object())) {
    return put_instance(window, count, symbol, *instance, set);
  }
  if (is_module(held)) return put_of_module(window, count, symbol, set);
  NativeObject& native = native_of(held);
  const std::u16string& name = symbols_.name(symbols_.canonical(symbol));
  use_member(*this, native, name, set ? Use::set : Use::let, Arguments(window + 1, count + 1),
             symbols_.name(symbol));
}

void Machine::put_instance(Value* window, std::size_t count, SymbolId symbol, Instance& instance, bool set) {
  const Member& member = member_of(instance, symbol, &instance == frame().me);
  if (member.is_field) {
    const Value held{Ref<Object>(&instance)};
    if (count > 0) {
      window[0] = Value::reference_to(&instance.field(member.field));
      return put_index(window, count, set);
    }
    Value& field = instance.field(member.field);
    if (set) {
      this->set(field, window[1]);
    } else {
      let(field, window[1]);
    }
    return;
  }
  const Proc* proc = set ? member.set : member.let;
  if (!proc && !set && member.set && window[count + 1].get().is(Type::object)) proc = member.set;
  if (!proc) {
    if (set && member.let) raise(error::no_such_member, symbol_text(symbol));
    if (member.get && count == 0) {
      // The value of the property may be an object with a default property, but not a variable.
      raise(member.get->kind == ProcKind::get ? error::no_such_member : error::illegal_assignment,
            symbol_text(symbol));
    }
    if (member.get && member.get->kind == ProcKind::get && member.get->parameters == 0) {
      window[0] = invoke(*member.get, &instance, {});
      return put_index(window, count, set);
    }
    raise(error::argument_count, symbol_text(symbol));
  }
  Value* const next_window = frame().top;
  if (stack_end_ - next_window <= static_cast<std::ptrdiff_t>(count + 2)) raise(error::stack_space);
  for (std::size_t i = 1; i <= count + 1; ++i) next_window[i] = Value(window[i].get());
  push(*proc, next_window, count + 1, &instance).discard = true;
}

Value& Machine::element(Value& variable, Value* indexes, std::size_t count) {
  std::int64_t places[most_dimensions];
  if (count > most_dimensions) raise(error::subscript);
  for (std::size_t i = 0; i < count; ++i) places[i] = index_of(*this, indexes[i]);
  // Asking an object for its value may have changed the variable.
  if (!variable.is(Type::array)) raise(error::type_mismatch);
  const Array& array = *variable.array();
  const bool outside = array.dimensions == 1 && (places[0] < 0 || places[0] > upper_bound(array, 1));
  if (count == 1 && outside) raise(error::subscript, u"[number: " + integer_text(places[0]) + u"]");
  return element_at(*variable.array(), {places, count});
}

// callee(argument)
void Machine::index(Value& target, const Value& callee, const Value& argument) {
  const Value& actual = callee.get();
  if (actual.is(Type::array)) {
    Value place = argument.get();
    const Value found = element(const_cast<Value&>(actual), &place, 1);
    target = found;
    return;
  }
  if (actual.is(Type::object) && actual.object() && !as_instance(actual.object()) &&
      !as_procedure(actual.object())) {
    // Keeps the object. NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const Value held = actual;
    Value place = Value(argument.get());
    target = use_member(*this, native_of(held), {}, Use::get, Arguments(&place, 1), {});
    return;
  }
  Value* const window = frame().top;
  if (stack_end_ - window < 3) raise(error::stack_space);
  window[0] = Value(actual);
  window[1] = Value(argument.get());
  const std::size_t before = depth_;
  index_many(window, 1);
  if (depth_ != before) {
    frame().result = &target;
  } else {
    target = std::exchange(window[0], Value());
  }
}

// window[0](arguments)
void Machine::index_many(Value* window, std::size_t count) {
  Value& callee = window[0].get();
  if (callee.is(Type::array)) {
    if (count == 0) raise(error::subscript);
    const Value found = element(callee, window + 1, count);
    for (std::size_t i = 1; i <= count; ++i) window[i].clear();
    window[0] = found;
    return;
  }
  if (callee.is(Type::object)) {
    if (!callee.object()) raise(error::object_not_set);
    const Value held = callee;
    window[0] = held;
    return call_default(window, count);
  }
  raise(error::type_mismatch);
}

// The default member of the object in the window, with arguments.
void Machine::call_default(Value* window, std::size_t count) {
  const Value held = window[0];
  if (auto* instance = as_instance(held.object())) {
    const Member* member = instance->type().default_member;
    if (!member) raise(error::no_such_member);
    window[0].clear();
    return call_instance(window, count, member->symbol, *instance);
  }
  if (auto* procedure = as_procedure(held.object())) {
    window[0].clear();
    push(procedure->proc(), window, count, nullptr);
    return;
  }
  window[0] = use_member(*this, native_of(held), {}, Use::get, Arguments(window + 1, count), {});
  for (std::size_t i = 1; i <= count; ++i) window[i].clear();
}

// A reference to variable(arguments) for a parameter, or its value where the variable holds no array.
void Machine::refer_index(Value* window, std::size_t count, Value& lock) {
  Value& variable = window[0].get();
  if (!variable.is(Type::array) || count == 0) return index_many(window, count);
  Value& first = element(variable, window + 1, count);
  const std::size_t place = static_cast<std::size_t>(&first - variable.array()->elements);
  Array& array = writable(variable);
  lock = Value::lock(&array);
  for (std::size_t i = 1; i <= count; ++i) window[i].clear();
  window[0] = Value::reference_to(&array.elements[place]);
}

void Machine::put_element(Value& element, const Value& value, bool set) {
  if (set) {
    this->set(element, value);
  } else {
    let(element, value);
  }
}

// callee(argument) = value
void Machine::let_index(Value& callee, const Value& argument, const Value& value) {
  Value window[3];
  window[0] = Value::reference_to(&callee.get());
  window[1] = Value(argument.get());
  window[2] = Value(value.get());
  put_index(window, 1, false);
}

// window[0](arguments) = value
void Machine::put_index(Value* window, std::size_t count, bool set) {
  Value& callee = window[0].get();
  const Value& value = window[count + 1];
  if (callee.is(Type::array)) {
    Value scalar = value.get();
    if (!set && scalar.is(Type::object)) scalar = default_value(scalar);
    // Before the array is made writable: if it shares elements with the value, it is copied.
    if (scalar.is(Type::array)) scalar = storable(std::move(scalar));
    Value& found = element(callee, window + 1, count);
    const std::size_t place = static_cast<std::size_t>(&found - callee.array()->elements);
    put_element(writable(callee).elements[place], scalar, set);
    return;
  }
  if (!callee.is(Type::object)) raise(error::type_mismatch);
  if (!callee.object()) raise(error::object_not_set);
  const Value held = callee;
  if (auto* instance = as_instance(held.object())) {
    const Member* member = instance->type().default_member;
    if (!member) raise(error::no_such_member);
    return put_instance(window, count, member->symbol, *instance, set);
  }
  if (as_procedure(held.object())) raise(error::no_such_member);
  use_member(*this, native_of(held), {}, set ? Use::set : Use::let, Arguments(window + 1, count + 1), {});
}

Value Machine::default_value(const Value& object) {
  Value value = object.get();
  for (int i = 0; value.is(Type::object); ++i) {
    if (!value.object()) raise(error::object_not_set);
    if (i == longest_default_chain) raise(error::no_such_member);
    const Value held = value;
    if (auto* instance = as_instance(held.object())) {
      const Member* member = instance->type().default_member;
      if (!member) raise(error::no_such_member);
      value = member->is_field ? instance->field(member->field) : invoke(*member->get, instance, {});
    } else if (auto* procedure = as_procedure(held.object())) {
      value = invoke(procedure->proc(), nullptr, {});
    } else {
      value = use_member(*this, native_of(held), {}, Use::get, Arguments(nullptr, 0), {});
    }
  }
  return value;
}

}  // namespace zrl::vbs
