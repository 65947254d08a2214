#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

// Benchmarks in pairs: the same work by the component and by the bare engine.
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

// The engine without anything of ours. Failures end the program.
class Bare {
 public:
  enum class Settings { of_the_engine, of_the_component };

  Bare(const std::filesystem::path& path, Settings settings);
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;
  ~Bare();

  void run(const std::string& sql);
  sqlite3_stmt* prepare(const std::string& sql);
  sqlite3* handle() const { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
};

// Where the databases and list files of the benchmarks lie; removed when the program ends.
const std::filesystem::path& folder();

// Host names in no order, none twice; another seed gives other ones.
std::vector<std::string> host_names(int count, unsigned seed);
void write_lines(const std::filesystem::path& path, const std::vector<std::string>& lines);

void add_rows(Suite& suite);
void add_imports(Suite& suite);
void add_statements(Suite& suite);

}  // namespace zrl::bench
