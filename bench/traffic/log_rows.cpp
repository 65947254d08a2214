#include "traffic/log_rows.h"

#include <cstdio>
#include <cstdlib>

namespace zrl::bench {

namespace {

struct Log {
  const char* table;
  const char* columns;
  const char* values;
  int first;  // of twenty rows, those from here to
  int last;
};

// h and g are numbers that look random; few addresses and domains have most of the rows, and one sender many.
constexpr const char* address =
    "CASE WHEN h%60=0 THEN '10.99.9.9' ELSE '10.'||(h%997*(h%997)/24850)||'.'||(h/997%256)||'.'||(g%256) END";
constexpr const char* sender =
    "CASE WHEN h%60=0 THEN 'news@letters.example' ELSE 'user'||(g%5000)||'@'||(h%809*(h%809)/13)||'.example' "
    "END";
constexpr const char* recipient = "'person'||(g%300)||'@mirvan.example'";
constexpr const char* reason = "'554 5.1.0 rejected - for the reason '||(h%97*(h%97)/250)";

constexpr Log logs[] = {{"iplog", "IPNumber, status, servertime", "{address}, {status}, {time}", 0, 11},
                        {"predatalog", "IPNumber, mailfrom, reason, status, servertime",
                         "{address}, {sender}, {reason}, {status}, {time}", 12, 16},
                        {"subjectlog", "IPNumber, mailfrom, mailto, keyword, servertime",
                         "{address}, {sender}, {recipient}, 'word '||(h%200), {time}", 17, 17},
                        {"bodylog", "IPNumber, mailfrom, mailto, keyword, servertime",
                         "{address}, {sender}, {recipient}, 'word '||(h%900), {time}", 18, 18},
                        {"avlog", "IPNumber, mailfrom, mailto, reason, servertime",
                         "{address}, {sender}, {recipient}, 'Worm.'||(h%40), {time}", 19, 19}};

void replace(std::string& text, std::string_view mark, std::string_view by) {
  const std::size_t place = text.find(mark);
  if (place != text.npos) text.replace(place, mark.size(), by);
}

std::string filling(const Log& log, int rows, int last_day) {
  const double of_day = 86400.0 / last_day;
  const double before = 29 * 86400.0 / std::max(1, rows - last_day);
  char time[300];
  std::snprintf(
      time, sizeof time,
      "datetime('now', 'localtime', '-'||(CASE WHEN i>%d THEN (%d-i)*%.6f ELSE 86400+(%d-i)*%.6f END)||"
      "' seconds')",
      rows - last_day, rows, of_day, rows - last_day, before);
  std::string values = log.values;
  replace(values, "{address}", address);
  replace(values, "{sender}", sender);
  replace(values, "{recipient}", recipient);
  replace(values, "{reason}", reason);
  replace(values, "{status}", "CASE WHEN h%100<21 THEN 2 WHEN h%100<29 THEN 1 ELSE 0 END");
  replace(values, "{time}", time);
  return "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" + std::to_string(rows) +
         "), r AS (SELECT i, (i*2654435761)%4294967291/7 AS h, (i*40503+7)%65521 AS g FROM n WHERE i%20 "
         "BETWEEN " +
         std::to_string(log.first) + " AND " + std::to_string(log.last) + ") INSERT INTO " + log.table +
         " (" + log.columns + ") SELECT " + values + " FROM r";
}

}  // namespace

void fill_logs(const Installed& installed, int rows, int last_day) {
  const auto bare = installed.bare();
  Prepared names(
      *bare,
      "SELECT 'DROP '||type||' '||name FROM sqlite_schema WHERE sql IS NOT NULL AND type IN "
      "('index', 'trigger') AND tbl_name IN ('iplog', 'predatalog', 'subjectlog', 'bodylog', 'avlog')");
  const Arena drops = names.read();
  for (std::size_t i = 0; i < drops.count(); ++i) bare->run(std::string(drops[i]));
  for (const Log& log : logs) bare->run("BEGIN;" + filling(log, rows, last_day) + ";COMMIT");
  bare->run("PRAGMA user_version=0; PRAGMA wal_checkpoint(TRUNCATE)");
}

Installed& busy_console() {
  static Installed made;
  static const bool filled = [] {
    const char* number = std::getenv("ZRL_BENCH_LOG_ROWS");
    const int rows = number == nullptr ? log_rows : std::atoi(number);
    std::printf("filling the logs: %.1f s\n", seconds_of([&] { fill_logs(made, rows, rows / 10); }));
    std::printf("their indexes, when the database is opened: %.1f s\n", seconds_of([] {
                  made.console.components().create<Database>()->open_database("sqlite:proxy.db");
                }));
    return true;
  }();
  require(filled, "no logs");
  return made;
}

}  // namespace zrl::bench
