#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "scripting/console_lookups.h"
#include "scripting/folder_script_files.h"
#include "scripting/vbscript/engine.h"

namespace zrl {

class Console;

// What scripts get of a console: message boxes, lines that they print, regular expressions, the files below
// its folder "scripts", and its look-ups. Boxes and lines never throw, because objects of a script may ask
// for them while they are destroyed.
class ConsoleScriptHost : public vbs::EngineHost {
 public:
  explicit ConsoleScriptHost(Console& console);

  // Boxes have the buttons "OK" and "Cancel"; the language's other pairs answer as their first and last
  // button. Boxes beyond the limit are not shown and count as answered with the first one.
  int msg_box(const std::string& text, int buttons, const std::string& title) override;
  // The console's hosts have no box to type into: it asks whether to go on with the preset text.
  std::optional<std::string> input_box(const std::string& text, const std::string& title,
                                       const std::string& preset) override;
  // Into the activity record; the first lines of an operation are kept for its result, too.
  void echo(const std::string& text) override;
  std::shared_ptr<RegExp> make_regexp() override;
  vbs::ScriptFiles* files() override { return &files_; }
  vbs::Lookups* lookups() override { return &lookups_; }
  void script_stopped(const vbs::ScriptError& error) override;

  // A new operation: as many boxes and lines as their limits may be shown again.
  void begin_operation();
  static constexpr int box_limit = 50;
  static constexpr std::size_t line_limit = 200;

  const std::vector<std::string>& lines() const { return lines_; }

 private:
  bool show_box(const std::string& text, int buttons, const std::string& title);

  Console& console_;
  FolderScriptFiles files_;
  ConsoleLookups lookups_;
  std::vector<std::string> lines_;
  std::size_t echoed_ = 0;
  int boxes_ = 0;
};

}  // namespace zrl
