#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class RegExp;

// Matches texts against the list entries that are regular expressions. The component is created on
// first use and kept.
class PatternMatcher {
 public:
  explicit PatternMatcher(Console& console) : console_(console) {}

  // What the regular expression of `entry` ("REGEX[...]") matches first in `text`, or empty: nothing
  // matches, the entry is none, or it matched the empty text. Case is ignored. Never throws; a
  // missing component, a malformed expression and a search that was given up are recorded as failed
  // reads.
  std::string regex_match(std::string_view entry, std::string_view text);

 private:
  Console& console_;
  std::shared_ptr<RegExp> regexp_;
};

}  // namespace zrl
