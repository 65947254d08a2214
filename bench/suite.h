#pragma once

#include <functional>
#include <string>
#include <vector>

// Benchmarks in pairs: the same work by our code and by what it is measured against.
namespace zrl::bench {

// Seconds that one run took.
using Run = std::function<double()>;

struct Comparison {
  std::string name;
  double goal;  // the greatest ratio of ours to bare
  Run ours;
  Run bare;
};

// A plain ratio that needs no clock.
struct Measure {
  std::string name;
  double goal;
  std::function<double()> ours;
  std::function<double()> bare;
};

class Suite {
 public:
  void add(Comparison comparison) { comparisons_.push_back(std::move(comparison)); }
  void add(Measure measure) { measures_.push_back(std::move(measure)); }

  // Registers the benchmarks, runs them in turns, prints the table of ratios; false if a goal was
  // missed. Of several runs the quickest counts, for the machine may have other things to do.
  bool run(int repetitions);

 private:
  std::vector<Comparison> comparisons_;
  std::vector<Measure> measures_;
};

double seconds_of(const std::function<void()>& work);

}  // namespace zrl::bench
