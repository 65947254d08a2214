#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "scripting/vbscript/context.h"

// From one sub-type to another. What cannot be converted raises 13, Null 94, what does not fit 6. Objects
// are asked for their default value.
namespace zrl::vbs {

double to_number(Context& context, const Value& value);
// As an Integer, Long, Double, ...: Empty is an Integer 0, a string a Double, an object its value. Null
// stays.
Value to_numeric(Context& context, const Value& value);
// Rounded half to even.
std::int64_t to_long(Context& context, const Value& value);
std::int64_t to_integer(Context& context, const Value& value);
bool to_boolean(Context& context, const Value& value);
// Of If and its kin: Null is not true.
bool to_condition(Context& context, const Value& value);
Ref<String> to_string(Context& context, const Value& value);
double to_date(Context& context, const Value& value);
std::int64_t to_currency(Context& context, const Value& value);

// A text as the language writes it, without making a string where there is one already.
class Text {
 public:
  Text(Context& context, const Value& value);
  operator std::u16string_view() const { return view_; }  // NOLINT
  std::u16string_view view() const { return view_; }

 private:
  Ref<String> string_;
  std::u16string_view view_;
};

// Rounded half to even; raises 6 outside the range.
std::int64_t round_to(double number, double least, double most);
std::int64_t double_to_currency(double number);
double currency_to_double(std::int64_t currency);

// True and False, as they are written or as file output has them: #TRUE#.
std::optional<bool> parse_truth(std::u16string_view text);
std::optional<double> parse_number(std::u16string_view text, const Locale& locale);

std::u16string number_text(double number, int digits, const Locale& locale);
std::u16string single_text(double number, const Locale& locale);
std::u16string currency_text(std::int64_t currency, const Locale& locale);
std::u16string integer_text(std::int64_t number);
// A value as errors name it: [string: "abc"], [number: 5], or nothing.
std::u16string description_of(const Value& value);

}  // namespace zrl::vbs
