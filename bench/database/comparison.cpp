#include "database/comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <random>

#include <benchmark/benchmark.h>

#include "support/temporary_folder.h"

namespace zrl::bench {

namespace {

class BestTimes : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const auto [at, added] = best_.emplace(run.run_name.function_name, run.GetAdjustedRealTime());
      if (!added) at->second = std::min(at->second, run.GetAdjustedRealTime());
    }
  }

  double of(const std::string& name) const {
    const auto found = best_.find(name);
    return found == best_.end() ? 0 : found->second;
  }

 private:
  std::map<std::string, double> best_;
};

bool print_row(const std::string& name, double ours, double bare, double goal) {
  const double ratio = ours / bare;
  std::printf("%-58s %12.1f %12.1f %8.2f %8.2f  %s\n", name.c_str(), ours, bare, ratio, goal,
              ratio <= goal ? "" : "MISSED");
  return ratio <= goal;
}

void fail(sqlite3* handle, const char* what) {
  std::fprintf(stderr, "%s: %s\n", what, sqlite3_errmsg(handle));
  std::exit(1);
}

}  // namespace

bool Suite::run(int repetitions) {
  for (const Comparison& comparison : comparisons_) {
    for (const auto& [side, work] :
         {std::pair("ours", comparison.ours), std::pair("bare", comparison.bare)}) {
      benchmark::RegisterBenchmark((comparison.name + "/" + side).c_str(),
                                   [run = work](benchmark::State& state) {
                                     for (auto _ : state) state.SetIterationTime(run());
                                   })
          ->UseManualTime()
          ->Iterations(1)
          ->Repetitions(repetitions)
          ->Unit(benchmark::kMillisecond);
    }
  }
  BestTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  std::printf("\n%-58s %12s %12s %8s %8s\n", "ms", "ours", "bare", "ratio", "goal");
  bool met = true;
  for (const Comparison& comparison : comparisons_) {
    const double ours = times.of(comparison.name + "/ours");
    const double bare = times.of(comparison.name + "/bare");
    if (ours > 0 && bare > 0) met = print_row(comparison.name, ours, bare, comparison.goal) && met;
  }
  for (const Measure& measure : measures_) {
    met = print_row(measure.name, measure.ours(), measure.bare(), measure.goal) && met;
  }
  return met;
}

double seconds_of(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Bare::Bare(const std::filesystem::path& path, Settings settings) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const bool ours = settings == Settings::of_the_component;
  if (sqlite3_open_v2(path.c_str(), &handle_, flags | (ours ? SQLITE_OPEN_NOMUTEX : 0), nullptr) !=
      SQLITE_OK) {
    fail(handle_, path.c_str());
  }
  if (ours) run("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA mmap_size=1073741824");
}

Bare::~Bare() {
  sqlite3_close(handle_);
}

void Bare::run(const std::string& sql) {
  if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(handle_, sql.c_str());
}

sqlite3_stmt* Bare::prepare(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    fail(handle_, sql.c_str());
  return statement;
}

const std::filesystem::path& folder() {
  static const test::TemporaryFolder made;
  return made.path();
}

std::vector<std::string> host_names(int count, unsigned seed) {
  std::vector<std::string> names;
  std::mt19937 source(seed);
  const auto random = [&] { return static_cast<unsigned>(source()); };
  for (int i = 0; i < count; ++i) {
    std::string name;
    const unsigned length = 4 + random() % 10;
    for (unsigned n = 0; n < length; ++n) name += static_cast<char>('a' + random() % 26);
    names.push_back(name + std::to_string(i) + "-" + std::to_string(seed) + ".example");
  }
  return names;
}

void write_lines(const std::filesystem::path& path, const std::vector<std::string>& lines) {
  std::ofstream file(path, std::ios::binary);
  for (const std::string& line : lines) file << line << '\n';
}

}  // namespace zrl::bench
