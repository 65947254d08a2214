#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "scripting/vbscript/locale.h"

// Dates are days since 30 December 1899, the time of day is the fraction; before that day the fraction
// still counts forward. The calendar is the Gregorian one, from year 100 to 9999.
namespace zrl::vbs {

struct DateParts {
  std::int64_t year = 0;
  std::int64_t month = 1;  // 1 to 12
  std::int64_t day = 1;
  std::int64_t hour = 0;
  std::int64_t minute = 0;
  std::int64_t second = 0;
  int weekday = 0;  // 0: Sunday
};

bool is_date_serial(double serial);
DateParts parts_of(double serial);
// Whole days of a date; months and days beyond their range carry over. Nothing when out of range.
std::optional<double> day_serial(std::int64_t year, std::int64_t month, std::int64_t day);
// Days and seconds together.
double joined(double days, std::int64_t seconds);
// Days as a number that counts evenly, in both directions from the epoch.
double linear(double serial);
double from_linear(double days);

std::int64_t days_in_month(std::int64_t year, std::int64_t month);
// The clock, read once.
struct LocalTime {
  double day = 0;           // as a serial
  std::int64_t second = 0;  // of the day
  double fraction = 0;      // of the second
};
LocalTime local_time();
double now_serial();

// The general form: "1/2/2020 3:04:05 PM", without the part that is zero.
std::u16string date_text(double serial, const Locale& locale);
std::u16string short_date_text(double serial, const Locale& locale);
std::u16string long_date_text(double serial, const Locale& locale);
std::u16string long_time_text(double serial, const Locale& locale);
std::u16string short_time_text(double serial);

}  // namespace zrl::vbs
