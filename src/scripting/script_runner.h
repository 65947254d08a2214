#pragma once

#include <cstdint>
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
// and calls them. A script is a function of its own name; it gets one text and returns a whole number.
// Texts are UTF-8.
//
// No operation throws. What fails is skipped, goes into the console's activity record, and is kept as a
// problem if a script is at fault. While a script waits for the answer to a box, another operation does
// nothing but being recorded as a failure.
class ScriptRunner : private DatabaseClient {
 public:
  explicit ScriptRunner(Console& console, const vbs::Limits& limits = {});

  // Loads every script, over a connection of its own; a connection that fails is told in a box.
  void loaddb();
  // Loads the scripts of a position and, whatever their position, those that are not visible, by
  // ascending priority. No position holds an apostrophe.
  void load_into_engine(const ConnectionHandle& connection, std::string_view position);

  // Runs one script; loads all scripts before if none has ever been loaded. Empty if it failed.
  vbs::ScriptValue call_vbs(std::string_view scriptname, std::string_view input);
  // Runs the loaded scripts of the position, in the order of their loading, writes the result of each
  // to "Scripts.log" in the console's folder, and returns the sum. A script that fails, or whose result
  // is no 32-bit integer, counts as the one before it in this call did, the first one as 0. A result that
  // would make the sum overflow is left out of it.
  std::int32_t call_all(std::string_view input, std::string_view position);

  // What scripts did wrong since they were loaded.
  struct Problem {
    std::string script;
    std::size_t line = 0;    // from 1; 0 where there is no place
    std::size_t column = 0;  // from 1, in 16-bit units
    std::string text;

    // "name(3, 14): text"
    std::string description() const;
  };
  static constexpr std::size_t problem_limit = 100;  // further ones are only recorded
  const std::vector<Problem>& problems() const { return problems_; }

  // What scripts printed with WScript.Echo in the last operation that ran any; a bounded number of lines.
  const std::vector<std::string>& echoed() const { return host_.lines(); }

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
  bool last_log_result_ = false;
  bool in_use_ = false;
};

}  // namespace zrl
