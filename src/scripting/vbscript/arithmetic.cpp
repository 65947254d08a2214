#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/operators.h"

namespace zrl::vbs {

namespace {

// How far a sub-type reaches; the result of + - * is of the farther one of both.
enum Rank { rank_byte, rank_integer, rank_long, rank_single, rank_double, rank_currency, rank_date };

Rank rank_of(const Value& value) {
  switch (value.type()) {
    case Type::byte:
      return rank_byte;
    case Type::integer:
      return rank_integer;
    case Type::long_integer:
      return rank_long;
    case Type::single:
      return rank_single;
    case Type::currency:
      return rank_currency;
    case Type::date:
      return rank_date;
    default:
      return rank_double;
  }
}

double number_of(const Value& value) {
  if (value.is(Type::currency)) return currency_to_double(value.i());
  const Rank rank = rank_of(value);
  return rank <= rank_long ? static_cast<double>(value.i()) : value.d();
}

Value real_result(double number) {
  if (!std::isfinite(number)) raise(error::overflow);
  return Value::real(number);
}

Value single_result(double number) {
  const auto narrowed = static_cast<float>(number);
  if (!std::isfinite(narrowed)) return real_result(number);
  return Value::of(Type::single, static_cast<double>(narrowed));
}

Value date_result(double number) {
  if (!(number > -657435.0 && number < 2958466.0)) raise(error::overflow);
  return Value::date(number);
}

// Of Bytes, Integers and Longs: the smallest of them that is not below the operands' and holds it.
Value whole_result(std::int64_t number, Rank rank) {
  if (rank == rank_byte && number >= 0 && number <= 255) return Value::of(Type::byte, number);
  if (rank <= rank_integer && number >= -32768 && number <= 32767) return Value::integer(number);
  if (number >= -2147483648LL && number <= 2147483647LL) return Value::long_integer(number);
  return Value::real(static_cast<double>(number));
}

// Rounded half to even. Both are taken apart at the point, so that nothing leaves 64 bits unseen.
std::int64_t currency_product(std::int64_t left, std::int64_t right) {
  const std::int64_t fractions = (left % currency_scale) * (right % currency_scale);
  std::int64_t smallest = fractions / currency_scale;
  const std::int64_t rest = std::abs(fractions % currency_scale) * 2;
  if (rest > currency_scale || (rest == currency_scale && smallest % 2 != 0))
    smallest += fractions < 0 ? -1 : 1;
  std::int64_t result = 0;
  const bool failed =
      __builtin_mul_overflow(left / currency_scale, right, &result) ||
      __builtin_add_overflow(result, (left % currency_scale) * (right / currency_scale), &result) ||
      __builtin_add_overflow(result, smallest, &result);
  if (failed) raise(error::overflow);
  return result;
}

Value currency_result(Operator op, const Value& left, const Value& right) {
  const auto exact = [](const Value& value) {
    if (value.is(Type::currency)) return value.i();
    return double_to_currency(number_of(value));
  };
  std::int64_t result = 0;
  if (op == Operator::multiply) return Value::of(Type::currency, currency_product(exact(left), exact(right)));
  const bool failed = op == Operator::add ? __builtin_add_overflow(exact(left), exact(right), &result)
                                          : __builtin_sub_overflow(exact(left), exact(right), &result);
  if (failed) raise(error::overflow);
  return Value::of(Type::currency, result);
}

double applied(Operator op, double a, double b) {
  return op == Operator::add ? a + b : op == Operator::subtract ? a - b : a * b;
}

Value sum_like(Operator op, const Value& left, const Value& right) {
  const Rank a = rank_of(left);
  const Rank b = rank_of(right);
  const Rank rank = std::max(a, b);
  if (rank <= rank_long) {
    const std::int64_t x = left.i();
    const std::int64_t y = right.i();
    return whole_result(op == Operator::add ? x + y : op == Operator::subtract ? x - y : x * y, rank);
  }
  const double number = applied(op, number_of(left), number_of(right));
  if (rank == rank_single) {
    return a == rank_long || b == rank_long ? real_result(number) : single_result(number);
  }
  if (rank == rank_date) {
    const bool difference = op == Operator::subtract && a == b;
    return op == Operator::multiply || difference ? real_result(number) : date_result(number);
  }
  if (rank == rank_currency) {
    const bool with_real = std::min(a, b) == rank_double || std::min(a, b) == rank_single;
    if (op == Operator::multiply && with_real) return real_result(number);
    return currency_result(op, left, right);
  }
  return real_result(number);
}

Value quotient(const Value& left, const Value& right) {
  const double divisor = number_of(right);
  const double dividend = number_of(left);
  if (divisor == 0) raise(dividend == 0 ? error::overflow : error::division_by_zero);
  const auto narrow = [](const Value& v) { return rank_of(v) <= rank_single && rank_of(v) != rank_long; };
  const bool any_single = left.is(Type::single) || right.is(Type::single);
  if (any_single && narrow(left) && narrow(right)) return single_result(dividend / divisor);
  return real_result(dividend / divisor);
}

// \ and Mod: of rounded operands.
Value whole_quotient(Operator op, const Value& left, const Value& right) {
  const auto rounded = [](const Value& value) {
    return rank_of(value) <= rank_long ? value.i() : round_to(number_of(value), -2147483648.0, 2147483647.0);
  };
  const std::int64_t a = rounded(left);
  const std::int64_t b = rounded(right);
  if (b == 0) raise(error::division_by_zero);
  const Rank rank = std::min(std::max(rank_of(left), rank_of(right)), rank_long);
  return whole_result(op == Operator::mod ? a % b : a / b, rank);
}

Value power(const Value& left, const Value& right) {
  const double base = number_of(left);
  const double exponent = number_of(right);
  if (base == 0 && exponent < 0) raise(error::invalid_call);
  if (base < 0 && std::trunc(exponent) != exponent) raise(error::invalid_call);
  return real_result(std::pow(base, exponent));
}

// + of two texts, and of a text and Empty, is &.
bool joins(const Value& left, const Value& right) {
  const bool left_text = left.is(Type::string);
  const bool right_text = right.is(Type::string);
  return (left_text && (right_text || right.is(Type::empty))) || (right_text && left.is(Type::empty));
}

Value scalar(Context& context, const Value& value) {
  const Value& actual = value.get();
  return actual.is(Type::object) ? context.default_value(actual) : actual;
}

}  // namespace

Value arithmetic(Context& context, Operator op, const Value& left, const Value& right) {
  const Value a = scalar(context, left);
  const Value b = scalar(context, right);
  if (op == Operator::add && joins(a, b)) {
    const Value parts[] = {a, b};
    return concatenation(context, parts, 2);
  }
  if (a.is(Type::null) || b.is(Type::null)) {
    const Value& other = a.is(Type::null) ? b : a;
    if (static_cast<int>(other.type()) > static_cast<int>(Type::string)) raise(error::type_mismatch);
    return Value::null();
  }
  Value x = to_numeric(context, a);
  Value y = to_numeric(context, b);
  switch (op) {
    case Operator::add:
    case Operator::subtract:
    case Operator::multiply:
      // Empty beside a Byte is one.
      if (a.is(Type::empty) && b.is(Type::byte)) x = Value::of(Type::byte, std::int64_t{0});
      if (b.is(Type::empty) && a.is(Type::byte)) y = Value::of(Type::byte, std::int64_t{0});
      return sum_like(op, x, y);
    case Operator::divide:
      return quotient(x, y);
    case Operator::power:
      return power(x, y);
    default:
      return whole_quotient(op, x, y);
  }
}

Value negated(Context& context, const Value& value) {
  Value number = to_numeric(context, value);
  switch (number.type()) {
    case Type::null:
      return number;
    case Type::byte:
    case Type::integer:
      return whole_result(-number.i(), rank_integer);
    case Type::long_integer:
      return whole_result(-number.i(), rank_long);
    case Type::currency:
      if (number.i() == INT64_MIN) raise(error::overflow);
      return Value::of(Type::currency, -number.i());
    case Type::date:
      return date_result(-number.d());
    default:
      return Value::of(number.type(), -number.d());
  }
}

Value plus(Context& context, const Value& value) {
  return scalar(context, value);
}

}  // namespace zrl::vbs
