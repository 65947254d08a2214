#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/operators.h"

namespace zrl::vbs {

namespace {

int order(double a, double b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

// By units, four at a time up to the first difference.
int order(Context& context, std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  context.heap.work(common);
  std::size_t i = 0;
  for (std::uint64_t x = 0, y = 0; i + 4 <= common; i += 4) {
    std::memcpy(&x, a.data() + i, sizeof x);
    std::memcpy(&y, b.data() + i, sizeof y);
    if (x != y) break;
  }
  for (; i < common; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

bool is_integral(const Value& value) {
  const Type type = value.type();
  return type == Type::empty || type == Type::integer || type == Type::long_integer ||
         type == Type::boolean || type == Type::byte;
}

// A text and something that is none.
int compare_text_with(Context& context, const Value& text, const Value& other, bool text_literal,
                      bool other_literal) {
  if (other.is(Type::empty)) return text.text().empty() ? 0 : 1;
  if (other.is(Type::boolean)) {
    return text_literal || other_literal ? order(context, text.text(), Text(context, other)) : 1;
  }
  if (other_literal) {
    if (other.is(Type::date)) return order(to_date(context, text), other.d());
    return order(to_number(context, text), to_number(context, other));
  }
  if (text_literal) return order(context, text.text(), Text(context, other));
  return 1;
}

}  // namespace

int compare(Context& context, const Value& left, const Value& right, Literals literals) {
  const Value& a = left.get();
  const Value& b = right.get();
  if (a.is(Type::string) && b.is(Type::string)) return order(context, a.text(), b.text());
  if (a.is(Type::object)) return compare(context, context.default_value(a), b, literals);
  if (b.is(Type::object)) return compare(context, a, context.default_value(b), literals);
  const bool plain = static_cast<int>(a.type()) <= static_cast<int>(Type::string) && !a.is(Type::error) &&
                     static_cast<int>(b.type()) <= static_cast<int>(Type::string) && !b.is(Type::error);
  if (!plain) raise(error::type_mismatch);
  if (a.is(Type::null) || b.is(Type::null)) return unordered;
  const bool left_text = a.is(Type::string);
  const bool right_text = b.is(Type::string);
  if (left_text) return compare_text_with(context, a, b, literals.left, literals.right);
  if (right_text) return -compare_text_with(context, b, a, literals.right, literals.left);
  if ((is_integral(a) && is_integral(b)) || (a.is(Type::currency) && b.is(Type::currency))) {
    return a.i() < b.i() ? -1 : a.i() > b.i() ? 1 : 0;
  }
  const double x = to_number(context, a);
  const double y = to_number(context, b);
  // A Single has no more digits than that: a Double beside it loses its own.
  const bool narrow = (a.is(Type::single) && b.is(Type::real)) || (a.is(Type::real) && b.is(Type::single));
  return narrow ? order(static_cast<float>(x), static_cast<float>(y)) : order(x, y);
}

bool holds(Operator op, int order) {
  switch (op) {
    case Operator::equal:
      return order == 0;
    case Operator::not_equal:
      return order != 0;
    case Operator::less:
      return order < 0;
    case Operator::greater:
      return order > 0;
    case Operator::less_equal:
      return order <= 0;
    default:
      return order >= 0;
  }
}

bool fits_label(Context& context, const Value& value, const Value& label, Literals literals) {
  const auto scalar = [&](const Value& operand) {
    const Value& actual = operand.get();
    return actual.is(Type::object) ? context.default_value(actual) : actual;
  };
  const Value a = scalar(value);
  const Value b = scalar(label);
  try {
    return compare(context, a, b, literals) == 0;
  } catch (const Failure& failure) {
    const bool other_type =
        a.is(Type::string) != b.is(Type::string) && !a.is(Type::array) && !b.is(Type::array);
    const bool unfit = failure.number == error::type_mismatch || failure.number == error::overflow;
    if (failure.final || !other_type || !unfit) throw;
    return false;
  }
}

Value comparison(Context& context, Operator op, const Value& left, const Value& right, Literals literals) {
  const int result = compare(context, left, right, literals);
  return result == unordered ? Value::null() : Value::boolean(holds(op, result));
}

namespace {

// Parts that end within a unit: byte by byte.
Value joined_bytes(Heap& heap, const Ref<String>* parts, std::size_t count) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < count; ++i) length += parts[i]->byte_length();
  Ref<String> whole = heap.byte_string(length);
  char* next = reinterpret_cast<char*>(whole->units());
  for (std::size_t i = 0; i < count; ++i) {
    std::memcpy(next, parts[i]->units(), parts[i]->byte_length());
    next += parts[i]->byte_length();
  }
  return Value(std::move(whole));
}

}  // namespace

Value concatenation(Context& context, const Value* parts, std::size_t count) {
  // All parts are held: asking an object for its value may change the variables of the others.
  constexpr std::size_t few = 16;
  Ref<String> made_few[few];
  std::vector<Ref<String>> made_many;
  if (count > few) made_many.resize(count);
  Ref<String>* made = count > few ? made_many.data() : made_few;
  std::size_t length = 0;
  bool all_null = true;
  bool odd = false;
  for (std::size_t i = 0; i < count; ++i) {
    const Value& part = parts[i].get();
    if (part.is(Type::string)) {
      made[i] = Ref<String>(part.string());
      length += made[i]->length;
      odd |= made[i]->odd != 0;
      all_null = false;
      continue;
    }
    const Value value = part.is(Type::object) ? context.default_value(part) : part;
    if (value.is(Type::null)) {
      made[i] = context.heap.empty_string();
      continue;
    }
    all_null = false;
    made[i] = to_string(context, value);
    length += made[i]->length;
  }
  if (all_null) return Value::null();
  if (odd) return joined_bytes(context.heap, made, count);
  Ref<String> whole = context.heap.blank_string(length);
  char16_t* next = whole->units();
  for (std::size_t i = 0; i < count; ++i) {
    const String* part = made[i].get();
    std::memcpy(next, part->units(), part->length * sizeof(char16_t));
    next += part->length;
  }
  return Value(std::move(whole));
}

void append(Context& context, Value& variable, const Value& value) {
  Value& target = variable.get();
  const Value& more = value.get();
  if (!target.is(Type::string) || target.string()->references != 1 || !more.is(Type::string) ||
      target.string() == more.string() || target.string()->odd != 0 || more.string()->odd != 0) {
    const Value parts[] = {target, more};
    Value joined = concatenation(context, parts, 2);
    variable.get() = std::move(joined);
    return;
  }
  String* string = target.string();
  const String* tail = more.string();
  const std::size_t length = std::size_t{string->length} + tail->length;
  if (length <= string->capacity) {
    std::memcpy(string->units() + string->length, tail->units(), tail->length * sizeof(char16_t));
    string->length = static_cast<std::uint32_t>(length);
    string->hash = 0;
    return;
  }
  context.heap.check_string_length(length);
  Ref<String> longer = context.heap.blank_string(context.heap.roomy_length(length));
  std::memcpy(longer->units(), string->units(), string->length * sizeof(char16_t));
  std::memcpy(longer->units() + string->length, tail->units(), tail->length * sizeof(char16_t));
  longer->length = static_cast<std::uint32_t>(length);
  target = Value(std::move(longer));
}

}  // namespace zrl::vbs
