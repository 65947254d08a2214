#include "suite.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>

#include <benchmark/benchmark.h>

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

}  // namespace zrl::bench
