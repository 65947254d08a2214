#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Small text routines. All texts are UTF-8; case and blanks are those of ASCII, because entries,
// option keys and host names are.
namespace zrl {

// Without blanks (space, tab, carriage return, line feed) at both ends.
std::string_view trim(std::string_view text);

// With A to Z replaced by a to z.
std::string lower(std::string_view text);
// The other way.
std::string upper(std::string_view text);

// Equal, A to Z and a to z being the same.
bool equals_ignoring_case(std::string_view left, std::string_view right);

// The whole of `text`, trimmed, as a decimal number with an optional sign; empty if it is none or
// does not fit. A value stored with a fraction of zeros ("1.0") counts as its whole number.
std::optional<std::int64_t> to_number(std::string_view text);

// `text` with every byte sequence that is not well-formed UTF-8 (RFC 3629) replaced by U+FFFD.
std::string valid_utf8(std::string_view text);
bool is_valid_utf8(std::string_view text);
// The same of at most `limit` bytes of `text`; a character that is cut in two is dropped.
std::string beginning_of(std::string_view text, std::size_t limit);

// `text` for a terminal: control characters (C0, DEL, C1), those that turn the direction of
// writing, and bytes that are not UTF-8 are written as \xNN, so that no text can move the cursor or
// pass for another; line feed and tab stay if `keep_lines`.
std::string printable(std::string_view text, bool keep_lines = false);

}  // namespace zrl
