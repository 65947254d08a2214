#include <charconv>
#include <cmath>
#include <cstdio>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

// The digits of a number and the power of ten of the first one.
struct Digits {
  std::string digits;
  int exponent = 0;
};

Digits significant_digits(double number, int count) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*e", count - 1, number);
  Digits result;
  const char* next = buffer;
  for (; *next != 'e'; ++next) {
    if (*next >= '0' && *next <= '9') result.digits += *next;
  }
  std::from_chars(next + (next[1] == '+' ? 2 : 1), buffer + sizeof buffer, result.exponent);
  result.digits.erase(result.digits.find_last_not_of('0') + 1);
  if (result.digits.empty()) result.digits.assign(1, '0'), result.exponent = 0;
  return result;
}

std::u16string scientific(const Digits& number, char16_t decimal) {
  std::u16string text = ascii(number.digits.substr(0, 1));
  if (number.digits.size() > 1) (text += decimal) += ascii(number.digits.substr(1));
  char exponent[16];
  std::snprintf(exponent, sizeof exponent, "E%c%02d", number.exponent < 0 ? '-' : '+',
                std::abs(number.exponent));
  return text + ascii(exponent);
}

std::u16string positional(const Digits& number, char16_t decimal) {
  const int size = static_cast<int>(number.digits.size());
  std::u16string text;
  if (number.exponent < 0) {
    text = u"0";
    text += decimal;
    text.append(static_cast<std::size_t>(-number.exponent - 1), u'0');
    return text + ascii(number.digits);
  }
  for (int i = 0; i <= number.exponent || i < size; ++i) {
    if (i == number.exponent + 1) text += decimal;
    text += i < size ? static_cast<char16_t>(number.digits[static_cast<std::size_t>(i)]) : u'0';
  }
  return text;
}

}  // namespace

std::u16string number_text(double number, int digits, const Locale& locale) {
  if (std::isnan(number)) return number < 0 ? u"-1.#IND" : u"1.#QNAN";
  if (std::isinf(number)) return number < 0 ? u"-1.#INF" : u"1.#INF";
  if (number == 0) return u"0";
  const Digits significant = significant_digits(std::fabs(number), digits);
  const int decimals = static_cast<int>(significant.digits.size()) - significant.exponent - 1;
  const bool plain = significant.exponent < digits && (significant.exponent >= 0 || decimals <= digits);
  std::u16string text =
      plain ? positional(significant, locale.decimal) : scientific(significant, locale.decimal);
  if (number >= 0) return text;
  std::u16string negative(1, u'-');
  return negative.append(text);
}

std::u16string single_text(double number, const Locale& locale) {
  return number_text(number, 7, locale);
}

std::u16string integer_text(std::int64_t number) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, number);
  return {buffer, result.ptr};
}

std::u16string currency_text(std::int64_t currency, const Locale& locale) {
  const bool negative = currency < 0;
  const std::uint64_t size =
      negative ? 0 - static_cast<std::uint64_t>(currency) : static_cast<std::uint64_t>(currency);
  std::u16string text = negative ? u"-" : u"";
  text += ascii(std::to_string(size / currency_scale));
  std::string fraction = std::to_string(size % currency_scale + currency_scale).substr(1);
  fraction.erase(fraction.find_last_not_of('0') + 1);
  if (!fraction.empty()) (text += locale.decimal) += ascii(fraction);
  return text;
}

}  // namespace zrl::vbs
