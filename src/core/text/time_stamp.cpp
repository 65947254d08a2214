#include "core/text/time_stamp.h"

#include <array>
#include <ctime>

#include "core/text/ascii.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// Whether the text has the form, in which "0" stands for any digit.
bool has_form(std::string_view text, std::string_view form) {
  if (text.size() != form.size()) return false;
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (form[i] == '0' ? !is_digit(text[i]) : form[i] != text[i]) return false;
  }
  return true;
}

std::string digits_of(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (is_digit(c)) digits += c;
  }
  return digits;
}

// Of fourteen digits.
std::optional<std::int64_t> seconds_of_digits(std::string_view digits) {
  const auto number = [&](std::size_t begin, std::size_t count) {
    return static_cast<int>(to_number(digits.substr(begin, count)).value_or(-1));
  };
  std::tm parts{};
  parts.tm_year = number(0, 4) - 1900;
  parts.tm_mon = number(4, 2) - 1;
  parts.tm_mday = number(6, 2);
  parts.tm_hour = number(8, 2);
  parts.tm_min = number(10, 2);
  parts.tm_sec = number(12, 2);
  parts.tm_isdst = -1;
  const std::tm given = parts;
  if (given.tm_hour > 23 || given.tm_min > 59 || given.tm_sec > 59) return {};
  const std::time_t seconds = ::mktime(&parts);
  // The 31st of a short month would become a day of the next.
  if (parts.tm_mday != given.tm_mday || parts.tm_mon != given.tm_mon) return {};
  return seconds;
}

}  // namespace

std::optional<std::int64_t> seconds_of(std::string_view time) {
  if (!has_form(time, "0000-00-00 00:00:00") && !has_form(time, "00000000000000")) return {};
  return seconds_of_digits(digits_of(time));
}

std::string local_time(std::int64_t seconds, const char* form) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm parts{};
  if (::localtime_r(&time, &parts) == nullptr) return {};
  std::array<char, 64> text{};
  return {text.data(), std::strftime(text.data(), text.size(), form, &parts)};
}

std::string log_time(std::int64_t seconds) {
  return local_time(seconds, "%Y-%m-%d %H:%M:%S");
}

std::string log_time(std::chrono::system_clock::time_point time) {
  return log_time(std::chrono::system_clock::to_time_t(time));
}

std::string time_digits(std::chrono::system_clock::time_point time) {
  return local_time(std::chrono::system_clock::to_time_t(time), "%Y%m%d%H%M%S");
}

std::chrono::local_seconds local_seconds_of(std::chrono::system_clock::time_point time) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm parts{};
  ::localtime_r(&seconds, &parts);
  return std::chrono::local_seconds(std::chrono::seconds(seconds + parts.tm_gmtoff));
}

std::string date_before(std::int64_t seconds, int days) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm noon{};
  if (::localtime_r(&time, &noon) == nullptr) return {};
  noon.tm_mday -= days;
  noon.tm_hour = 12;  // no clock is set forth or back then
  noon.tm_isdst = -1;
  return local_time(::mktime(&noon), "%Y-%m-%d");
}

std::optional<std::string> typed_time(std::string_view text, bool last) {
  text = trim(text);
  std::string digits = digits_of(text);
  if (has_form(text, "0000-00-00")) {
    digits += last ? "235959" : "000000";
  } else if (has_form(text, "0000-00-00 00:00")) {
    digits += last ? "59" : "00";
  } else if (!has_form(text, "0000-00-00 00:00:00") && !has_form(text, "00000000000000")) {
    return {};
  }
  if (!seconds_of_digits(digits)) return {};
  std::string time = digits.substr(0, 4);
  for (const auto& [begin, mark] : {std::pair{4, '-'}, {6, '-'}, {8, ' '}, {10, ':'}, {12, ':'}}) {
    time += mark;
    time += digits.substr(static_cast<std::size_t>(begin), 2);
  }
  return time;
}

std::optional<std::string> since_time(std::string_view text, std::int64_t now) {
  text = trim(text);
  constexpr std::pair<char, std::int64_t> units[] = {{'m', 60}, {'h', 3600}, {'d', 86'400}, {'w', 604'800}};
  for (const auto& [unit, seconds] : units) {
    if (text.empty() || text.back() != unit) continue;
    const auto count = to_number(text.substr(0, text.size() - 1));
    if (!count || *count < 0 || *count > now / seconds) return {};
    return log_time(now - *count * seconds);
  }
  return typed_time(text, false);
}

}  // namespace zrl
