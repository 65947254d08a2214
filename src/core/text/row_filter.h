#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What people type to filter a table:
//
//   filter = [ term { blanks term } ]            all terms must hold
//   term   = [ field ":" ] value                 without a field: any text of the row contains the value
//   field  = one of the words that the table has, the case of A to Z ignored
//   value  = word | quoted
//   word   = characters other than blanks and quotes; the first is no colon
//   quoted = '"' { any character but '"', or '""' for one } '"'
//
// A word before a colon that is none of the table's fields is a fault, so that a slip is not taken for a text
// that nothing contains; in quotes it is a text. An IPv6 address is a word, because its first colon follows a
// hexadecimal number or another colon. The parser knows nothing of databases; its caller gives the terms to
// statements as values.
namespace zrl {

struct FilterTerm {
  std::string_view field;  // of the fields that were given; empty: none
  std::string value;       // never empty, unless it stood in quotes behind a field
  std::size_t column = 1;  // where the term begins, from 1, in characters

  bool operator==(const FilterTerm&) const = default;
};

// Why a filter means nothing, and where, from 1, in characters. The text is English and has "%1" in the place
// of what `detail` holds.
struct FilterFault {
  std::size_t column = 1;
  std::string_view text;
  std::string detail;
};

inline constexpr std::size_t most_filter_terms = 8;
inline constexpr std::size_t longest_filter_value = 500;  // bytes

// `fields` are lower case and must outlive the result. Any bytes may come; raises nothing.
std::variant<std::vector<FilterTerm>, FilterFault> parse_filter(std::string_view text,
                                                                std::span<const std::string_view> fields);

// The value as a pattern for LIKE, with "!" as its escape character, without anything around it. An
// apostrophe and a zero byte, which no statement holds, stand for any one character.
std::string like_pattern(std::string_view value);

// What a filter says for this value of this field: the value in quotes if it needs them.
std::string filter_term(std::string_view field, std::string_view value);

}  // namespace zrl
