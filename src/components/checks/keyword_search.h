#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "components/checks/text_index.h"
#include "core/contracts/console_services.h"
#include "core/text/string_list.h"

namespace zrl::checks {

// Looks for the entries of keyword lists in one text. An entry is found wherever it stands, within
// words too, A to Z and a to z being the same; one that is a regular expression is searched for.
//
// Of a text, the first 16 MiB are searched. Plain entries cost next to nothing each, however many
// there are; the regular expressions of a list may take `longest` together.
class KeywordSearch {
 public:
  // `text` and the console, which matches the expressions, must outlive the search.
  KeywordSearch(std::string_view text, ConsoleServices& console,
                std::chrono::milliseconds longest = std::chrono::seconds(5));

  // The entry that was found, a regular expression together with what it matched: valid UTF-8, long
  // ones cut. Empty if none was. Plain entries come first, then regular expressions, both in the
  // order of the list. Raises zrl::Error if the regular expressions took too long.
  std::string find(const StringList& entries) const;

 private:
  std::string find_regex(const StringList& entries) const;

  std::string_view text_;
  TextIndex index_;  // of the text in small letters
  ConsoleServices& console_;
  std::chrono::milliseconds longest_;
};

}  // namespace zrl::checks
