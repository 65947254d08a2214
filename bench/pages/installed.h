#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "database/comparison.h"
#include "support/installed_console.h"

// Pages at size, in a console with all its components, beside the bare engine on the same database.
namespace zrl::bench {

class Installed : public test::InstalledConsole {
 public:
  std::filesystem::path path() const { return folder.path() / "proxy.db"; }
  std::unique_ptr<Bare> bare() const {
    return std::make_unique<Bare>(path(), Bare::Settings::of_the_component);
  }
  // Runs SQL text in one transaction, and puts what it wrote where every connection reads it best.
  void fill(const std::string& sql) const;

  template <typename PageType>
  std::unique_ptr<PageType> shown() {
    auto page = std::make_unique<PageType>(console);
    page->initialise();
    return page;
  }
};

// A statement of the bare engine.
class Prepared {
 public:
  Prepared(Bare& bare, const std::string& sql) : handle_(bare.prepare(sql)) {}
  Prepared(const Prepared&) = delete;
  Prepared& operator=(const Prepared&) = delete;
  ~Prepared() { sqlite3_finalize(handle_); }

  // Runs it to its end with one text, if it takes one.
  void run(std::string_view text = {});
  // Its rows' first column.
  Arena read();
  sqlite3_stmt* handle() const { return handle_; }

 private:
  sqlite3_stmt* handle_;
};

// The options that a page reads when it is filled, and the version that it writes then.
void read_options(Bare& bare, std::span<const std::string_view> keys);
void write_version(Bare& bare);

// "FROM n" in a SELECT over the numbers from 1 to `count`, in the column i.
std::string numbers(int count, std::string_view select);

// The least seconds of several runs, for work of milliseconds, which anything else on the machine
// would hide.
double quickest(const Run& run);

// Ends the program: what was measured did not do its work.
void require(bool done, const char* what);

void add_domains(Suite& suite);
void add_replacements(Suite& suite);
void add_iplog(Suite& suite);
void add_message_logs(Suite& suite);
void add_archive(Suite& suite);
void add_header_log(Suite& suite);
void add_lookup(Suite& suite);

}  // namespace zrl::bench
