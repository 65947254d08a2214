#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/date_parser.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/native.h"
#include "scripting/vbscript/objects/procedure_object.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

Value scalar(Machine& machine, const Value& value) {
  return value.is(Type::object) ? machine.default_value(value) : value;
}

Value c_bool(Machine& machine, Arguments arguments) {
  return Value::boolean(to_boolean(machine, arguments[0]));
}

Value c_byte(Machine& machine, Arguments arguments) {
  const Value value = scalar(machine, arguments[0]);
  if (value.is(Type::boolean)) return Value::of(Type::byte, value.i() & 0xff);
  return Value::of(Type::byte, round_to(to_number(machine, value), 0, 255));
}

Value c_int(Machine& machine, Arguments arguments) {
  return Value::integer(to_integer(machine, arguments[0]));
}

Value c_long(Machine& machine, Arguments arguments) {
  return Value::long_integer(to_long(machine, arguments[0]));
}

Value c_double(Machine& machine, Arguments arguments) {
  return Value::real(to_number(machine, arguments[0]));
}

Value c_single(Machine& machine, Arguments arguments) {
  const double number = to_number(machine, arguments[0]);
  const auto narrow = static_cast<float>(number);
  if (number - number == 0 && narrow - narrow != 0) raise(error::overflow);
  return Value::of(Type::single, static_cast<double>(narrow));
}

Value c_currency(Machine& machine, Arguments arguments) {
  return Value::of(Type::currency, to_currency(machine, arguments[0]));
}

Value c_date(Machine& machine, Arguments arguments) {
  return Value::date(to_date(machine, arguments[0]));
}

Value c_string(Machine& machine, Arguments arguments) {
  return Value(to_string(machine, arguments[0]));
}

Value is_array(Machine&, Arguments arguments) {
  return Value::boolean(arguments[0].is(Type::array));
}

// The value of an object, or Null where it has none.
Value value_or_null(Machine& machine, const Value& value) {
  if (!value.is(Type::object)) return value;
  try {
    return machine.default_value(value);
  } catch (const Failure& failure) {
    if (failure.final) throw;
    return Value::null();
  }
}

Value is_date(Machine& machine, Arguments arguments) {
  const Value value = value_or_null(machine, arguments[0]);
  if (value.is(Type::date)) return Value::boolean(true);
  return Value::boolean(value.is(Type::string) && parse_date(value.text(), *machine.locale).has_value());
}

Value is_empty(Machine& machine, Arguments arguments) {
  (void)machine;
  return Value::boolean(arguments[0].is(Type::empty));
}

Value is_null(Machine&, Arguments arguments) {
  return Value::boolean(arguments[0].is(Type::null));
}

Value is_object(Machine&, Arguments arguments) {
  return Value::boolean(arguments[0].is(Type::object));
}

Value is_numeric(Machine& machine, Arguments arguments) {
  const Value value = value_or_null(machine, arguments[0]);
  switch (value.type()) {
    case Type::empty:
    case Type::boolean:
    case Type::byte:
    case Type::integer:
    case Type::long_integer:
    case Type::single:
    case Type::real:
    case Type::currency:
      return Value::boolean(true);
    case Type::string:
      try {
        return Value::boolean(parse_number(value.text(), *machine.locale).has_value());
      } catch (const Failure&) {  // too large
        return Value::boolean(false);
      }
    default:
      return Value::boolean(false);
  }
}

std::int64_t var_type_number(const Value& value) {
  switch (value.type()) {
    case Type::empty:
      return 0;
    case Type::null:
      return 1;
    case Type::integer:
      return 2;
    case Type::long_integer:
      return 3;
    case Type::single:
      return 4;
    case Type::real:
      return 5;
    case Type::currency:
      return 6;
    case Type::date:
      return 7;
    case Type::string:
      return 8;
    case Type::object:
      return 9;
    case Type::error:
      return 10;
    case Type::boolean:
      return 11;
    case Type::byte:
      return 17;
    default:
      return 8204;  // an array of variants
  }
}

Value var_type(Machine& machine, Arguments arguments) {
  const Value& value = arguments[0];
  if (!value.is(Type::object) || !value.object()) return Value::integer(var_type_number(value));
  // Of an object with a default member it is the type of that.
  try {
    return Value::integer(var_type_number(machine.default_value(value)));
  } catch (const Failure& failure) {
    if (failure.final) throw;
    return Value::integer(9);
  }
}

std::u16string type_text(Machine& machine, const Value& value) {
  switch (value.type()) {
    case Type::empty:
      return u"Empty";
    case Type::null:
      return u"Null";
    case Type::integer:
      return u"Integer";
    case Type::long_integer:
      return u"Long";
    case Type::single:
      return u"Single";
    case Type::real:
      return u"Double";
    case Type::currency:
      return u"Currency";
    case Type::date:
      return u"Date";
    case Type::string:
      return u"String";
    case Type::error:
      return u"Error";
    case Type::boolean:
      return u"Boolean";
    case Type::byte:
      return u"Byte";
    case Type::object:
      break;
    default:
      return u"Variant()";
  }
  if (!value.object()) return u"Nothing";
  if (auto* instance = as_instance(value.object())) return machine.symbols().name(instance->type().symbol);
  if (auto* native = as_native(value.object())) return to_utf16(native->type_name());
  return u"Object";
}

Value type_name(Machine& machine, Arguments arguments) {
  return Value(machine.heap.string(type_text(machine, arguments[0])));
}

constexpr Builtin conversions[] = {
    {"CBool", 1, 1, c_bool},    {"CByte", 1, 1, c_byte},  {"CInt", 1, 1, c_int},
    {"CLng", 1, 1, c_long},     {"CDbl", 1, 1, c_double}, {"CSng", 1, 1, c_single},
    {"CCur", 1, 1, c_currency}, {"CDate", 1, 1, c_date},  {"CStr", 1, 1, c_string},
};

constexpr Builtin types[] = {
    {"IsArray", 1, 1, is_array}, {"IsDate", 1, 1, is_date},     {"IsEmpty", 1, 1, is_empty},
    {"IsNull", 1, 1, is_null},   {"IsObject", 1, 1, is_object}, {"IsNumeric", 1, 1, is_numeric},
    {"VarType", 1, 1, var_type}, {"TypeName", 1, 1, type_name},
};

}  // namespace

std::span<const Builtin> conversion_functions() {
  return conversions;
}

std::span<const Builtin> type_functions() {
  return types;
}

}  // namespace zrl::vbs
