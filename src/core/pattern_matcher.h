#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace zrl {

class Console;
class RegExp;

// Matches texts against list entries that are regular expressions. The component is created on first use and
// kept; it caches compiled expressions, so that matching many texts against the same entries is cheap. Owned
// by the console, which outlives it; pages and components reach it as Console::regex_match().
class PatternMatcher {
 public:
  explicit PatternMatcher(Console& console) : console_(console) {}

  // The first part of `text` (UTF-8) that the regular expression of `entry` ("REGEX[...]") matches. Empty if
  // nothing matches, if the entry is not a regular expression, or if the match itself is empty. Case is
  // ignored. Never throws; a missing component, a malformed expression and a search that reached the
  // component's limits are recorded as failed reads.
  std::string regex_match(std::string_view entry, std::string_view text);

 private:
  Console& console_;
  std::shared_ptr<RegExp> regexp_;
};

}  // namespace zrl
