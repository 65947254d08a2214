#include <benchmark/benchmark.h>

#include "database/comparison.h"

// Reading: lists of a million rows, and a log row by row.
namespace zrl::bench {

namespace {

constexpr int list_rows = 1000000;
constexpr int log_rows = 200000;

std::shared_ptr<Database> component() {
  return access_to("sqlite:rows.db");
}

// Made once, when the first benchmark needs it.
const std::filesystem::path& database() {
  static const std::filesystem::path path = [] {
    component()->open_database("sqlite:rows.db");
    Bare made(folder() / "rows.db", Bare::Settings::of_the_component);
    made.run("BEGIN");
    sqlite3_stmt* insert = made.prepare("INSERT INTO blacklist (entry) VALUES (?)");
    for (const std::string& name : host_names(list_rows, 1)) {
      sqlite3_bind_text(insert, 1, name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    made.run("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<" +
             std::to_string(log_rows) +
             ") INSERT INTO bodylog (IPNumber, mailfrom, mailto, keyword, servertime) SELECT "
             "'10.0.'||(i%256)||'.'||"
             "(i/256%256), 'sender'||(i*7919%5000)||'@example.com', 'user'||(i%50)||'@example.org', "
             "'keyword'||(i%300),"
             " datetime(1100000000+i*60, 'unixepoch') FROM n");
    made.run("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    return folder() / "rows.db";
  }();
  return path;
}

Arena read_bare(Bare& bare) {
  Arena arena;
  sqlite3_stmt* rows = bare.prepare("SELECT entry FROM blacklist");
  while (sqlite3_step(rows) == SQLITE_ROW) arena.add(rows, 0);
  sqlite3_finalize(rows);
  return arena;
}

StringList read_ours() {
  ConnectionHandle conn = component()->open_database("sqlite:" + database().string());
  return component()->get_db_array(conn, "blacklist", "entry", {});
}

double fill_ours() {
  database();
  const auto access = component();
  ConnectionHandle conn = access->open_database("sqlite:rows.db");
  return seconds_of(
      [&] { benchmark::DoNotOptimize(access->get_db_array(conn, "blacklist", "entry", {}).size()); });
}

double fill_bare(Bare::Settings settings) {
  Bare bare(database(), settings);
  return seconds_of([&] { benchmark::DoNotOptimize(read_bare(bare).size()); });
}

double walk_ours() {
  database();
  const auto access = component();
  ConnectionHandle conn = access->open_database("sqlite:rows.db");
  return seconds_of([&] {
    std::size_t bytes = 0;
    const auto set = conn->open(Statement("SELECT * from bodylog order by servertime desc"),
                                Connection::Access::read_only);
    for (; !set->at_end(); set->move_next()) {
      bytes += set->text("keyword").size() + set->text("IPNumber").size() + set->text("mailfrom").size() +
               set->text("mailto").size() + static_cast<std::size_t>(set->number("ID"));
    }
    benchmark::DoNotOptimize(bytes);
  });
}

double walk_bare() {
  Bare bare(database(), Bare::Settings::of_the_component);
  return seconds_of([&] {
    std::size_t bytes = 0;
    sqlite3_stmt* rows = bare.prepare("SELECT * from bodylog order by servertime desc");
    while (sqlite3_step(rows) == SQLITE_ROW) {
      for (int column = 1; column < 5; ++column) {
        benchmark::DoNotOptimize(sqlite3_column_text(rows, column));
        bytes += static_cast<std::size_t>(sqlite3_column_bytes(rows, column));
      }
      bytes += static_cast<std::size_t>(sqlite3_column_int64(rows, 0));
    }
    sqlite3_finalize(rows);
    benchmark::DoNotOptimize(bytes);
  });
}

}  // namespace

void add_rows(Suite& suite) {
  suite.add(Comparison{"list of 1,000,000 rows; bare: the engine's settings", 1.3, fill_ours,
                       [] { return fill_bare(Bare::Settings::of_the_engine); }});
  suite.add(Comparison{"list of 1,000,000 rows; bare: our settings", 1.3, fill_ours,
                       [] { return fill_bare(Bare::Settings::of_the_component); }});
  suite.add(Comparison{"record set of 200,000 rows, five columns each", 1.5, walk_ours, walk_bare});
  suite.add(Measure{"memory of that list, KiB; bare: text and offsets", 1.5,
                    [] { return static_cast<double>(read_ours().memory()) / 1024; },
                    [] {
                      Bare bare(database(), Bare::Settings::of_the_component);
                      return static_cast<double>(read_bare(bare).size()) / 1024;
                    }});
}

}  // namespace zrl::bench
