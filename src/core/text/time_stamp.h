#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Times as the logs have them: the local time of the machine, "2026-09-01 08:15:00", without a zone. What the
// clocks show twice in autumn, or not at all in spring, counts as one of the two hours. Seconds are those
// since 1970, UTC.
namespace zrl {

// Seconds since 1970, UTC, of such a time, or of its fourteen digits "20260901081500"; nothing if the text is
// neither, or no time of the calendar.
std::optional<std::int64_t> seconds_of(std::string_view time);

// The local time in a form of strftime(), which must be short: at most 63 bytes come out. Empty if the time
// cannot be converted.
std::string local_time(std::int64_t seconds, const char* form);

// The form that the logs have, and its fourteen digits.
std::string log_time(std::int64_t seconds);
std::string log_time(std::chrono::system_clock::time_point time);
std::string time_digits(std::chrono::system_clock::time_point time);

// The same as a time of the calendar.
std::chrono::local_seconds local_seconds_of(std::chrono::system_clock::time_point time);

// The local date so many days before that of the time, "2026-09-01".
std::string date_before(std::int64_t seconds, int days);

// What people type: one of the forms above, a time without its seconds, or a day. Of a day it is the first
// second, or with `last` the last; the same with a minute. Nothing if it is none of these.
std::optional<std::string> typed_time(std::string_view text, bool last);

// The same for the beginning of a period: also so many minutes, hours, days or weeks before `now` (seconds
// since 1970), "90m", "24h", "7d", "2w".
std::optional<std::string> since_time(std::string_view text, std::int64_t now);

}  // namespace zrl
