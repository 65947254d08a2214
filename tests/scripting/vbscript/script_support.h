#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "components/pcre2/pcre2.h"
#include "scripting/vbscript/engine.h"

namespace zrl::vbs::test {

// Collects what scripts print; message boxes answer with their number of buttons.
class ScriptHost : public EngineHost {
 public:
  int msg_box(const std::string& text, int buttons, const std::string& title) override {
    lines.push_back("[" + title + "] " + text);
    return buttons + 1;
  }
  std::optional<std::string> input_box(const std::string& text, const std::string& title,
                                       const std::string& preset) override {
    lines.push_back("[" + title + "] " + text);
    if (preset == "cancel") return std::nullopt;
    return preset;
  }
  void echo(const std::string& text) override { lines.push_back(text); }
  std::shared_ptr<RegExp> make_regexp() override { return with_regexps ? pcre2::make_regexp() : nullptr; }

  std::vector<std::string> lines;
  bool with_regexps = true;
};

// "error 13 (2, 5): Type mismatch", or "compile error ...".
std::string description_of(const ScriptError& error);

// What a text prints, and its error as the last line.
std::vector<std::string> output_of(std::string_view script, const Limits& limits = {});

}  // namespace zrl::vbs::test
