#include "pages/installed.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zrl::bench {

void Installed::fill(const std::string& sql) const {
  bare()->run("BEGIN;" + sql + ";COMMIT;PRAGMA wal_checkpoint(TRUNCATE)");
}

void Prepared::run(std::string_view text) {
  if (sqlite3_bind_parameter_count(handle_) > 0) {
    sqlite3_bind_text(handle_, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }
  int code = sqlite3_step(handle_);
  while (code == SQLITE_ROW) code = sqlite3_step(handle_);
  require(code == SQLITE_DONE, "a bare statement failed");
  sqlite3_reset(handle_);
}

Arena Prepared::read() {
  Arena arena;
  while (sqlite3_step(handle_) == SQLITE_ROW) arena.add(handle_, 0);
  sqlite3_reset(handle_);
  return arena;
}

void read_options(Bare& bare, std::span<const std::string_view> keys) {
  Prepared option(bare, "SELECT value FROM konf WHERE ID=?1");
  for (const std::string_view key : keys) option.run(key);
}

void write_version(Bare& bare) {
  Prepared(bare, "UPDATE konf SET value=?1 WHERE ID='version'").run("1");
}

std::string numbers(int count, std::string_view select) {
  std::string sql = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<";
  return sql.append(std::to_string(count)).append(") ").append(select);
}

double quickest(const Run& run) {
  double least = run();
  for (int i = 1; i < 10; ++i) least = std::min(least, run());
  return least;
}

void require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

}  // namespace zrl::bench
