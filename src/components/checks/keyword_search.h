#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "components/checks/text_index.h"
#include "core/contracts/console_services.h"
#include "core/text/string_list.h"

namespace zrl::checks {

// Looks for the entries of keyword lists in one text. An entry is found anywhere, also inside a word, and
// without regard to the case of ASCII letters; an entry that is a regular expression is matched.
//
// Only the first 16 MiB of a text are searched. Plain entries cost next to nothing each, however many
// there are; the regular expressions of a list may take `longest` together.
class KeywordSearch {
 public:
  // `text` and the console, which matches the expressions, must outlive the search.
  KeywordSearch(std::string_view text, ConsoleServices& console,
                std::chrono::milliseconds longest = std::chrono::seconds(5));

  // The first entry that is found, a regular expression together with what it matched: valid UTF-8, cut to a
  // bounded length. Empty if there is none. Plain entries are tried first, then regular expressions, both in
  // the order of the list. Raises zrl::Error if the regular expressions take too long.
  std::string find(const StringList& entries) const;

 private:
  std::string find_regex(const StringList& entries) const;

  std::string_view text_;
  TextIndex index_;  // of the text in lower case
  ConsoleServices& console_;
  std::chrono::milliseconds longest_;
};

}  // namespace zrl::checks
