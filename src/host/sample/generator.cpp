#include "host/sample/generator.h"

#include <algorithm>

namespace zrl::sample {

namespace {

constexpr std::uint32_t seconds_of_day = 86400;

// Out of 100 that would come in the busiest hour or on the busiest day; the month starts on a Tuesday.
constexpr std::size_t share_of_hour[] = {22, 18, 16, 15, 17, 22, 34, 52, 81, 100, 97, 92,
                                         78, 84, 95, 93, 88, 76, 60, 52, 47, 41,  34, 27};
constexpr std::size_t share_of_day[] = {100, 97, 94, 86, 52, 48, 92};
constexpr std::string_view names_of_days[] = {"Tue", "Wed", "Thu", "Fri", "Sat", "Sun", "Mon"};

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

std::string Moment::two_digits(std::uint32_t unit, std::uint32_t modulus, std::uint32_t first) const {
  const std::uint32_t number = second_ / unit % modulus + first;
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

std::string Moment::clock(std::string_view separator) const {
  return join({two_digits(3600, 24), separator, two_digits(60, 60), separator, two_digits(1, 60)});
}

std::string Moment::log_time() const {
  return join({"2026-09-", day(), " ", clock(":")});
}

std::string Moment::stamp() const {
  return join({"202609", day(), clock("")});
}

std::string Moment::header_date() const {
  const std::string_view name = names_of_days[second_ / seconds_of_day % 7];
  return join({name, ", ", day(), " Sep 2026 ", clock(":"), " +0000"});
}

std::vector<Moment> busy_moments(Generator& random, std::size_t count) {
  std::vector<std::uint32_t> seconds;
  while (seconds.size() < count) {
    const auto second = static_cast<std::uint32_t>(random.below(std::size_t{30} * seconds_of_day));
    const std::size_t percent = share_of_hour[second / 3600 % 24] * share_of_day[second / seconds_of_day % 7];
    if (random.chance(percent / 100)) seconds.push_back(second);
  }
  std::sort(seconds.begin(), seconds.end());
  std::vector<Moment> result;
  result.reserve(count);
  for (const std::uint32_t second : seconds) result.emplace_back(second);
  return result;
}

}  // namespace zrl::sample
