#include "scripting/vbscript/conversions.h"

#include <charconv>
#include <cmath>

#include "scripting/vbscript/date_parser.h"
#include "scripting/vbscript/dates.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

bool is_space(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == 0xA0;
}

std::u16string_view trimmed(std::u16string_view text) {
  while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_space(text.back())) text.remove_suffix(1);
  return text;
}

std::optional<double> parse_based(std::u16string_view text) {
  if (text.size() < 3 || text[0] != u'&') return std::nullopt;
  const char16_t marker = to_lower(text[1]);
  if (marker != u'h' && marker != u'o') return std::nullopt;
  std::string digits;
  for (const char16_t unit : text.substr(2)) digits += unit < 0x80 ? static_cast<char>(unit) : '?';
  const bool marked = digits.back() == '&';
  if (marked) digits.pop_back();
  std::uint32_t number = 0;
  const auto result =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, marker == u'h' ? 16 : 8);
  if (result.ec != std::errc() || result.ptr != digits.data() + digits.size()) return std::nullopt;
  if (!marked && number <= 0xffff) return static_cast<std::int16_t>(static_cast<std::uint16_t>(number));
  return static_cast<std::int32_t>(number);
}

[[noreturn]] void mismatch(const Value& value) {
  raise(error::type_mismatch, description_of(value));
}

double number_of_text(Context& context, const Value& value) {
  context.heap.work(value.text().size());
  if (const auto number = parse_number(value.text(), *context.locale)) return *number;
  mismatch(value);
}

}  // namespace

std::u16string description_of(const Value& value) {
  constexpr std::size_t longest = 40;
  switch (value.type()) {
    case Type::string:
      return u"[string: \"" + std::u16string(value.text().substr(0, longest)) + u"\"]";
    case Type::integer:
    case Type::long_integer:
      return u"[number: " + integer_text(value.i()) + u"]";
    default:
      return {};
  }
}

namespace {

// A number as people write it, without its sign, grouping and currency: digits, point, exponent.
struct Decimal {
  std::string digits;
  bool negative = false;
};

std::optional<Decimal> read_decimal(std::u16string_view text, const Locale& locale) {
  bool negative = false;
  bool signed_already = false;
  if (text.size() > 2 && text.front() == u'(' && text.back() == u')') {
    negative = signed_already = true;
    text = trimmed(text.substr(1, text.size() - 2));
  }
  const std::u16string_view currency = locale.currency;
  bool money = false;
  while (!text.empty()) {
    if ((text[0] == u'-' || text[0] == u'+') && !signed_already) {
      negative = text[0] == u'-';
      signed_already = true;
      text.remove_prefix(1);
    } else if (!money && text.substr(0, currency.size()) == currency) {
      money = true;
      text.remove_prefix(currency.size());
    } else if (is_space(text[0])) {
      text.remove_prefix(1);
    } else {
      break;
    }
  }
  std::string plain;
  bool digits = false;
  bool point = false;
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    if (is_digit(text[i])) {
      plain += static_cast<char>(text[i]);
      digits = true;
    } else if (text[i] == locale.decimal && !point) {
      plain += '.';
      point = true;
    } else if (text[i] != locale.thousands || point || !digits) {
      break;
    }
  }
  if (!digits) return std::nullopt;
  if (i < text.size() && (to_lower(text[i]) == u'e' || to_lower(text[i]) == u'd')) {
    std::size_t exponent = i + 1;
    std::string mark = "e";
    if (exponent < text.size() && (text[exponent] == u'-' || text[exponent] == u'+')) {
      if (text[exponent] == u'-') mark += '-';
      ++exponent;
    }
    if (exponent < text.size() && is_digit(text[exponent])) {
      plain += mark;
      for (; exponent < text.size() && is_digit(text[exponent]); ++exponent)
        plain += static_cast<char>(text[exponent]);
      i = exponent;
    }
  }
  std::u16string_view rest = trimmed(text.substr(i));
  if (!money && !rest.empty() && rest.substr(0, currency.size()) == currency) {
    rest = trimmed(rest.substr(currency.size()));
  }
  if (!rest.empty() && !signed_already && (rest == u"-" || rest == u"+")) {
    negative = rest == u"-";
    rest = {};
  }
  if (!rest.empty()) return std::nullopt;
  return Decimal{std::move(plain), negative};
}

// Raises 6 for what is too large.
template <class Number>
Number value_of(const Decimal& decimal) {
  const std::string& digits = decimal.digits;
  Number number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec == std::errc::result_out_of_range) {
    if (digits.find("e-") == digits.npos) raise(error::overflow);
    number = 0;
  }
  return decimal.negative ? -number : number;
}

// A text may say more than a Double holds.
std::optional<std::int64_t> parse_currency(std::u16string_view text, const Locale& locale) {
  std::optional<Decimal> decimal = read_decimal(trimmed(text), locale);
  if (!decimal || decimal->digits.find('e') != std::string::npos) return std::nullopt;
  decimal->digits += "e4";
  const long double scaled = std::nearbyint(value_of<long double>(*decimal));
  if (!(scaled >= -9223372036854775808.0L && scaled < 9223372036854775808.0L)) raise(error::overflow);
  return static_cast<std::int64_t>(scaled);
}

}  // namespace

std::optional<double> parse_number(std::u16string_view text, const Locale& locale) {
  text = trimmed(text);
  if (text.starts_with(u'&')) return parse_based(text);
  const std::optional<Decimal> decimal = read_decimal(text, locale);
  if (!decimal) return std::nullopt;
  return value_of<double>(*decimal);
}

std::int64_t round_to(double number, double least, double most) {
  const double rounded = std::nearbyint(number);
  if (!(rounded >= least && rounded <= most)) raise(error::overflow);
  return static_cast<std::int64_t>(rounded);
}

std::int64_t double_to_currency(double number) {
  const long double scaled = std::nearbyint(static_cast<long double>(number) * currency_scale);
  if (!(std::fabs(scaled) < 9223372036854775807.0L)) raise(error::overflow);
  return static_cast<std::int64_t>(scaled);
}

double currency_to_double(std::int64_t currency) {
  return static_cast<double>(currency) / static_cast<double>(currency_scale);
}

std::optional<bool> parse_truth(std::u16string_view text) {
  for (const bool truth : {true, false}) {
    if (equal_ignoring_case(text, truth ? u"true" : u"false")) return truth;
    if (equal_ignoring_case(text, truth ? u"#true#" : u"#false#")) return truth;
  }
  return std::nullopt;
}

double to_number(Context& context, const Value& value) {
  switch (value.type()) {
    case Type::empty:
      return 0;
    case Type::integer:
    case Type::long_integer:
    case Type::boolean:
    case Type::byte:
      return static_cast<double>(value.i());
    case Type::real:
    case Type::single:
    case Type::date:
      return value.d();
    case Type::currency:
      return currency_to_double(value.i());
    case Type::string:
      return number_of_text(context, value);
    case Type::null:
      raise(error::null_use);
    case Type::object:
      return to_number(context, context.default_value(value));
    case Type::reference:
      return to_number(context, *value.reference());
    default:
      mismatch(value);
  }
}

Value to_numeric(Context& context, const Value& value) {
  switch (value.type()) {
    case Type::empty:
      return Value::integer(0);
    case Type::string:
      return Value::real(number_of_text(context, value));
    case Type::object:
      return to_numeric(context, context.default_value(value));
    case Type::reference:
      return to_numeric(context, *value.reference());
    case Type::boolean:
      return Value::integer(value.i());
    case Type::integer:
    case Type::long_integer:
    case Type::byte:
    case Type::real:
    case Type::single:
    case Type::date:
    case Type::currency:
    case Type::null:
      return value;
    default:
      mismatch(value);
  }
}

std::int64_t to_long(Context& context, const Value& value) {
  if (value.is(Type::integer) || value.is(Type::long_integer)) return value.i();
  return round_to(to_number(context, value), -2147483648.0, 2147483647.0);
}

std::int64_t to_integer(Context& context, const Value& value) {
  return round_to(to_number(context, value), -32768.0, 32767.0);
}

bool to_boolean(Context& context, const Value& value) {
  switch (value.type()) {
    case Type::boolean:
    case Type::integer:
    case Type::long_integer:
    case Type::byte:
    case Type::currency:
      return value.i() != 0;
    case Type::string:
      if (const auto truth = parse_truth(value.text())) return *truth;
      return number_of_text(context, value) != 0;
    case Type::object:
      return to_boolean(context, context.default_value(value));
    case Type::reference:
      return to_boolean(context, *value.reference());
    default:
      return to_number(context, value) != 0;
  }
}

bool to_condition(Context& context, const Value& value) {
  if (value.is(Type::null)) return false;
  if (value.is(Type::object)) return to_condition(context, context.default_value(value));
  if (value.is(Type::reference)) return to_condition(context, *value.reference());
  return to_boolean(context, value);
}

Ref<String> to_string(Context& context, const Value& value) {
  Heap& heap = context.heap;
  switch (value.type()) {
    case Type::string:
      return Ref<String>(value.string());
    case Type::empty:
      return heap.empty_string();
    case Type::integer:
    case Type::long_integer:
    case Type::byte: {
      char buffer[24];
      char16_t units[24];
      const auto result = std::to_chars(buffer, buffer + sizeof buffer, value.i());
      const std::size_t length = static_cast<std::size_t>(result.ptr - buffer);
      for (std::size_t i = 0; i < length; ++i) units[i] = static_cast<char16_t>(buffer[i]);
      return length == 1 ? heap.unit_string(units[0]) : heap.string({units, length});
    }
    case Type::boolean:
      return heap.string(value.i() != 0 ? u"True" : u"False");
    case Type::real:
      return heap.string(number_text(value.d(), 15, *context.locale));
    case Type::single:
      return heap.string(single_text(value.d(), *context.locale));
    case Type::currency:
      return heap.string(currency_text(value.i(), *context.locale));
    case Type::date:
      return heap.string(date_text(value.d(), *context.locale));
    case Type::null:
      raise(error::null_use);
    case Type::object:
      return to_string(context, context.default_value(value));
    case Type::reference:
      return to_string(context, *value.reference());
    default:
      mismatch(value);
  }
}

double to_date(Context& context, const Value& value) {
  double serial = 0;
  if (value.is(Type::reference)) return to_date(context, *value.reference());
  if (value.is(Type::object)) return to_date(context, context.default_value(value));
  if (value.is(Type::string)) {
    if (const auto date = parse_date(value.text(), *context.locale)) return *date;
    const auto number = parse_number(value.text(), *context.locale);
    if (!number) mismatch(value);
    serial = *number;
  } else {
    serial = to_number(context, value);
  }
  if (!is_date_serial(serial)) raise(error::overflow);
  return serial;
}

std::int64_t to_currency(Context& context, const Value& value) {
  if (value.is(Type::currency)) return value.i();
  if (value.is(Type::reference)) return to_currency(context, *value.reference());
  if (value.is(Type::string)) {
    if (const auto currency = parse_currency(value.text(), *context.locale)) return *currency;
  }
  return double_to_currency(to_number(context, value));
}

Text::Text(Context& context, const Value& value) {
  const Value& actual = value.get();
  if (actual.is(Type::string)) {
    view_ = actual.text();
    return;
  }
  string_ = to_string(context, actual);
  view_ = string_->view();
}

}  // namespace zrl::vbs
