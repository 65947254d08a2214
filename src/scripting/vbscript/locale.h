#pragma once

#include <cstdint>
#include <string_view>

namespace zrl::vbs {

// How people of a country write numbers, dates and money.
struct Locale {  // NOLINT(clang-analyzer-optin.performance.Padding)
  enum class DateOrder : std::uint8_t { month_day_year, day_month_year, year_month_day };
  std::int32_t id;
  const char* tag;
  char16_t decimal;
  char16_t thousands;
  const char16_t* currency;
  bool currency_first;        // the sign stands before the amount
  bool currency_blank;        // with a blank between
  bool money_in_parentheses;  // negative amounts
  DateOrder order;
  char16_t date_separator;
  bool padded_date;  // 02.01.2020
  bool twelve_hours;
  bool padded_hour;
  const char16_t* long_date;  // d dd ddd.. see dates.cpp: W weekday, M month, d day, D padded day, y year
  const char16_t* const* months;
  const char16_t* const* short_months;
  const char16_t* const* days;  // from Sunday
  const char16_t* const* short_days;
};

inline constexpr std::int32_t american = 1033;

// nullptr where the locale is not known. 0, 1024 and 2048 are the default, American English.
const Locale* find_locale(std::int32_t id);
const Locale* find_locale(std::u16string_view tag);
const Locale& american_locale();

}  // namespace zrl::vbs
