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

// What a console provides to scripts: message boxes, lines that they print, regular expressions, the files
// below its folder "scripts" (to read), and its look-ups. Boxes and lines never throw, because a script may
// use them while its objects are destroyed. All texts are UTF-8; those of scripts are cut at 4,096 bytes,
// titles at 256. The console must outlive it.
class ConsoleScriptHost : public vbs::EngineHost {
 public:
  explicit ConsoleScriptHost(Console& console);

  // Shows a box of the host and blocks until it is answered. `buttons` and the result are the numbers of the
  // language's MsgBox. The host has boxes with "OK" and perhaps "Cancel" only: for other sets of buttons,
  // "OK" answers as the first button that goes on, and "Cancel" as the last. Boxes beyond the limit are not
  // shown and count as answered with "OK".
  int msg_box(const std::string& text, int buttons, const std::string& title) override;
  // The console's hosts have no box to type into: this asks whether to go on with the preset text. Nothing if
  // the box is cancelled.
  std::optional<std::string> input_box(const std::string& text, const std::string& title,
                                       const std::string& preset) override;
  // Writes the line to the activity record, and keeps it for lines(). Lines beyond the limit are dropped.
  void echo(const std::string& text) override;
  // Null where the component is missing, which is recorded.
  std::shared_ptr<RegExp> make_regexp() override;
  vbs::ScriptFiles* files() override { return &files_; }
  vbs::Lookups* lookups() override { return &lookups_; }
  void script_stopped(const vbs::ScriptError& error) override;

  // To be called before each operation of the script host: forgets the lines and restores both limits.
  void begin_operation();
  // How many boxes and lines an operation may show; the last line is "..." if there are more.
  static constexpr int box_limit = 50;
  static constexpr std::size_t line_limit = 200;

  // What the operation has printed so far; at most `line_limit` lines.
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
