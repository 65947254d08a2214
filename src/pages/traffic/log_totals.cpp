#include <algorithm>

#include "core/text/time_stamp.h"
#include "pages/traffic/log_counts.h"

// What needs no database: sums, leaders, and the hours and days of a period.
namespace zrl {

namespace {

constexpr std::int64_t seconds_of_hour = 3600;
constexpr const char* hour_form = "%Y-%m-%d %H";

void add_to(NameCounts& sum, const NameCounts& more) {
  for (const auto& [name, count] : more) sum[name] += count;
}

void keep_first(NameCounts& counts, std::size_t count) {
  if (counts.size() <= count) return;
  NameCounts kept;
  for (NamedCount& leader : leaders_of(counts, count)) kept.emplace(std::move(leader.name), leader.count);
  counts = std::move(kept);
}

TimeUnit hour_unit(const std::string& name, std::size_t place, bool finished) {
  // The times of an hour are those that have a colon behind it; a semicolon follows the colon.
  return {name, name + ":00", name + ":", name + ";", place, finished};
}

TimeUnit day_unit(const std::string& name, std::size_t place, bool finished) {
  return {name, name, name + " ", name + "!", place, finished};
}

std::vector<TimeUnit> last_hours(std::int64_t now) {
  constexpr std::int64_t hours = 24;
  std::vector<TimeUnit> units;
  for (std::int64_t back = hours - 1; back >= 0; --back) {
    const std::string name = local_time(now - back * seconds_of_hour, hour_form);
    if (!units.empty() && units.back().name == name) continue;
    units.push_back(hour_unit(name, units.size(), back > 0));
  }
  return units;
}

std::vector<TimeUnit> last_days(std::int64_t now, int days) {
  std::vector<TimeUnit> units;
  for (int back = days - 1; back > 0; --back) {
    units.push_back(day_unit(date_before(now, back), units.size(), true));
  }
  const std::size_t place = units.size();
  const std::string today = date_before(now, 0);
  const std::string present = local_time(now, hour_form);
  for (int hour = 0; hour < 24; ++hour) {
    const std::string name = today + (hour < 10 ? " 0" : " ") + std::to_string(hour);
    if (name > present) break;
    TimeUnit unit = hour_unit(name, place, name < present);
    unit.label = today;
    units.push_back(std::move(unit));
  }
  return units;
}

}  // namespace

void LogTotals::add(const LogTotals& other) {
  for (std::size_t i = 0; i < verdict_count; ++i) verdicts[i] += other.verdicts[i];
  add_to(reasons, other.reasons);
  add_to(clients, other.clients);
  add_to(domains, other.domains);
}

void LogTotals::keep_leaders(std::size_t count) {
  keep_first(reasons, count);
  keep_first(clients, count);
  keep_first(domains, count);
}

std::vector<NamedCount> leaders_of(const NameCounts& counts, std::size_t count) {
  std::vector<NamedCount> all;
  all.reserve(counts.size());
  for (const auto& [name, number] : counts) all.push_back({name, number});
  const std::size_t kept = std::min(count, all.size());
  const auto end = all.begin() + static_cast<std::ptrdiff_t>(kept);
  std::partial_sort(all.begin(), end, all.end(), [](const NamedCount& left, const NamedCount& right) {
    return left.count != right.count ? left.count > right.count : left.name < right.name;
  });
  all.erase(end, all.end());
  return all;
}

std::vector<TimeUnit> units_of(Period period, std::chrono::system_clock::time_point now) {
  constexpr int days_of_week = 7;
  constexpr int days_of_month = 30;
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(now.time_since_epoch()).count();
  std::vector<TimeUnit> units =
      period == Period::day ? last_hours(seconds)
                            : last_days(seconds, period == Period::week ? days_of_week : days_of_month);
  // Rows are logged a moment after the time that they have: in the first minute of an hour the one before may
  // still grow.
  if (local_time(seconds, "%M") == "00" && units.size() > 1) units[units.size() - 2].finished = false;
  return units;
}

}  // namespace zrl
