#include <algorithm>
#include <cmath>
#include <cstdio>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/dates.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

// FormatNumber and its kin.
namespace zrl::vbs {

namespace {

// -1 yes, 0 no, -2 as the locale does.
bool choice(Machine& machine, Arguments arguments, std::size_t i, bool otherwise) {
  const std::int64_t chosen = arguments.has(i) ? to_long(machine, arguments[i]) : -2;
  if (chosen < -2 || chosen > 0) raise(error::invalid_call);
  return chosen == -2 ? otherwise : chosen == -1;
}

// What is formatted: Null is no number here.
double number_argument(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) raise(error::type_mismatch);
  return to_number(machine, arguments[0]);
}

// The decimal digits of a number with `decimals` of them behind the point, rounded half up.
std::string fixed_digits(double number, std::size_t decimals) {
  char buffer[512];
  // Fifteen digits are what the number says; the rounding starts from them.
  const int magnitude = number == 0 ? 0 : static_cast<int>(std::floor(std::log10(number)));
  const int known = std::clamp(14 - magnitude, 0, 300);
  std::snprintf(buffer, sizeof buffer, "%.*f", known, number);
  std::string text = buffer;
  std::size_t point = text.find('.');
  if (point == text.npos) {
    point = text.size();
    text += '.';
  }
  if (text.size() - point - 1 <= decimals) {
    text.append(decimals - (text.size() - point - 1), '0');
    return text;
  }
  const bool up = text[point + 1 + decimals] >= '5';
  text.resize(point + 1 + decimals);
  for (std::size_t i = text.size(); up && i-- > 0;) {
    if (text[i] == '.') continue;
    if (text[i] != '9') {
      ++text[i];
      return text;
    }
    text[i] = '0';
    if (i == 0) text.insert(text.begin(), '1');
  }
  return text;
}

struct Style {
  std::size_t decimals = 2;
  bool leading_zero = true;
  bool parentheses = false;
  bool grouped = true;
};

Style style_argument(Machine& machine, Arguments arguments, bool parentheses) {
  Style style;
  const std::int64_t decimals = arguments.has(1) ? to_long(machine, arguments[1]) : -1;
  if (decimals < -1 || decimals > 255) raise(error::invalid_call);
  if (decimals >= 0) style.decimals = static_cast<std::size_t>(decimals);
  style.leading_zero = choice(machine, arguments, 2, true);
  style.parentheses = choice(machine, arguments, 3, parentheses);
  style.grouped = choice(machine, arguments, 4, true);
  return style;
}

// The amount without its sign.
std::u16string amount(double number, const Style& style, const Locale& locale) {
  const std::string digits = fixed_digits(std::fabs(number), style.decimals);
  const std::size_t point = digits.find('.');
  std::u16string text;
  for (std::size_t i = 0; i < point; ++i) {
    if (style.grouped && i > 0 && (point - i) % 3 == 0) text += locale.thousands;
    text += static_cast<char16_t>(digits[i]);
  }
  if (!style.leading_zero && text == u"0" && style.decimals > 0) text.clear();
  if (style.decimals > 0) (text += locale.decimal) += ascii(digits.substr(point + 1));
  return text;
}

bool is_zero(std::u16string_view text) {
  return text.find_first_of(u"123456789") == text.npos;
}

Value result(Machine& machine, const std::u16string& text) {
  return Value(machine.heap.string(text));
}

std::u16string with_sign(const std::u16string& text, bool negative, bool parentheses) {
  if (!negative) return text;
  return parentheses ? u"(" + text + u")" : u"-" + text;
}

Value format_number(Machine& machine, Arguments arguments) {
  const double number = number_argument(machine, arguments);
  const Style style = style_argument(machine, arguments, false);
  const std::u16string text = amount(number, style, *machine.locale);
  return result(machine, with_sign(text, number < 0 && !is_zero(text), style.parentheses));
}

Value format_percent(Machine& machine, Arguments arguments) {
  const double number = number_argument(machine, arguments) * 100;
  if (!std::isfinite(number)) raise(error::overflow);
  const Style style = style_argument(machine, arguments, false);
  const std::u16string text = amount(number, style, *machine.locale);
  return result(machine, with_sign(text + u"%", number < 0 && !is_zero(text), style.parentheses));
}

Value format_currency(Machine& machine, Arguments arguments) {
  const double number = number_argument(machine, arguments);
  const Locale& locale = *machine.locale;
  const Style style = style_argument(machine, arguments, locale.money_in_parentheses);
  std::u16string text = amount(number, style, locale);
  const bool negative = number < 0 && !is_zero(text);
  const std::u16string blank = locale.currency_blank ? u" " : u"";
  text = locale.currency_first ? locale.currency + blank + text : text + blank + locale.currency;
  return result(machine, with_sign(text, negative, style.parentheses));
}

Value format_date_time(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) raise(error::type_mismatch);
  const double serial = to_date(machine, arguments[0]);
  const std::int64_t form = arguments.has(1) ? to_long(machine, arguments[1]) : 0;
  const Locale& locale = *machine.locale;
  switch (form) {
    case 0:
      return result(machine, date_text(serial, locale));
    case 1:
      return result(machine, long_date_text(serial, locale));
    case 2:
      return result(machine, short_date_text(serial, locale));
    case 3:
      return result(machine, long_time_text(serial, locale));
    case 4:
      return result(machine, short_time_text(serial));
    default:
      raise(error::invalid_call);
  }
}

constexpr Builtin functions[] = {
    {"FormatNumber", 1, 5, format_number},
    {"FormatPercent", 1, 5, format_percent},
    {"FormatCurrency", 1, 5, format_currency},
    {"FormatDateTime", 1, 2, format_date_time},
};

}  // namespace

std::span<const Builtin> format_functions() {
  return functions;
}

}  // namespace zrl::vbs
