// Every text that the sources of the pages show to people has a German form.
#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "components/locale/catalogue.h"
#include "components/locale/locale.h"
#include "core/text/files.h"
#include "core/text/text.h"

namespace zrl {
namespace {

constexpr std::string_view folders[] = {"src/pages", "src/scripting", "src/service", "src/catalogue",
                                        "src/core"};
// The language of the scripts, and what reads texts without showing any.
constexpr std::string_view without_texts[] = {"src/scripting/vbscript", "src/core/text",
                                              "src/core/contracts"};

// Texts of several words that are no texts of a form or box: parts of the activity record and of errors,
// which are English; examples; what the product sends or stores.
constexpr std::string_view others[] = {
    // the activity record
    "begin transaction",
    "roll back",
    "not stored",
    "somebody else has stored another value meanwhile",
    "somebody else has stored another script meanwhile",
    "look up ",
    "send to ",
    "export of a mail",
    "a script is still running",
    "regex_match ",
    "create a regular expression",
    "count the logs",
    "keep the counts of the logs",
    "no database component",
    // rules that the record quotes
    "a pick-up folder needs a colon",
    "an address needs an at sign",
    "a folder for spam begins with its drive or is on the network",
    ", so it is stored as empty",
    // errors
    "Type mismatch: not a ",
    "-bit integer",
    " boxes; no more are shown",
    "the script wants to quit",
    "the result is no whole number of 32 bits",
    "unknown error",
    // components, by their names in errors
    "create mirvan.html",
    "create mirvan_locale.translate",
    // parts of statements
    "' and entry='",
    "' order by ID desc limit ",
    "' limit ",
    // what is sent and stored
    "mail from: adsf@",
    " relay report",
    "220 Mirvan",
    "250 Hello - Please do not SPAM me ",
    "221 2.0.0 thank you for not SPAMMING me",
    "250 2.6.0 You got rid of your HAM",
    "On Error Resume Next",
    "=0\t\t\t'set return value (always Integer)",
    "220-****",
    // parts of times and of queries
    "%Y-%m-%d %H",
    "00 until:",
    // examples in empty fields
    "v=spf1 a/24 mx/24 ptr ~all",
    "<ep xmlns=",
    "from:example.com reason:rbl",
};

struct Text {
  std::string text;
  std::string_view before;  // what stands in front of it, without blanks at its end
};

char escaped(char c) {
  const std::size_t place = std::string_view("nrt").find(c);
  return place == std::string_view::npos ? c : "\n\r\t"[place];
}

// The literals of a source, neighbours joined, outside comments and includes.
std::vector<Text> texts_of(std::string_view source) {
  std::vector<Text> found;
  std::size_t end_of_last = 0;
  for (std::size_t i = 0; i < source.size(); ++i) {
    const std::string_view rest = source.substr(i);
    if (rest.starts_with("//") || rest.starts_with("#include")) {
      i = std::min(source.find('\n', i), source.size());
    } else if (rest.starts_with("'\"'") || rest.starts_with("'\\''")) {
      i += rest[1] == '\\' ? 3 : 2;
    } else if (rest.starts_with("R\"(")) {
      i = std::min(source.find(")\"", i), source.size()) + 1;
    } else if (rest.front() == '"') {
      const std::size_t begin = i;
      std::string text;
      for (++i; i < source.size() && source[i] != '"'; ++i) {
        const bool is_escape = source[i] == '\\';
        if (is_escape) ++i;
        text += is_escape ? escaped(source[i]) : source[i];
      }
      const std::string_view between = source.substr(end_of_last, begin - end_of_last);
      if (!found.empty() && trim(between).empty()) {
        found.back().text += text;
      } else {
        const std::string_view before = source.substr(0, begin);
        found.push_back({text, before.substr(0, before.find_last_not_of(" \n") + 1)});
      }
      end_of_last = i + 1;
    }
  }
  return found;
}

bool has_words(std::string_view text) {
  const auto is_letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  return trim(text).find(' ') != std::string_view::npos && std::ranges::count_if(text, is_letter) > 3;
}

// A statement, or a part of one.
bool is_statement(std::string_view text) {
  for (const std::string_view word :
       {"servertime", "mailfrom", "mailto", "IPNumber", " status=", " and ID", " order by ID", "escape '!'",
        " like '%", " as integer) between ", " limit 1 offset ", "||coalesce(", "' and sip='",
        "' then 1 else 0 end", " WHERE ", " GROUP BY ", "' AND ", " AS "}) {
    if (text.find(word) != text.npos) return true;
  }
  const std::string start = lower(text.substr(0, text.find(' ')));
  return start == "select" || start == "delete" || start == "insert" || start == "update" ||
         text.find("where ") != text.npos || text.find(" set ") != text.npos ||
         text.find("prio") != text.npos;
}

// Whether an error or the activity record gets the text, or a control or component its name.
bool is_no_text_of_a_form(std::string_view before) {
  if (before.ends_with("*this,")) return true;
  const std::string_view call = before.substr(before.find_last_of(";}{") + 1);
  const auto calls = [&](std::string_view name) { return call.find(name) != call.npos; };
  return calls("Error(") || calls("refuse(") || calls("noted(") || calls("failed(") ||
         call.ends_with("fail(") || before.ends_with("invalid_call,") || before.ends_with("cannot_perform,");
}

// The last of two would silently win.
TEST(Texts, StandInTheCatalogueOnce) {
  std::istringstream lines(read_file(std::filesystem::path(ZRL_SOURCES) / "locale/german.po"));
  std::set<std::string> seen;
  for (std::string line, id; std::getline(lines, line);) {
    if (line.starts_with("msgid ")) {
      id = line;
    } else if (!id.empty() && line.starts_with('"')) {
      id += line;
    } else if (!id.empty()) {
      EXPECT_TRUE(seen.insert(std::exchange(id, {})).second) << line;
    }
  }
  EXPECT_GT(seen.size(), 100u);
}

TEST(Texts, OfTheSourcesAreInGerman) {
  const auto german = locale::Catalogue::parse(locale::built_in_catalogue("german"));
  std::size_t checked = 0;
  const auto check = [&](const std::filesystem::path& file) {
    const std::string source = read_file(file);
    for (const auto& [text, before] : texts_of(source)) {
      const bool is_translated = before.ends_with("translate(");
      if (!is_translated && (!has_words(text) || is_statement(text) || is_no_text_of_a_form(before)))
        continue;
      ++checked;
      const bool is_other =
          std::ranges::any_of(others, [&](std::string_view other) { return text.starts_with(other); });
      EXPECT_TRUE(is_other || german.has(text)) << file.filename() << ": " << text;
    }
  };
  for (const std::string_view folder : folders) {
    const auto root = std::filesystem::path(ZRL_SOURCES) / folder;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      const std::string path = entry.path().string();
      const bool is_source = path.ends_with(".cpp") || path.ends_with(".h");
      const bool is_left_out = std::ranges::any_of(
          without_texts, [&](std::string_view part) { return path.find(part) != std::string::npos; });
      if (is_source && !is_left_out) check(entry.path());
    }
  }
  EXPECT_GT(checked, 500U);
}

}  // namespace
}  // namespace zrl
