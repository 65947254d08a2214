#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace zrl::command {

// What `script` was told on the command line.
struct ScriptOptions {
  bool check = false;             // compile only
  std::vector<std::string> call;  // empty, or a procedure's name and its input
  std::vector<std::string> files;
};

// Runs script files in one global module. WScript.Echo, MsgBox and the result of the call go to `out`,
// errors to `err` as FILE(LINE, COLUMN) and their text. Returns the exit status: 1 after an error,
// else what the script gave WScript.Quit.
int run_script(const ScriptOptions& options, std::istream& in, std::ostream& out, std::ostream& err);

}  // namespace zrl::command
