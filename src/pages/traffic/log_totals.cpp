#include <algorithm>
#include <ctime>

#include "pages/traffic/log_counts.h"

// What needs no database: sums, leaders, and the hours and days of a period.
namespace zrl {

namespace {

constexpr std::int64_t seconds_of_hour = 3600;
// Rows are logged a moment after the time that they have.
constexpr std::int64_t grace = 60;

void add_to(NameCounts& sum, const NameCounts& more) {
  for (const auto& [name, count] : more) sum[name] += count;
}

void keep_first(NameCounts& counts, std::size_t count) {
  if (counts.size() <= count) return;
  NameCounts kept;
  for (NamedCount& leader : leaders_of(counts, count)) kept.emplace(std::move(leader.name), leader.count);
  counts = std::move(kept);
}

std::tm local_time(std::int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  ::localtime_r(&time, &local);
  return local;
}

std::string written(const std::tm& time, const char* format) {
  char text[32];
  return {text, std::strftime(text, sizeof text, format, &time)};
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
    const std::string name = written(local_time(now - back * seconds_of_hour), "%Y-%m-%d %H");
    if (!units.empty() && units.back().name == name) continue;
    units.push_back(hour_unit(name, units.size(), back > 0));
  }
  return units;
}

std::vector<TimeUnit> last_days(std::int64_t now, int days) {
  std::vector<TimeUnit> units;
  const std::tm today = local_time(now);
  for (int back = days - 1; back > 0; --back) {
    std::tm noon = today;
    noon.tm_mday -= back;
    noon.tm_hour = 12;  // no clock is set forth or back then
    noon.tm_isdst = -1;
    const auto time = static_cast<std::int64_t>(std::mktime(&noon));
    units.push_back(day_unit(written(local_time(time), "%Y-%m-%d"), units.size(), true));
  }
  const std::size_t place = units.size();
  const std::string date = written(today, "%Y-%m-%d ");
  for (int hour = 0; hour <= today.tm_hour; ++hour) {
    const std::string start = date + (hour < 10 ? "0" : "");
    TimeUnit unit = hour_unit(start + std::to_string(hour), place, hour < today.tm_hour);
    unit.label = date.substr(0, date.size() - 1);
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
  // In the first minute of an hour the one before may still grow.
  const std::tm local = local_time(seconds);
  if (local.tm_min * 60 + local.tm_sec < grace && units.size() > 1) units[units.size() - 2].finished = false;
  return units;
}

}  // namespace zrl
