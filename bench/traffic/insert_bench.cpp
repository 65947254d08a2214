#include "core/text/files.h"
#include "traffic/log_rows.h"

// What a proxy pays for the indexes and triggers of the logs: single rows, each a transaction, into logs with
// some rows, beside the same tables with the indexes of the first version.
namespace zrl::bench {

namespace {

constexpr int rows_there = 300'000;
constexpr int rows_added = 20'000;

// One column each, and the time.
constexpr const char* first_indexes =
    "CREATE INDEX iplog_a ON iplog (IPNumber); CREATE INDEX iplog_b ON iplog (servertime);"
    "CREATE INDEX iplog_c ON iplog (status, servertime); CREATE INDEX predatalog_a ON predatalog (IPNumber);"
    "CREATE INDEX predatalog_b ON predatalog (mailfrom); CREATE INDEX predatalog_c ON predatalog "
    "(servertime);"
    "CREATE INDEX predatalog_d ON predatalog (reason, servertime);"
    "CREATE INDEX predatalog_e ON predatalog (status, servertime)";

double add_rows_to(const Installed& installed) {
  const auto bare = installed.bare();
  Prepared connection(*bare,
                      "INSERT INTO iplog (IPNumber, status, servertime) VALUES "
                      "('10.'||(?1%97)||'.'||(?1%251)||'.9', ?1%3, datetime('now', 'localtime'))");
  Prepared decision(*bare,
                    "INSERT INTO predatalog (IPNumber, mailfrom, reason, status, servertime) VALUES "
                    "('10.'||(?1%97)||'.'||(?1%251)||'.9', 'user'||?1||'@'||(?1%809)||'.example', "
                    "'554 5.1.0 rejected - for the reason '||(?1%97), 2, datetime('now', 'localtime'))");
  const double seconds = seconds_of([&] {
    for (int i = 0; i < rows_added; ++i) {
      const std::string number = std::to_string(i * 7919 % 100'003);
      connection.run(number);
      decision.run(number);
    }
  });
  bare->run("DELETE FROM iplog WHERE ID>" + std::to_string(rows_there * 12 / 20));
  bare->run("DELETE FROM predatalog WHERE ID>" + std::to_string(rows_there * 5 / 20));
  return seconds;
}

double with_all() {
  static Installed made;
  static const bool filled = [] {
    fill_logs(made, rows_there, rows_there / 10);
    made.console.components().create<Database>()->open_database("sqlite:proxy.db");
    return true;
  }();
  require(filled, "no logs");
  return add_rows_to(made);
}

double with_first() {
  static Installed made;
  static const bool filled = [] {
    fill_logs(made, rows_there, rows_there / 10);
    made.bare()->run(first_indexes);
    return true;
  }();
  require(filled, "no logs");
  return add_rows_to(made);
}

}  // namespace

void add_insertions(Suite& suite) {
  suite.add(
      Comparison{"the proxy logs 40,000 rows; bare: with the first indexes", 1.2, with_all, with_first});
}

}  // namespace zrl::bench
