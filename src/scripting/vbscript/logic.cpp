#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/operators.h"

namespace zrl::vbs {

namespace {

// An operand of And, Or, ...: its bits and its sub-type, which is Boolean, Byte, Integer, Long or Null.
struct Bits {
  Type type;
  std::int64_t bits;
};

Bits bits_of(Context& context, const Value& value) {
  const Value& actual = value.get();
  switch (actual.type()) {
    case Type::object:
      return bits_of(context, context.default_value(actual));
    case Type::null:
      return {Type::null, 0};
    case Type::empty:
      return {Type::long_integer, 0};
    case Type::boolean:
    case Type::byte:
    case Type::integer:
    case Type::long_integer:
      return {actual.type(), actual.i()};
    case Type::string:
      if (const auto truth = parse_truth(actual.text())) return {Type::boolean, *truth ? -1 : 0};
      return {Type::long_integer, to_long(context, actual)};
    default:
      return {Type::long_integer, to_long(context, actual)};
  }
}

Type wider(Type a, Type b) {
  if (a == b) return a;
  if (a == Type::long_integer || b == Type::long_integer) return Type::long_integer;
  return Type::integer;  // Boolean, Byte and Integer among each other
}

std::int64_t applied(Operator op, std::int64_t a, std::int64_t b) {
  switch (op) {
    case Operator::and_:
      return a & b;
    case Operator::or_:
      return a | b;
    case Operator::xor_:
      return a ^ b;
    case Operator::eqv:
      return ~(a ^ b);
    default:
      return ~a | b;
  }
}

Value result(Type type, std::int64_t bits) {
  if (type == Type::byte) bits &= 0xff;
  return Value::of(type, bits);
}

// One operand is Null: the result is known only where the other one decides alone.
Value with_null(Operator op, const Bits& left, const Bits& right) {
  const bool left_null = left.type == Type::null;
  const bool right_null = right.type == Type::null;
  const Bits& known = left_null ? right : left;
  switch (op) {
    case Operator::and_:
      if (!(left_null && right_null) && known.bits == 0) return result(known.type, 0);
      break;
    case Operator::or_:
      if (known.bits != 0) return result(known.type, known.bits);
      break;
    case Operator::imp:
      // Not left Or right.
      if (!left_null) {
        const Value inverse = result(left.type, ~left.bits);
        if (inverse.i() != 0) return inverse;
      }
      if (left_null && !right_null && right.bits != 0) return result(right.type, right.bits);
      break;
    default:
      break;
  }
  return Value::null();
}

}  // namespace

Value logical(Context& context, Operator op, const Value& left, const Value& right) {
  const Bits a = bits_of(context, left);
  const Bits b = bits_of(context, right);
  if (a.type == Type::null || b.type == Type::null) return with_null(op, a, b);
  return result(wider(a.type, b.type), applied(op, a.bits, b.bits));
}

Value logical_not(Context& context, const Value& value) {
  const Bits bits = bits_of(context, value);
  if (bits.type == Type::null) return Value::null();
  return result(bits.type, ~bits.bits);
}

bool is_same_object(const Value& left, const Value& right) {
  const Value& a = left.get();
  const Value& b = right.get();
  if (!a.is(Type::object) || !b.is(Type::object)) raise(error::object_required);
  return a.object() == b.object();
}

}  // namespace zrl::vbs
