#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "suite.h"

// The database component beside the bare engine.
namespace zrl::bench {

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
