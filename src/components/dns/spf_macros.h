#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::dns {

// Text with macros (RFC 7208, section 7): "%{ir}.%{v}._spf.%{d2}".
class MacroString {
 public:
  enum class Use {
    domain,       // a domain-spec: ends in a top label or a macro, no blanks
    modifier,     // the value of an unknown modifier
    explanation,  // may hold blanks and the letters c, r and t
  };

  // Nothing if the text breaks the grammar.
  static std::optional<MacroString> parse(std::string_view text, Use use);

  // Yields the value of a macro letter, which is given in lower case. It may raise, which expansion passes
  // on.
  using Values = std::function<std::string(char letter)>;
  std::string expand(const Values& value) const;
  // The expansion as a DNS name: without a trailing dot, and shortened at its beginning by whole labels to
  // the longest length of a name (RFC 7208, section 7.3).
  std::string expand_to_name(const Values& value) const;

  // As it was written.
  const std::string& text() const { return text_; }

 private:
  // A macro, or literal text where `letter` is 0.
  struct Part {
    char letter = 0;
    std::string literal;
    bool escapes = false;  // the letter was written as a capital
    std::size_t keeps = 0;
    bool reverses = false;
    std::string delimiters;
  };
  class Parser;

  static std::string transformed(const std::string& value, const Part& part);

  std::string text_;
  std::vector<Part> parts_;
};

}  // namespace zrl::dns
