#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zrl {

// One match. Offsets and lengths count the units of the text that was searched: bytes of a UTF-8
// text, 16-bit units of a UTF-16 text. A group that took no part in the match has the offset `npos`
// and the length 0.
struct RegExpMatch {
  struct Span {
    std::size_t offset;
    std::size_t length;
  };

  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  Span whole;
  std::vector<Span> groups;  // the first group is at index 0
};

// A regular expression in the dialect of scripts: the syntax of ECMAScript 3 with lazy quantifiers,
// look-ahead, back references, \x and \u. A reference to a group that took no part in the match matches
// the empty text. "\w", "\d", "\s" and "\b" are those of ASCII; "$" matches only at the very end unless
// `multiline` is set.
//
// Patterns and texts may come from strangers. Neither can hang or crash the caller: a search that
// exceeds the component's limits ends as "no match", and limit_reached() is true. An object belongs to
// the thread that made it; searching does not serve the event loop.
class RegExp {
 public:
  static constexpr std::string_view program_id = "VBScript.RegExp";

  struct Options {
    bool ignore_case = false;
    bool multiline = false;

    bool operator==(const Options&) const = default;
  };

  virtual ~RegExp() = default;

  // The pattern of the searches that follow. Raises zrl::Error with a number from 5017 to 5021 and
  // its text if it is malformed; then the object has no pattern, and searching raises 5016. The most
  // recently used compiled patterns are cached, so setting one of them again is cheap. The pattern is
  // copied. Either kind of pattern serves both kinds of texts.
  virtual void set_pattern(std::string_view utf8_pattern, Options options) = 0;
  virtual void set_pattern(std::u16string_view pattern, Options options) = 0;

  // Finds the first match at or after `from`; error 5 is raised if that exceeds the length of the text.
  // `match` is changed only if the result is true; reusing it saves allocations. Texts need not be
  // well-formed: in UTF-8 a byte that belongs to no character matches nothing; in UTF-16 every unit is a
  // character by itself.
  virtual bool find(std::string_view utf8_text, std::size_t from, RegExpMatch& match) = 0;
  virtual bool find(std::u16string_view text, std::size_t from, RegExpMatch& match) = 0;

  // Whether the last search ended because of a limit, so that "no match" is not certain.
  virtual bool limit_reached() const = 0;
};

}  // namespace zrl
