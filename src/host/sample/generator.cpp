#include "host/sample/generator.h"

#include <algorithm>

namespace zrl::sample {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::seconds;

constexpr std::uint32_t seconds_of_day = 86400;
constexpr std::uint32_t days_of_period = 30;

// Out of 100 that would come in the busiest hour or on the busiest day; the pattern starts on a Tuesday.
constexpr std::size_t share_of_hour[] = {22, 18, 16, 15, 17, 22, 34, 52, 81, 100, 97, 92,
                                         78, 84, 95, 93, 88, 76, 60, 52, 47, 41,  34, 27};
constexpr std::size_t share_of_day[] = {100, 97, 94, 86, 52, 48, 92};
constexpr std::string_view names_of_days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::string_view names_of_months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::string two_digits(std::uint64_t number) {
  return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

std::string clock_text(local_seconds time, std::string_view separator) {
  const auto second = static_cast<std::uint64_t>((time - floor<days>(time)).count());
  return join({two_digits(second / 3600), separator, two_digits(second / 60 % 60), separator,
               two_digits(second % 60)});
}

std::string date_text(local_seconds time, std::string_view separator) {
  const std::chrono::year_month_day parts(floor<days>(time));
  return join({std::to_string(static_cast<int>(parts.year())), separator,
               two_digits(static_cast<unsigned>(parts.month())), separator,
               two_digits(static_cast<unsigned>(parts.day()))});
}

}  // namespace

// SplitMix64.
std::uint64_t Generator::next() {
  std::uint64_t mixed = (state_ += 0x9E3779B97F4A7C15U);
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

std::size_t Generator::skewed(std::size_t n) {
  const std::uint64_t even = next() >> 32;
  const std::uint64_t cubed = (((even * even) >> 32) * even) >> 32;
  return static_cast<std::size_t>((cubed * n) >> 32);
}

std::string Generator::bytes(std::size_t count) {
  std::string result(count, '\0');
  for (char& c : result) c = static_cast<char>(next() >> 56);
  return result;
}

std::string join(std::initializer_list<std::string_view> parts) {
  std::string result;
  for (const std::string_view part : parts) result += part;
  return result;
}

std::string Moment::log_time() const {
  return join({date_text(time_, "-"), " ", clock_text(time_, ":")});
}

std::string Moment::stamp() const {
  return join({date_text(time_, ""), clock_text(time_, "")});
}

std::string Moment::header_date() const {
  const local_days day = floor<days>(time_);
  const std::chrono::year_month_day parts(day);
  return join({names_of_days[std::chrono::weekday(day).c_encoding()], ", ",
               two_digits(static_cast<unsigned>(parts.day())), " ",
               names_of_months[static_cast<unsigned>(parts.month()) - 1], " ",
               std::to_string(static_cast<int>(parts.year())), " ", clock_text(time_, ":"), " +0000"});
}

// The pattern is drawn from its first Tuesday on and laid so that its days of the week are those of the
// calendar. What then lies behind the end goes before the beginning, where up to six days are two days of the
// week off.
std::vector<Moment> busy_moments(Generator& random, std::size_t count, local_seconds end) {
  constexpr days period{days_of_period};
  const local_days first = floor<days>(end) - period + days(1);
  const local_days tuesday = first + (std::chrono::Tuesday - std::chrono::weekday(first));
  std::vector<local_seconds> times;
  while (times.size() < count) {
    const auto second =
        static_cast<std::uint32_t>(random.below(std::size_t{days_of_period} * seconds_of_day));
    const std::size_t percent = share_of_hour[second / 3600 % 24] * share_of_day[second / seconds_of_day % 7];
    if (!random.chance(percent / 100)) continue;
    const local_seconds time = tuesday + seconds(second);
    times.push_back(time > end ? time - period : time);
  }
  std::sort(times.begin(), times.end());
  std::vector<Moment> result;
  result.reserve(count);
  for (const local_seconds time : times) result.emplace_back(time);
  return result;
}

}  // namespace zrl::sample
