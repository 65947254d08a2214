#include <cstdio>
#include <cstdlib>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "database/comparison.h"

// A list file of a million lines into a table with its index. The other side is the engine's own
// command line with ".import", run as a program on the same file and an equal database. It adds
// every line; ours adds only what the table lacks, each entry once. Where all lines are new, both
// leave the same rows.
namespace zrl::bench {

namespace {

constexpr long lines = 1000000;

enum class Journal { write_ahead, roll_back };

std::filesystem::path file_of(unsigned seed) {
  std::filesystem::path path = list_folder() / ("lines" + std::to_string(seed) + ".txt");
  if (!std::filesystem::exists(path)) write_lines(path, host_names(static_cast<int>(lines), seed));
  return path;
}

// The shell is found like any other program; without it the comparison has no other side.
bool run_shell(const std::filesystem::path& database, const std::filesystem::path& file) {
  const std::string command = ".import \"" + file.string() + "\" blacklist";
  const char* arguments[] = {"sqlite3", database.c_str(), ".mode tabs", command.c_str(), nullptr};
  pid_t child = 0;
  if (::posix_spawnp(&child, "sqlite3", nullptr, nullptr, const_cast<char**>(arguments), environ) != 0)
    return false;
  int status = 0;
  ::waitpid(child, &status, 0);
  return status == 0;
}

std::filesystem::path original(bool full) {
  const std::string name = full ? "full.db" : "empty.db";
  if (!std::filesystem::exists(folder() / name)) {
    const auto access = access_to("sqlite:" + name);
    access->open_database("sqlite:" + name);
    if (full) access->import_(list::black_domains, file_of(3).string());
    Bare(folder() / name, Bare::Settings::of_the_engine).run("PRAGMA wal_checkpoint(TRUNCATE)");
  }
  return folder() / name;
}

std::filesystem::path copy(bool full, Journal journal) {
  std::filesystem::path path = folder() / "import.db";
  for (const char* ending : {"", "-wal", "-shm", "-journal"}) std::filesystem::remove(path.string() + ending);
  std::filesystem::copy_file(original(full), path);
  if (journal == Journal::roll_back)
    Bare(path, Bare::Settings::of_the_engine).run("PRAGMA journal_mode=DELETE");
  ::sync();
  return path;
}

long rows_of(const std::filesystem::path& path) {
  Bare bare(path, Bare::Settings::of_the_engine);
  sqlite3_stmt* count = bare.prepare("SELECT count(*) FROM blacklist");
  sqlite3_step(count);
  const long rows = static_cast<long>(sqlite3_column_int64(count, 0));
  sqlite3_finalize(count);
  return rows;
}

void expect_rows(const std::filesystem::path& path, long wanted) {
  if (rows_of(path) == wanted) return;
  std::fprintf(stderr, "wrong number of rows after the import\n");
  std::exit(1);
}

double ours(bool full, unsigned seed, long wanted) {
  const std::filesystem::path path = copy(full, Journal::write_ahead);
  const std::string file = file_of(seed).string();
  const double seconds = seconds_of([&] {
    const auto access = access_to("sqlite:import.db");
    access->import_(list::black_domains, file);
  });
  expect_rows(path, wanted);
  return seconds;
}

double shell(bool full, unsigned seed, Journal journal) {
  const std::filesystem::path path = copy(full, journal);
  const std::filesystem::path file = file_of(seed);
  bool worked = false;
  const double seconds = seconds_of([&] { worked = run_shell(path, file); });
  if (!worked) {
    std::fprintf(stderr, "the engine's command line could not be run\n");
    std::exit(1);
  }
  expect_rows(path, full ? 2 * lines : lines);
  return seconds;
}

}  // namespace

void add_imports(Suite& suite) {
  struct Case {
    const char* name;
    bool full;
    unsigned seed;
    long rows;
  };
  for (const Case& each : {Case{"into an empty table", false, 3, lines},
                           Case{"into a table of 1,000,000 others", true, 4, 2 * lines},
                           Case{"into a table that holds them all", true, 3, lines}}) {
    for (const Journal journal : {Journal::write_ahead, Journal::roll_back}) {
      const char* mode = journal == Journal::write_ahead ? "; write-ahead" : "; roll-back";
      suite.add(Comparison{std::string("1,000,000 lines ") + each.name + mode, 1.0,
                           [each] { return ours(each.full, each.seed, each.rows); },
                           [each, journal] { return shell(each.full, each.seed, journal); }});
    }
  }
}

}  // namespace zrl::bench
