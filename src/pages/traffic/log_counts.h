#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/contracts/log_tables.h"
#include "core/database_client.h"

namespace zrl {

// How often each name occurs. Names are texts of strangers: any bytes, cut to some hundred.
using NameCounts = std::unordered_map<std::string, std::int64_t>;

// The counts of some rows of the logs.
struct LogTotals {
  std::array<std::int64_t, verdict_count> verdicts{};
  NameCounts reasons;  // reasons and keywords
  NameCounts clients;  // networks of IPv4, "192.0.2.0/24"; other addresses as they are
  NameCounts domains;  // of the senders, in lower case

  std::int64_t of(LogVerdict verdict) const { return verdicts[static_cast<std::size_t>(verdict)]; }
  void add(const LogTotals& other);
  // Keeps the most frequent names only, this many of each kind.
  void keep_leaders(std::size_t count);
};

struct NamedCount {
  std::string name;
  std::int64_t count;

  bool operator==(const NamedCount&) const = default;
};

// The most frequent names, at most this many, the first of the alphabet first among equals.
std::vector<NamedCount> leaders_of(const NameCounts& counts, std::size_t count);

// The logs up to now: 24 hours, or 7 or 30 days, of which the last is the present one and not over yet.
enum class Period : std::uint8_t { day, week, month };

// An hour or a day of the logs, in the local time of the machine, as the column `servertime` has it.
struct TimeUnit {
  std::string name;   // the beginning of its times: "2026-11-21 14" or "2026-11-21"
  std::string label;  // "2026-11-21 14:00" or "2026-11-21"
  std::string from;   // its times are at or after this text
  std::string until;  // and before this one
  std::size_t place;  // of the label that it belongs to, from 0
  bool finished;
};

// The units of a period in ascending order. Where clocks are set back, an hour that occurs twice is one unit.
// Days that are over are one unit each, the present day is made of hours.
std::vector<TimeUnit> units_of(Period period, std::chrono::system_clock::time_point now);

// Counts the logs by hours and days. What is finished is counted once and kept in the database (log_units,
// log_counts and log_marks in the schema), for all consoles; what is kept of names are the leaders of each
// unit, 200 of an hour and 1,000 of a day. So a period costs its last hour, and the kept counts.
//
// Kept counts stay right: rows that are changed are noticed by the database, rows that were deleted or came
// late by the numbers of rows, which are compared when `thorough` says so. Nothing is recorded but failures.
// Counts that cannot be kept, because another program keeps the database locked, say, are held in memory.
class LogCounts {
 public:
  // Both must outlive the object.
  LogCounts(DatabaseClient& client, Console& console) : client_(client), console_(console) {}

  enum class Check : std::uint8_t { quick, thorough };

  struct Result {
    StringList labels;
    std::vector<std::array<std::int64_t, verdict_count>> verdicts;  // one for each label
    LogTotals totals;
    std::vector<std::string_view> unread;  // the logs that could not be read, by their tables' names
  };

  // Shows its progress where it takes long. Never throws; a failure is a recorded step.
  Result count(Period period, Check check);

  // The greatest row keys of the logs: the same text means that nothing was logged meanwhile, as far as the
  // logs can be read.
  std::string newest_rows();

  // Forgets what is held in memory.
  void forget() { held_.clear(); }

 private:
  struct Counted {
    LogTotals totals;
    std::vector<std::int64_t> rows;  // of each log
    bool complete = true;
  };

  // Whether there is a connection, and the log has not failed since the last thorough check.
  bool is_readable(Literal table) const;
  void check_marks();
  void check_mark(std::size_t log, const std::string& oldest, const std::string& until);
  bool compare_units(std::size_t log, const std::string& oldest);
  std::set<std::string, std::less<>> read_kept(const std::vector<TimeUnit>& units, Result& result);
  Counted count_unit(const TimeUnit& unit);
  bool count_log(std::size_t log, const TimeUnit& unit, Counted& counted);
  void add_names(std::size_t log, const TimeUnit& unit, Literal column, Counted& counted);
  void keep(const TimeUnit& unit, const Counted& counted);
  // Until the marks can be set again, nothing that is kept is used.
  void distrust_all() { distrusts_ = true; }
  void drop_old(const std::vector<TimeUnit>& units);
  bool write(const std::function<void(Connection&)>& statements);

  DatabaseClient& client_;
  Console& console_;
  std::map<std::string, LogTotals, std::less<>> held_;  // finished units that could not be kept
  std::vector<std::string_view> unread_;
  bool distrusts_ = false;
  std::chrono::steady_clock::time_point no_writes_until_{};
};

}  // namespace zrl
