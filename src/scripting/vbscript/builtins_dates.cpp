#include <algorithm>
#include <cmath>

#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/date_parser.h"
#include "scripting/vbscript/dates.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

constexpr double seconds_a_day = 86'400;

Value date_value_of(double serial) {
  if (!is_date_serial(serial)) raise(error::invalid_call);
  return Value::date(serial);
}

double days_or_fail(std::int64_t year, std::int64_t month, std::int64_t day) {
  const auto serial = day_serial(year, month, day);
  if (!serial) raise(error::invalid_call);
  return *serial;
}

// Null gives Null.
template <class Part>
Value date_part(Machine& machine, Arguments arguments, Part part) {
  if (arguments[0].is(Type::null)) return Value::null();
  return Value::integer(part(parts_of(to_date(machine, arguments[0]))));
}

Value year(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.year; });
}
Value month(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.month; });
}
Value day(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.day; });
}
Value hour(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.hour; });
}
Value minute(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.minute; });
}
Value second(Machine& machine, Arguments arguments) {
  return date_part(machine, arguments, [](const DateParts& parts) { return parts.second; });
}

Value now(Machine&, Arguments) {
  return Value::date(now_serial());
}
Value date(Machine&, Arguments) {
  return Value::date(std::floor(now_serial()));
}
Value time(Machine&, Arguments) {
  const double serial = now_serial();
  return Value::date(serial - std::floor(serial));
}

Value timer(Machine&, Arguments) {
  const LocalTime now = local_time();
  const double exact = static_cast<double>(now.second) + now.fraction;
  return Value::of(Type::single, static_cast<double>(static_cast<float>(exact)));
}

// 1 to 7: Sunday to Saturday; 0, the system's, is Sunday.
int first_day_argument(Machine& machine, Arguments arguments, std::size_t i, int otherwise) {
  const std::int64_t first = arguments.has(i) ? to_long(machine, arguments[i]) : otherwise;
  if (first < 0 || first > 7) raise(error::invalid_call);
  return first == 0 ? 1 : static_cast<int>(first);
}

// Of a weekday counted from Sunday, 0: from 1 on the first day of the week.
int weekday_from(int weekday, int first) {
  return (weekday + 8 - first) % 7 + 1;
}

Value weekday(Machine& machine, Arguments arguments) {
  if (arguments[0].is(Type::null)) return Value::null();
  const int first = first_day_argument(machine, arguments, 1, 1);
  return Value::integer(weekday_from(parts_of(to_date(machine, arguments[0])).weekday, first));
}

Value weekday_name(Machine& machine, Arguments arguments) {
  const std::int64_t number = to_long(machine, arguments[0]);
  const bool abbreviated = arguments.has(1) && to_boolean(machine, arguments[1]);
  const int first = first_day_argument(machine, arguments, 2, 1);
  if (number < 1 || number > 7) raise(error::invalid_call);
  const std::int64_t index = (number + first - 2) % 7;
  const Locale& locale = *machine.locale;
  return Value(machine.heap.string(abbreviated ? locale.short_days[index] : locale.days[index]));
}

Value month_name(Machine& machine, Arguments arguments) {
  const std::int64_t number = to_long(machine, arguments[0]);
  const bool abbreviated = arguments.has(1) && to_boolean(machine, arguments[1]);
  if (number < 1 || number > 12) raise(error::invalid_call);
  const Locale& locale = *machine.locale;
  return Value(
      machine.heap.string(abbreviated ? locale.short_months[number - 1] : locale.months[number - 1]));
}

Value date_serial(Machine& machine, Arguments arguments) {
  std::int64_t full_year = to_integer(machine, arguments[0]);
  if (full_year >= 0 && full_year < 100) full_year += full_year < 30 ? 2000 : 1900;
  return Value::date(
      days_or_fail(full_year, to_integer(machine, arguments[1]), to_integer(machine, arguments[2])));
}

Value time_serial(Machine& machine, Arguments arguments) {
  const std::int64_t seconds = to_integer(machine, arguments[0]) * 3600 +
                               to_integer(machine, arguments[1]) * 60 + to_integer(machine, arguments[2]);
  return Value::date(from_linear(static_cast<double>(seconds) / seconds_a_day));
}

// A text or a date; numbers are none here.
double parsed(Machine& machine, const Value& argument) {
  const Value value = argument.is(Type::object) ? machine.default_value(argument) : argument;
  if (value.is(Type::null)) raise(error::null_use);
  if (value.is(Type::date)) return value.d();
  if (!value.is(Type::string)) raise(error::type_mismatch);
  const auto serial = parse_date(value.text(), *machine.locale);
  if (!serial) raise(error::type_mismatch);
  return *serial;
}

Value date_value(Machine& machine, Arguments arguments) {
  return Value::date(std::trunc(parsed(machine, arguments[0])));
}

Value time_value(Machine& machine, Arguments arguments) {
  const double serial = parsed(machine, arguments[0]);
  return Value::date(std::fabs(serial - std::trunc(serial)));
}

enum class Interval { year, quarter, month, day_of_year, day, weekday, week, hour, minute, second };

Interval interval_argument(Machine& machine, const Value& value) {
  constexpr std::u16string_view names[] = {u"yyyy", u"q", u"m", u"y", u"d", u"w", u"ww", u"h", u"n", u"s"};
  const Text text(machine, value);
  for (int i = 0; i < 10; ++i) {
    if (equal_ignoring_case(text, names[i])) return static_cast<Interval>(i);
  }
  raise(error::invalid_call);
}

double months_later(double serial, double months) {
  if (!(std::fabs(months) < 200'000)) raise(error::invalid_call);
  const DateParts parts = parts_of(serial);
  const double first = days_or_fail(parts.year, parts.month + static_cast<std::int64_t>(months), 1);
  const DateParts target = parts_of(first);
  const std::int64_t day_of_month = std::min(parts.day, days_in_month(target.year, target.month));
  const double days = first + static_cast<double>(day_of_month - 1);
  return joined(days, parts.hour * 3600 + parts.minute * 60 + parts.second);
}

Value date_add(Machine& machine, Arguments arguments) {
  const Interval interval = interval_argument(machine, arguments[0]);
  if (arguments[2].is(Type::null)) return Value::null();
  const double number = std::nearbyint(to_number(machine, arguments[1]));
  const double serial = to_date(machine, arguments[2]);
  const auto later = [&](double seconds) {
    // In whole seconds, so that nothing is lost on the way.
    const double sum = std::nearbyint(linear(serial) * seconds_a_day) + number * seconds;
    const double days = from_linear(sum / seconds_a_day);
    return date_value_of(days);
  };
  switch (interval) {
    case Interval::year:
      return date_value_of(months_later(serial, number * 12));
    case Interval::quarter:
      return date_value_of(months_later(serial, number * 3));
    case Interval::month:
      return date_value_of(months_later(serial, number));
    case Interval::week:
      return date_value_of(from_linear(linear(serial) + number * 7));
    case Interval::hour:
      return later(3600);
    case Interval::minute:
      return later(60);
    case Interval::second:
      return later(1);
    default:
      return date_value_of(from_linear(linear(serial) + number));
  }
}

Value difference(double number) {
  if (std::fabs(number) > 2147483647.0) raise(error::overflow);
  return Value::long_integer(static_cast<std::int64_t>(number));
}

// The first day of the week that a day lies in.
double week_start(double day, int weekday, int first) {
  return day - (weekday_from(weekday, first) - 1);
}

// Counted from year 0.
std::int64_t quarters(const DateParts& parts) {
  return parts.year * 4 + (parts.month - 1) / 3;
}

Value date_diff(Machine& machine, Arguments arguments) {
  const Interval interval = interval_argument(machine, arguments[0]);
  if (arguments[1].is(Type::null) || arguments[2].is(Type::null)) return Value::null();
  const double from = to_date(machine, arguments[1]);
  const double to = to_date(machine, arguments[2]);
  const int first = first_day_argument(machine, arguments, 3, 1);
  const DateParts a = parts_of(from);
  const DateParts b = parts_of(to);
  const double from_day = std::floor(linear(from) + 0.5 / seconds_a_day);
  const double to_day = std::floor(linear(to) + 0.5 / seconds_a_day);
  const auto seconds = [](double day, const DateParts& parts) {
    return day * seconds_a_day + static_cast<double>(parts.hour * 3600 + parts.minute * 60 + parts.second);
  };
  const auto steps = [&](double size) {
    return std::floor(seconds(to_day, b) / size) - std::floor(seconds(from_day, a) / size);
  };
  switch (interval) {
    case Interval::year:
      return difference(static_cast<double>(b.year - a.year));
    case Interval::quarter:
      return difference(static_cast<double>(quarters(b) - quarters(a)));
    case Interval::month:
      return difference(static_cast<double>((b.year - a.year) * 12 + b.month - a.month));
    case Interval::weekday:
      return difference(std::trunc((to_day - from_day) / 7));
    case Interval::week:
      return difference((week_start(to_day, b.weekday, first) - week_start(from_day, a.weekday, first)) / 7);
    case Interval::hour:
      return difference(steps(3600));
    case Interval::minute:
      return difference(steps(60));
    case Interval::second:
      return difference(steps(1));
    default:
      return difference(to_day - from_day);
  }
}

// The first day of the year's first week.
double first_week(std::int64_t year, int first_day, std::int64_t rule) {
  const double new_year = days_or_fail(year, 1, 1);
  const int weekday = parts_of(new_year).weekday;
  const double start = week_start(new_year, weekday, first_day);
  const double days_in_year = 7 - (new_year - start);
  const bool counts = rule == 1 || (rule == 2 && days_in_year >= 4) || (rule == 3 && days_in_year == 7);
  return counts ? start : start + 7;
}

std::int64_t week_of_year(const DateParts& parts, double day, int first_day, std::int64_t rule) {
  if (day < first_week(parts.year, first_day, rule) && parts.year > 100) {
    return static_cast<std::int64_t>(day - first_week(parts.year - 1, first_day, rule)) / 7 + 1;
  }
  if (rule != 1 && parts.year < 9999 && day >= first_week(parts.year + 1, first_day, rule)) return 1;
  return static_cast<std::int64_t>(day - first_week(parts.year, first_day, rule)) / 7 + 1;
}

Value date_part_function(Machine& machine, Arguments arguments) {
  const Interval interval = interval_argument(machine, arguments[0]);
  if (arguments[1].is(Type::null)) return Value::null();
  const double serial = to_date(machine, arguments[1]);
  const int first = first_day_argument(machine, arguments, 2, 1);
  std::int64_t rule = arguments.has(3) ? to_long(machine, arguments[3]) : 1;
  if (rule < 0 || rule > 3) raise(error::invalid_call);
  if (rule == 0) rule = 1;
  const DateParts parts = parts_of(serial);
  const double day_number = std::floor(linear(serial) + 0.5 / seconds_a_day);
  switch (interval) {
    case Interval::year:
      return Value::integer(parts.year);
    case Interval::quarter:
      return Value::integer((parts.month - 1) / 3 + 1);
    case Interval::month:
      return Value::integer(parts.month);
    case Interval::day_of_year:
      return Value::integer(static_cast<std::int64_t>(day_number - days_or_fail(parts.year, 1, 1)) + 1);
    case Interval::day:
      return Value::integer(parts.day);
    case Interval::weekday:
      return Value::integer(weekday_from(parts.weekday, first));
    case Interval::week:
      return Value::integer(week_of_year(parts, day_number, first, rule));
    case Interval::hour:
      return Value::integer(parts.hour);
    case Interval::minute:
      return Value::integer(parts.minute);
    default:
      return Value::integer(parts.second);
  }
}

constexpr Builtin functions[] = {
    {"Year", 1, 1, year},
    {"Month", 1, 1, month},
    {"Day", 1, 1, day},
    {"Hour", 1, 1, hour},
    {"Minute", 1, 1, minute},
    {"Second", 1, 1, second},
    {"Now", 0, 0, now},
    {"Date", 0, 0, date},
    {"Time", 0, 0, time},
    {"Timer", 0, 0, timer},
    {"Weekday", 1, 2, weekday},
    {"WeekdayName", 1, 3, weekday_name},
    {"MonthName", 1, 2, month_name},
    {"DateSerial", 3, 3, date_serial},
    {"TimeSerial", 3, 3, time_serial},
    {"DateValue", 1, 1, date_value},
    {"TimeValue", 1, 1, time_value},
    {"DateAdd", 3, 3, date_add},
    {"DateDiff", 3, 5, date_diff},
    {"DatePart", 2, 4, date_part_function},
};

}  // namespace

std::span<const Builtin> date_functions() {
  return functions;
}

}  // namespace zrl::vbs
