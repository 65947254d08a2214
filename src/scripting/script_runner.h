#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/logger.h"
#include "core/database_client.h"
#include "scripting/console_script_host.h"
#include "scripting/vbscript/engine.h"

namespace zrl {

// Loads the scripts of the table `scriptengine` into one script host, where they share one name space,
// and calls them. A script is a function with the script's name; it gets one text and returns a whole number.
// Texts are UTF-8.
//
// No operation throws. What fails is skipped and recorded in the console's activity record, and kept as a
// problem if a script is at fault. Scripts may serve the event loop, by a box or a look-up; an operation
// that is called then does nothing and is recorded as failed. The console must outlive the runner, which
// belongs to the console's thread.
class ScriptRunner final : private DatabaseClient {
 public:
  // `limits` bounds the time and the memory of each call of a script.
  explicit ScriptRunner(Console& console, const vbs::Limits& limits = {});

  // Replaces what was loaded by all scripts of the table (the first 32,767), over a connection of its own; a
  // message box reports a connection that fails.
  void loaddb();
  // Replaces what was loaded by the scripts of a position (converted to upper case) and, whatever their
  // position, those that are not visible, by ascending priority. A position with an apostrophe loads nothing.
  void load_into_engine(const ConnectionHandle& connection, std::string_view position);

  // Runs one script; first loads all scripts if none has been loaded yet. Empty if it failed.
  vbs::ScriptValue call_vbs(std::string_view scriptname, std::string_view input);
  // Runs the loaded scripts of the position (compared without regard to case) in the order of their loading,
  // appends the result of each to "Scripts.log" in the console's folder, and returns the sum. A script that
  // fails, or whose result is no 32-bit integer, repeats the result of the script before it in this call, or
  // 0 if it is the first. A result that would make the sum overflow is not added.
  std::int32_t call_all(std::string_view input, std::string_view position);

  // A fault of a script since the scripts were loaded, where `line` and `column` say.
  struct Problem {
    std::string script;
    std::size_t line = 0;    // from 1; 0 if the place is not known
    std::size_t column = 0;  // from 1, in 16-bit units
    std::string text;

    // "name(3, 14): text"
    std::string description() const;
  };
  static constexpr std::size_t problem_limit = 100;  // further ones go to the activity record only
  const std::vector<Problem>& problems() const { return problems_; }

  // What scripts printed with WScript.Echo in the last operation that ran any: at most
  // ConsoleScriptHost::line_limit lines.
  const std::vector<std::string>& echoed() const { return host_.lines(); }
  // Whether the last line was appended to "Scripts.log".

  bool last_log_result() const { return last_log_result_; }

 private:
  struct Script {
    std::string name;
    std::string position;
  };
  class Turn;

  void clear();
  void load_rows(RecordSet* rows);
  void load_row(RecordSet& row);
  vbs::ScriptValue run(std::string_view name, std::string_view input);
  std::optional<std::int32_t> result_of(std::string_view name, std::string_view input);
  void log(std::string_view name, std::int32_t value);
  bool script_step(std::string_view what, std::string_view script, const std::function<void()>& action);
  [[noreturn]] void fail(Problem problem, int number);

  ConsoleScriptHost host_;
  vbs::Engine script_host_;
  std::shared_ptr<Logger> logger_;
  std::vector<Script> scripts_;  // in the order of their loading
  std::string current_position_;
  std::vector<Problem> problems_;
  bool loaded_ = false;
  std::filesystem::path log_file_;
  bool last_log_result_ = false;
  bool in_use_ = false;
};

}  // namespace zrl
