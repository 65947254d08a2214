#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "components/pcre2/pcre2.h"
#include "scripting/vbscript/engine.h"

namespace zrl::vbs::test {

// Two texts, and nothing outside.
class FixedFiles : public ScriptFiles {
 public:
  bool file_exists(const std::string& path) override { return texts_.count(path) != 0; }
  bool folder_exists(const std::string& path) override { return path == "lib"; }
  std::string contents(const std::string& path) override {
    if (path.find("..") != path.npos) throw ServiceError{70, {}};
    if (!file_exists(path)) throw ServiceError{53, {}};
    return texts_.at(path);
  }

 private:
  std::map<std::string, std::string> texts_{
      {"words.txt", "viagra\r\ncasino"},
      {"lib\\twice.vbs", "Function Twice(x) : Twice = x * 2 : End Function"}};
};

class FixedLookups : public Lookups {
 public:
  std::string address(const std::string& host) override {
    return host == "mail.example.com" ? "192.0.2.1" : "";
  }
  std::string name(const std::string& address) override {
    return address == "192.0.2.1" ? "mail.example.com" : "";
  }
  std::vector<std::string> exchangers(const std::string& domain) override {
    if (domain != "example.com") return {};
    return {"mx1.example.com", "mx2.example.com"};
  }
  std::string listed(const std::string& zone, const std::string& address) override {
    return zone == "list.example.org" && address == "192.0.2.66" ? "127.0.0.2" : "";
  }
  bool has_entry(const std::string& list, const std::string& entry) override {
    if (list != "whitemail") throw ServiceError{5, "There is no list of this name"};
    return entry == "friend@example.com";
  }
};

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

  ScriptFiles* files() override { return with_services ? &files_ : nullptr; }
  Lookups* lookups() override { return with_services ? &lookups_ : nullptr; }
  void script_stopped(const ScriptError& error) override { lines.push_back("stopped: " + error.description); }

  std::vector<std::string> lines;
  bool with_regexps = true;
  bool with_services = false;

 private:
  FixedFiles files_;
  FixedLookups lookups_;
};

// "error 13 (2, 5): Type mismatch", or "compile error ...".
std::string description_of(const ScriptError& error);

// What a text prints, and its error as the last line.
std::vector<std::string> output_of(std::string_view script, const Limits& limits = {},
                                   bool with_services = false);

}  // namespace zrl::vbs::test
