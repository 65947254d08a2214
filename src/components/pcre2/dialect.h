#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// From the dialect of script writers to the syntax of PCRE2.
namespace zrl::pcre2 {

// What the translated pattern is compiled for.
struct DialectTarget {
  bool units16;  // every 16-bit unit is a character, surrogates too; else characters of Unicode
  bool folding;  // case is ignored by Unicode properties, which then would widen \w, \d, \s and \b
  bool multiline;
};

// An upper bound of what a search may run through between two steps that PCRE2 counts.
struct PatternCost {
  std::size_t bounded = 64;   // units, by all items whose quantifier has an end
  std::size_t unbounded = 0;  // items that may run to the end of the text
  bool branches = false;      // several of them may start at the same place
  bool loops = false;         // they are repeated by a quantifier around them
};

struct DialectPattern {
  std::string text;  // ASCII
  PatternCost cost;
  bool starts_ahead = false;  // a match may begin with a positive look-ahead
};

// `pattern` holds 16-bit units or characters, depending on the target. Syntax that PCRE2 has beyond the
// dialect is a literal or an error here. Raises zrl::Error (5017 to 5021) if the pattern is malformed.
DialectPattern translate_pattern(std::u32string_view pattern, DialectTarget target);

// Whether a pattern that ignores case needs the Unicode properties: it names characters beyond
// ASCII, or refers back to text that may hold them.
bool needs_folding(std::u32string_view pattern);

}  // namespace zrl::pcre2
