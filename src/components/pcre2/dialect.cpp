#include "components/pcre2/dialect.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/text/error.h"
#include "core/text/utf16.h"

namespace zrl::pcre2 {

namespace {

constexpr int syntax_error = 5017;
constexpr int unexpected_quantifier = 5018;
constexpr int expected_bracket = 5019;
constexpr int expected_parenthesis = 5020;
constexpr int invalid_range = 5021;

[[noreturn]] void fail(int number) {
  switch (number) {
    case unexpected_quantifier:
      throw Error(number, "Unexpected quantifier");
    case expected_bracket:
      throw Error(number, "Expected ']' in regular expression");
    case expected_parenthesis:
      throw Error(number, "Expected ')' in regular expression");
    case invalid_range:
      throw Error(number, "Invalid range in character set");
    default:
      throw Error(number, "Syntax error in regular expression");
  }
}

constexpr std::uint32_t greatest_count = 65535;  // of PCRE2's quantifiers
constexpr std::uint32_t beyond_count = 100'000;  // counts as unbounded

// Folding a range costs time for each of its characters; a pattern of nothing but wide ranges would
// take minutes.
constexpr std::uint64_t greatest_folded_ranges = 8'000'000;

constexpr std::string_view word_set = "0-9A-Za-z_";

bool is_digit(char32_t c) {
  return c >= '0' && c <= '9';
}
bool is_octal(char32_t c) {
  return c >= '0' && c <= '7';
}
bool is_letter(char32_t c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool is_surrogate(char32_t c) {
  return is_high_surrogate(c) || is_low_surrogate(c);
}

std::optional<char32_t> hex_value(char32_t c) {
  if (is_digit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return std::nullopt;
}

// Whether a quantifier of one character comes next.
bool is_mark(std::u32string_view rest) {
  return !rest.empty() && (rest.front() == '*' || rest.front() == '+' || rest.front() == '?');
}

// The capturing groups of the whole pattern; a reference may stand before its group.
std::size_t count_groups(std::u32string_view pattern) {
  std::size_t groups = 0;
  bool in_class = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char32_t c = pattern[i];
    if (c == '\\') {
      ++i;
    } else if (in_class) {
      in_class = c != ']';
    } else if (c == '[') {
      in_class = true;
    } else if (c == '(' && (i + 1 == pattern.size() || pattern[i + 1] != '?')) {
      ++groups;
    }
  }
  return groups;
}

class Translator {
 public:
  Translator(std::u32string_view pattern, DialectTarget target)
      : rest_(pattern), target_(target), groups_(count_groups(pattern)) {}

  DialectPattern run() {
    while (!rest_.empty()) term();
    if (!open_groups_.empty()) fail(expected_parenthesis);
    return {std::move(out_), cost_, starts_ahead_};
  }

 private:
  struct ClassItem {
    bool is_set;  // \d, \w, ...
    char32_t c;   // the character, or the letter of the set
  };
  struct Group {
    bool repeats;  // something in it is repeated
    bool asserts;  // it takes no part in a match
    bool was_at_start;
  };
  struct Counts {
    std::uint32_t least;
    std::uint32_t most;
    std::size_t length;  // in the pattern
  };

  char32_t next() {
    const char32_t c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }
  bool take(char32_t wanted) {
    if (rest_.empty() || rest_.front() != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }

  void term();
  void open_group();
  void close_group();
  bool is_quantified() const;
  bool quantify(std::string_view behind = {});
  void mark_repeated();
  void put_counts(const Counts& range);
  std::optional<Counts> counts() const;
  void character(char32_t c);
  void put(char32_t c);
  void escape();
  bool back_reference();
  void set_outside(char32_t letter);
  void boundary(bool wanted);
  std::optional<char32_t> octal();
  std::optional<char32_t> hex(std::size_t digits);
  char32_t escaped_character();
  char32_t unicode_escape();
  void character_class();
  ClassItem class_item();
  void put_item(ClassItem item);
  void put_range(char32_t first, char32_t last);
  void put_folded_set(char32_t letter);

  std::u32string_view rest_;
  DialectTarget target_;
  std::size_t groups_;
  std::uint64_t folded_ = 0;
  PatternCost cost_;
  bool at_start_ = true;  // nothing before this place takes part in a match
  bool starts_ahead_ = false;
  std::vector<Group> open_groups_;
  std::string out_;
};

void Translator::term() {
  if (counts()) fail(unexpected_quantifier);
  const char32_t c = next();
  switch (c) {
    case '(':
      return open_group();
    case ')':
      return close_group();
    case '|':
      out_ += '|';
      cost_.branches = true;
      at_start_ = true;
      return;
    case '^':
      out_ += target_.multiline ? R"((?:^|(?<=\r)))" : "^";
      return;
    case '$':
      out_ += target_.multiline ? R"((?:$|(?=\r)))" : "\\z";
      return;
    case '.':
      at_start_ = false;
      out_ += '.';
      quantify();
      return;
    case '[':
      return character_class();
    case '\\':
      return escape();
    case '*':
    case '+':
    case '?':
      fail(unexpected_quantifier);
    default:
      return character(c);
  }
}

void Translator::open_group() {
  open_groups_.push_back({.repeats = false, .asserts = false, .was_at_start = at_start_});
  out_ += '(';
  if (!take('?')) return;
  if (rest_.empty()) fail(syntax_error);
  const char32_t kind = next();
  if (kind != ':' && kind != '=' && kind != '!') fail(syntax_error);
  if (kind != ':') cost_.branches = true;
  if (kind == '=' && at_start_) starts_ahead_ = true;
  open_groups_.back().asserts = kind != ':';
  out_ += '?';
  out_ += static_cast<char>(kind);
}

void Translator::close_group() {
  if (open_groups_.empty()) fail(syntax_error);
  const bool repeats_inside = open_groups_.back().repeats;
  if (open_groups_.back().asserts) at_start_ = open_groups_.back().was_at_start;
  open_groups_.pop_back();
  out_ += ')';
  if (repeats_inside) mark_repeated();
  if (quantify() && repeats_inside) cost_.loops = true;
}

bool Translator::is_quantified() const {
  return is_mark(rest_) || counts();
}

// The quantifier that follows, if one does, and then what restores the options of the pattern. True if
// the item may be repeated.
bool Translator::quantify(std::string_view behind) {
  bool found = true;
  std::uint32_t most = 1;
  if (is_mark(rest_)) {
    most = rest_.front() == '?' ? 1 : beyond_count;
    out_ += static_cast<char>(next());
  } else if (const std::optional<Counts> range = counts()) {
    put_counts(*range);
    most = range->most;
    rest_.remove_prefix(range->length);
  } else {
    found = false;
  }
  if (found && take('?')) out_ += '?';
  out_ += behind;
  if (most <= 1) return false;
  if (most > greatest_count) {
    ++cost_.unbounded;
  } else {
    cost_.bounded += std::size_t{4} * most;  // bytes of a character
  }
  mark_repeated();
  return true;
}

void Translator::mark_repeated() {
  if (!open_groups_.empty()) open_groups_.back().repeats = true;
}

void Translator::put_counts(const Counts& range) {
  if (range.least > greatest_count || range.most < range.least) fail(syntax_error);
  out_ += '{' + std::to_string(range.least);
  if (range.most > greatest_count) {
    out_ += ',';
  } else if (range.most != range.least) {
    out_ += ',' + std::to_string(range.most);
  }
  out_ += '}';
}

// A quantifier in braces, if one follows; other braces are literals.
std::optional<Translator::Counts> Translator::counts() const {
  if (rest_.empty() || rest_.front() != '{') return std::nullopt;
  std::size_t at = 1;
  const auto number = [&](std::uint32_t& result) {
    const std::size_t start = at;
    std::uint32_t value = 0;
    for (; at < rest_.size() && is_digit(rest_[at]); ++at) {
      value = std::min(value * 10 + static_cast<std::uint32_t>(rest_[at] - '0'), beyond_count);
    }
    if (at > start) result = value;
    return at > start;
  };
  Counts result{};
  if (!number(result.least)) return std::nullopt;
  result.most = result.least;
  if (at < rest_.size() && rest_[at] == ',') {
    ++at;
    if (!number(result.most)) result.most = beyond_count;
  }
  if (at == rest_.size() || rest_[at] != '}') return std::nullopt;
  result.length = at + 1;
  return result;
}

void Translator::character(char32_t c) {
  at_start_ = false;
  // Half a surrogate pair never occurs in well-formed text.
  if (is_surrogate(c) && !target_.units16) {
    out_ += "[]";
  } else {
    put(c);
  }
  quantify();
}

// Writes a literal character, inside or outside of a class.
void Translator::put(char32_t c) {
  if (is_digit(c) || is_letter(c) || c == '_') {
    out_ += static_cast<char>(c);
  } else if (c >= ' ' && c < 0x7F) {
    out_ += '\\';
    out_ += static_cast<char>(c);
  } else {
    char digits[8];
    const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<std::uint32_t>(c), 16).ptr;
    out_ += "\\x{";
    out_.append(digits, end);
    out_ += '}';
  }
}

void Translator::escape() {
  if (rest_.empty()) fail(syntax_error);
  switch (rest_.front()) {
    case 'b':
    case 'B':
      return boundary(next() == 'b');
    case 'd':
    case 'D':
    case 'w':
    case 'W':
    case 's':
    case 'S':
      return set_outside(next());
    default:
      if (!back_reference()) character(escaped_character());
  }
}

// The longest number that is one of a group is a reference; what is left of the digits is text. PCRE2's
// compiled code lets "\1+" fail if the group took no part, and "(?:\1)+" not.
bool Translator::back_reference() {
  std::size_t group = 0;
  std::size_t best = 0;
  std::size_t length = 0;
  if (rest_.front() == '0') return false;
  for (std::size_t at = 0; at < rest_.size() && is_digit(rest_[at]); ++at) {
    group = group * 10 + (rest_[at] - '0');
    if (group > groups_) break;
    best = group;
    length = at + 1;
  }
  if (length == 0) return false;
  rest_.remove_prefix(length);
  ++cost_.unbounded;
  mark_repeated();
  at_start_ = false;
  const std::string reference = "\\g{" + std::to_string(best) + '}';
  out_ += is_quantified() ? "(?:" + reference + ')' : reference;
  quantify();
  return true;
}

void Translator::set_outside(char32_t letter) {
  at_start_ = false;
  if (!target_.folding) {
    out_ += '\\';
    out_ += static_cast<char>(letter);
    quantify();
    return;
  }
  const bool negated = letter < 'a';
  const char32_t kind = negated ? letter + ('a' - 'A') : letter;
  out_ += negated ? "(?-i)[^" : "(?-i)[";
  put_folded_set(kind);
  out_ += ']';
  quantify("(?i)");
}

void Translator::boundary(bool wanted) {
  if (!target_.folding) {
    out_ += wanted ? "\\b" : "\\B";
    return;
  }
  const std::string word = '[' + std::string(word_set) + ']';
  const char* same = wanted ? "(?!" : "(?=";
  const char* other = wanted ? "(?=" : "(?!";
  out_ += "(?-i)(?:(?<=" + word + ')' + same + word + ")|(?<!" + word + ')' + other + word + "))(?i)";
}

std::optional<char32_t> Translator::octal() {
  char32_t value = 0;
  std::size_t at = 0;
  while (at < 3 && at < rest_.size() && is_octal(rest_[at]) && value * 8 + (rest_[at] - '0') <= 0xFF) {
    value = value * 8 + (rest_[at] - '0');
    ++at;
  }
  if (at == 0) return std::nullopt;
  rest_.remove_prefix(at);
  return value;
}

std::optional<char32_t> Translator::hex(std::size_t digits) {
  if (rest_.size() < digits) return std::nullopt;
  char32_t value = 0;
  for (const char32_t c : rest_.substr(0, digits)) {
    const std::optional<char32_t> digit = hex_value(c);
    if (!digit) return std::nullopt;
    value = value * 16 + *digit;
  }
  rest_.remove_prefix(digits);
  return value;
}

// The character after a backslash that begins neither a set, an assertion nor a reference. Letters without a
// meaning are literals.
char32_t Translator::escaped_character() {
  if (const std::optional<char32_t> value = octal()) return *value;
  const char32_t c = next();
  switch (c) {
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'v':
      return '\v';
    case 'c':
      return !rest_.empty() && is_letter(rest_.front()) ? next() & 0x1F : c;
    case 'x':
      return hex(2).value_or(c);
    case 'u':
      return unicode_escape();
    default:
      return c;
  }
}

char32_t Translator::unicode_escape() {
  const std::optional<char32_t> first = hex(4);
  if (!first) return 'u';
  if (target_.units16 || !is_high_surrogate(*first)) return *first;
  const std::u32string_view before = rest_;
  if (take('\\') && take('u')) {
    const std::optional<char32_t> second = hex(4);
    if (second && is_low_surrogate(*second)) return character_of_pair(*first, *second);
  }
  rest_ = before;
  return *first;
}

void Translator::character_class() {
  at_start_ = false;
  out_ += '[';
  if (take('^')) out_ += '^';
  while (!take(']')) {
    const ClassItem item = class_item();
    const bool range = rest_.size() >= 2 && rest_[0] == '-' && rest_[1] != ']';
    if (!range) {
      put_item(item);
      continue;
    }
    next();
    const ClassItem last = class_item();
    if (item.is_set || last.is_set) {
      put_item(item);
      put('-');
      put_item(last);
    } else {
      put_range(item.c, last.c);
    }
  }
  out_ += ']';
  quantify();
}

Translator::ClassItem Translator::class_item() {
  if (rest_.empty()) fail(expected_bracket);
  if (!take('\\')) return {false, next()};
  if (rest_.empty()) fail(expected_bracket);
  constexpr std::u32string_view sets = U"dDwWsS";
  if (sets.find(rest_.front()) != sets.npos) return {true, next()};
  if (take('b')) return {false, '\b'};
  return {false, escaped_character()};
}

void Translator::put_item(ClassItem item) {
  if (!item.is_set) {
    put_range(item.c, item.c);
  } else if (target_.folding) {
    put_folded_set(item.c);
  } else {
    out_ += '\\';
    out_ += static_cast<char>(item.c);
  }
}

void Translator::put_range(char32_t first, char32_t last) {
  if (last < first) fail(invalid_range);
  if (!target_.units16) {  // PCRE2 refuses halves of pairs
    if (is_surrogate(first)) first = 0xE000;
    if (is_surrogate(last)) last = 0xD7FF;
    if (last < first) return;
  }
  folded_ += last - first;
  if (folded_ > greatest_folded_ranges) fail(syntax_error);
  put(first);
  if (last == first) return;
  out_ += '-';
  put(last);
}

// The sets of ASCII, spelled out. Under folding LONG S and KELVIN SIGN are the same letters as "s" and
// "k", so that the complement of the word characters must not name them.
void Translator::put_folded_set(char32_t letter) {
  const bool negated = letter < 'a';
  if (negated) folded_ += 0x10000;
  if (folded_ > greatest_folded_ranges) fail(syntax_error);
  switch (letter) {
    case 'd':
      out_ += "0-9";
      return;
    case 'D':
      out_ += R"(\x00-\/:-\x{ffff})";
      return;
    case 's':
      out_ += R"(\x09-\x0d\x20)";
      return;
    case 'S':
      out_ += R"(\x00-\x08\x0e-\x1f!-\x{ffff})";
      return;
    case 'w':
      out_ += word_set;
      return;
    default:
      out_ += R"(\x00-\/:-@\[-\^`{-\x{17e}\x{180}-\x{2129}\x{212b}-\x{ffff})";
  }
}

}  // namespace

DialectPattern translate_pattern(std::u32string_view pattern, DialectTarget target) {
  return Translator(pattern, target).run();
}

bool needs_folding(std::u32string_view pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] > 0x7F) return true;
    if (pattern[i] != '\\' || i + 1 == pattern.size()) continue;
    const char32_t escaped = pattern[++i];
    if (escaped == 'x' || escaped == 'u' || is_digit(escaped)) return true;
  }
  return false;
}

}  // namespace zrl::pcre2
