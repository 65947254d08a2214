#include "pages/traffic/overview_page.h"
#include "traffic/log_rows.h"

// The start page over a day of a million rows, and over a month. Its first showing counts what is finished;
// later ones count the present hour.
namespace zrl::bench {

namespace {

struct Grouping {
  const char* table;
  const char* columns;
};

// What the page counts of each log.
constexpr Grouping groupings[] = {
    {"iplog", "status, substr(IPNumber,1,64)"}, {"predatalog", "status, substr(IPNumber,1,64)"},
    {"predatalog", "substr(mailfrom,1,320)"},   {"predatalog", "substr(reason,1,200)"},
    {"subjectlog", "substr(IPNumber,1,64)"},    {"subjectlog", "substr(mailfrom,1,320)"},
    {"subjectlog", "substr(keyword,1,200)"},    {"bodylog", "substr(IPNumber,1,64)"},
    {"bodylog", "substr(mailfrom,1,320)"},      {"bodylog", "substr(keyword,1,200)"},
    {"avlog", "substr(IPNumber,1,64)"},         {"avlog", "substr(mailfrom,1,320)"},
    {"avlog", "substr(reason,1,200)"}};

void forget_counts() {
  busy_console().fill("DELETE FROM log_units; DELETE FROM log_counts; DELETE FROM log_marks");
}

double show(const char* period) {
  const auto page = busy_console().shown<OverviewPage>();
  const double seconds = seconds_of([&] { page->period.user_type(period); });
  std::int64_t rows = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    for (const std::int64_t value : page->mails.values_of(i)) rows += value;
  }
  require(rows > 1000, "the page lost rows");
  page->terminate();
  return seconds;
}

double first_showing() {
  forget_counts();
  std::unique_ptr<OverviewPage> page;
  return seconds_of([&] { page = busy_console().shown<OverviewPage>(); });
}

double bare_counts() {
  static const std::unique_ptr<Bare> bare = busy_console().bare();
  return seconds_of([] {
    for (const auto& [table, columns] : groupings) {
      Prepared counts(*bare,
                      std::string("SELECT substr(servertime,1,13), ") + columns + ", count(*) FROM " + table +
                          " WHERE servertime>=strftime('%Y-%m-%d %H:', 'now', 'localtime', '-23 hours') "
                          "GROUP BY substr(servertime,1,13), " +
                          columns);
      counts.read();
    }
  });
}

double of_month() {
  static const double first = show("month");
  std::printf("the month's first showing, which counts it: %.1f s\n", first);
  return show("month");
}

}  // namespace

void add_overview(Suite& suite) {
  suite.add(
      Comparison{"overview, a day of 1,000,000 rows: first; bare: grouped", 1.3, first_showing, bare_counts});
  suite.add(Comparison{"overview, the same day again; bare: grouped", 0.3, [] { return show("day"); },
                       bare_counts});
  constexpr double milliseconds = 1000;
  suite.add(Measure{"overview, a month of 10,000,000 rows, ms; goal: a second", 1.0,
                    [] { return of_month() * milliseconds; }, [] { return milliseconds; }});
}

}  // namespace zrl::bench
