#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Whether a character shows nothing of its own, but may change what is shown, or how it is read: the Unicode
// general categories Cc, Cf, Cs, Zl and Zp (controls, bidirectional marks, zero-width characters, tags, line
// and paragraph separators), the default-ignorable characters (fillers, variation selectors) and the
// noncharacters (U+FDD0 to U+FDEF, the last two of each plane). Blanks are not among them.
bool is_unseen(char32_t character);

// `text`, which should be UTF-8, for a terminal or a log: the bytes of unseen characters, and those that are
// not UTF-8, are written as \xNN (of U+0080 to U+009F only the second byte), so that no text can move the
// cursor or hide a part of itself. Line feed and tab stay if `keep_lines`. The result is well-formed UTF-8 of
// at most four times the bytes. A backslash in `text` stays as it is, so the result cannot be decoded.
std::string printable(std::string_view text, bool keep_lines = false);

}  // namespace zrl
