#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/command/command_line.h"

namespace zrl::command {

// The options of `script` on the command line.
struct ScriptOptions {
  bool check = false;              // compile only
  std::vector<std::string> call;   // empty, or a procedure's name and its input
  std::vector<std::string> files;  // at least one
  std::filesystem::path folder;    // of the console whose look-ups scripts may use
};

// The arguments of `list` and its commands.
struct ListOptions {
  std::string name;
  std::vector<std::string> entries;
  std::string filter;
  std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
  std::string comment;
  std::string expires;
  std::string file;  // "-" is standard input or output
  bool overwrite = false;
};

// Those of `lookup`.
struct LookupOptions {
  std::string what;
  bool dns = false;
};

// The options of `messages` on the command line.
struct MessagesOptions {
  std::string since;   // a time, or how long ago; empty: all
  std::string filter;  // docs/messages.md
  std::uint64_t limit = 100;
  bool csv = false;
};

// The parsed command line of all commands; each command reads its own part.
struct Arguments {
  std::filesystem::path folder;
  bool json = false;
  bool sample = false;
  bool start_programs = false;
  std::string page;
  std::string period = "day";  // of overview
  std::string query;
  std::vector<std::string> steps;
  std::string path;
  std::string kind;
  std::string value;
  ServeOptions serve;
  ScriptOptions script;
  ListOptions list;
  LookupOptions lookup;
  MessagesOptions messages;
};

// The command line is wrong; the exit status is then that of a usage error.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The commands. They return the exit status, and raise UsageError or any std::exception.
int run_init(const Arguments& arguments, std::ostream& out);
int run_pages(const Arguments& arguments, const Program& program, std::ostream& out);
int run_do(const Arguments& arguments, const Program& program, std::istream& in, std::ostream& out,
           std::ostream& err);
// Prints rows of the logs, the newest first. 2 for a filter that means nothing, 1 if a log could not be read.
int run_messages(const Arguments& arguments, const Program& program, std::ostream& out, std::ostream& err);
int run_overview(const Arguments& arguments, const Program& program, std::ostream& out);
int run_registry_get(const Arguments& arguments, std::ostream& out);
int run_registry_set(const Arguments& arguments);
int run_registry_delete(const Arguments& arguments);

// The lists by name. What one command changes is one transaction. Entries that were refused or missing make
// the status a failure, and the others are changed all the same.
int run_list_names(const Arguments& arguments, std::ostream& out);
int run_list_show(const Arguments& arguments, std::ostream& out);
int run_list_add(const Arguments& arguments, std::ostream& out);
int run_list_remove(const Arguments& arguments, std::ostream& out);
int run_list_import(const Arguments& arguments, std::istream& in, std::ostream& out);
int run_list_export(const Arguments& arguments, std::ostream& out);

// What the page "lookup" shows of the text.
int run_lookup(const Arguments& arguments, const Program& program, std::ostream& out);

// Runs script files in one global module. They may be in UTF-8, UTF-16 with a byte order mark, or
// Windows-1252, of which a note on `err` warns. They can read files in the folder of the first one.
// WScript.Echo, MsgBox and the result of the call go to `out`, errors to `err` as FILE(LINE, COLUMN) and
// their text. Returns the exit status: 1 after an error, else what the script gave WScript.Quit.
int run_script(const ScriptOptions& options, std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace zrl::command
