#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "core/contracts/database.h"
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

// What a program would keep of a list that knows nothing but the engine.
struct Arena {
  std::string bytes;
  std::vector<std::uint32_t> ends;

  void add(std::string_view text) {
    bytes.append(text);
    ends.push_back(static_cast<std::uint32_t>(bytes.size()));
  }
  void add(sqlite3_stmt* row, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    add(std::string_view(text, static_cast<std::size_t>(sqlite3_column_bytes(row, column))));
  }
  std::string_view operator[](std::size_t index) const {
    const std::size_t begin = index == 0 ? 0 : ends[index - 1];
    return std::string_view(bytes).substr(begin, ends[index] - begin);
  }
  std::size_t count() const { return ends.size(); }
  std::size_t size() const { return bytes.size() + ends.size() * sizeof(std::uint32_t); }
};

// Where the databases and list files of the benchmarks lie; removed when the program ends.
const std::filesystem::path& folder();
// In it, for list files.
const std::filesystem::path& list_folder();

// The component, on that folder, with this connection string.
std::shared_ptr<Database> access_to(const std::string& provider);

// Host names in no order, none twice; another seed gives other ones.
std::vector<std::string> host_names(int count, unsigned seed);
void write_lines(const std::filesystem::path& path, const std::vector<std::string>& lines);

void add_rows(Suite& suite);
void add_imports(Suite& suite);
void add_statements(Suite& suite);
void add_search(Suite& suite);

}  // namespace zrl::bench
