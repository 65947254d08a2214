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

  // What a macro letter, lower case, stands for.
  using Values = std::function<std::string(char letter)>;
  std::string expand(const Values& value) const;
  // The same without a dot at the end and, where it became longer than a name may be, without as many
  // labels at its beginning as are too many.
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
