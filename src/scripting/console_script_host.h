#pragma once

#include <memory>
#include <optional>
#include <string>

#include "scripting/vbscript/engine.h"

namespace zrl {

class Console;

// What scripts get of a console: message boxes and regular expressions. Never throws, because objects of
// a script may ask for a box while they are destroyed.
class ConsoleScriptHost : public vbs::EngineHost {
 public:
  explicit ConsoleScriptHost(Console& console) : console_(console) {}

  // Boxes have the buttons "OK" and "Cancel"; the language's other pairs answer as their first and last
  // button. Boxes beyond the limit are not shown and count as answered with the first one.
  int msg_box(const std::string& text, int buttons, const std::string& title) override;
  // The console's hosts have no box to type into: it asks whether to go on with the preset text.
  std::optional<std::string> input_box(const std::string& text, const std::string& title,
                                       const std::string& preset) override;
  void echo(const std::string&) override {}  // scripts of the table have no WScript
  std::shared_ptr<RegExp> make_regexp() override;

  // As many boxes as the limit may be shown again.
  void allow_boxes() { boxes_ = 0; }
  static constexpr int box_limit = 50;

 private:
  bool show_box(const std::string& text, int buttons, const std::string& title);

  Console& console_;
  int boxes_ = 0;
};

}  // namespace zrl
