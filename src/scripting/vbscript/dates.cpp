#include "scripting/vbscript/dates.h"

#include <chrono>
#include <cmath>
#include <ctime>

#include "scripting/vbscript/conversions.h"

namespace zrl::vbs {

namespace {

constexpr double first_serial = -657434;
constexpr double end_serial = 2958466;
constexpr std::int64_t seconds_a_day = 86'400;
constexpr std::int64_t epoch = -25'569;  // of the serials, in days of the clock

std::int64_t floor_divide(std::int64_t a, std::int64_t b) {
  return a / b - (a % b < 0 ? 1 : 0);
}

void put(std::u16string& text, std::int64_t number, bool padded) {
  if (padded && number < 10) text += u'0';
  text += integer_text(number);
}

std::u16string year_text(std::int64_t year) {
  std::u16string text = integer_text(year);
  return std::u16string(text.size() < 4 ? 4 - text.size() : 0, u'0') + text;
}

}  // namespace

bool is_date_serial(double serial) {
  return serial > first_serial - 1 && serial < end_serial;
}

double linear(double serial) {
  if (serial >= 0) return serial;
  const double days = std::trunc(serial);
  return days + (days - serial);
}

double from_linear(double days) {
  if (days >= 0) return days;
  const double whole = std::floor(days);
  return whole - (days - whole);
}

double joined(double days, std::int64_t seconds) {
  const double fraction = static_cast<double>(seconds) / static_cast<double>(seconds_a_day);
  return days < 0 ? days - fraction : days + fraction;
}

DateParts parts_of(double serial) {
  const double even = linear(serial);
  auto day = static_cast<std::int64_t>(std::floor(even));
  auto seconds =
      static_cast<std::int64_t>(std::floor((even - static_cast<double>(day)) * seconds_a_day + 0.5));
  if (seconds >= seconds_a_day) {
    ++day;
    seconds -= seconds_a_day;
  }
  const std::chrono::sys_days date{std::chrono::days(day + epoch)};
  const std::chrono::year_month_day civil(date);
  DateParts parts;
  parts.year = static_cast<int>(civil.year());
  parts.month = static_cast<unsigned>(civil.month());
  parts.day = static_cast<unsigned>(civil.day());
  parts.hour = seconds / 3600;
  parts.minute = seconds / 60 % 60;
  parts.second = seconds % 60;
  parts.weekday = static_cast<int>(std::chrono::weekday(date).c_encoding());
  return parts;
}

std::optional<double> day_serial(std::int64_t year, std::int64_t month, std::int64_t day) {
  constexpr std::int64_t bound = 4'000'000;
  if (std::abs(year) > 100'000 || std::abs(month) > bound || std::abs(day) > bound) return std::nullopt;
  year += floor_divide(month - 1, 12);
  month = month - 1 - floor_divide(month - 1, 12) * 12 + 1;
  if (year < -30'000 || year > 30'000) return std::nullopt;
  const std::chrono::year_month_day first{std::chrono::year(static_cast<int>(year)),
                                          std::chrono::month(static_cast<unsigned>(month)),
                                          std::chrono::day(1)};
  const std::int64_t days = std::chrono::sys_days(first).time_since_epoch().count() - epoch + day - 1;
  const auto serial = static_cast<double>(days);
  if (!is_date_serial(serial)) return std::nullopt;
  return serial;
}

std::int64_t days_in_month(std::int64_t year, std::int64_t month) {
  constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : lengths[month - 1];
}

LocalTime local_time() {
  // One reading of one clock: two of them may lie on both sides of a full second.
  const auto now = std::chrono::system_clock::now();
  const auto whole = std::chrono::floor<std::chrono::seconds>(now);
  const std::time_t clock = std::chrono::system_clock::to_time_t(whole);
  std::tm local{};
  localtime_r(&clock, &local);
  LocalTime result;
  result.day = day_serial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday).value_or(0);
  result.second = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  result.fraction = std::chrono::duration<double>(now - whole).count();
  return result;
}

double now_serial() {
  const LocalTime now = local_time();
  return joined(now.day, now.second);
}

std::u16string short_date_text(double serial, const Locale& locale) {
  const DateParts parts = parts_of(serial);
  const bool padded = locale.padded_date;
  std::u16string text;
  switch (locale.order) {
    case Locale::DateOrder::month_day_year:
      put(text, parts.month, padded);
      text += locale.date_separator;
      put(text, parts.day, padded);
      return text + locale.date_separator + year_text(parts.year);
    case Locale::DateOrder::day_month_year:
      put(text, parts.day, padded);
      text += locale.date_separator;
      put(text, parts.month, padded);
      return text + locale.date_separator + year_text(parts.year);
    default:
      text = year_text(parts.year) + locale.date_separator;
      put(text, parts.month, padded);
      text += locale.date_separator;
      put(text, parts.day, padded);
      return text;
  }
}

std::u16string long_date_text(double serial, const Locale& locale) {
  const DateParts parts = parts_of(serial);
  std::u16string text;
  for (const char16_t* next = locale.long_date; *next != 0; ++next) {
    switch (*next) {
      case u'W':
        text += locale.days[parts.weekday];
        break;
      case u'M':
        text += locale.months[parts.month - 1];
        break;
      case u'D':
      case u'd':
        put(text, parts.day, *next == u'D');
        break;
      case u'y':
        text += year_text(parts.year);
        break;
      default:
        text += *next;
    }
  }
  return text;
}

std::u16string long_time_text(double serial, const Locale& locale) {
  const DateParts parts = parts_of(serial);
  std::u16string text;
  const std::int64_t hour = locale.twelve_hours ? (parts.hour + 11) % 12 + 1 : parts.hour;
  put(text, hour, locale.padded_hour);
  text += u':';
  put(text, parts.minute, true);
  text += u':';
  put(text, parts.second, true);
  if (locale.twelve_hours) text += parts.hour < 12 ? u" AM" : u" PM";
  return text;
}

std::u16string short_time_text(double serial) {
  const DateParts parts = parts_of(serial);
  std::u16string text;
  put(text, parts.hour, true);
  text += u':';
  put(text, parts.minute, true);
  return text;
}

std::u16string date_text(double serial, const Locale& locale) {
  const DateParts parts = parts_of(serial);
  const bool has_time = parts.hour + parts.minute + parts.second != 0;
  const bool has_date = parts.year != 1899 || parts.month != 12 || parts.day != 30;
  if (!has_date) return long_time_text(serial, locale);
  std::u16string text = short_date_text(serial, locale);
  return has_time ? text + u' ' + long_time_text(serial, locale) : text;
}

}  // namespace zrl::vbs
