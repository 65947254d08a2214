#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Blanks, case, numbers and lines of texts. Texts are UTF-8, but case and blanks are those of ASCII, which is
// what list entries, option keys and host names need; no locale has an influence. Nothing here raises an
// error. Views that are returned point into the argument.
namespace zrl {

// Without blanks (space, tab, carriage return, line feed) at both ends.
std::string_view trim(std::string_view text);

// With A to Z replaced by a to z.
std::string lower(std::string_view text);
// With a to z replaced by A to Z.
std::string upper(std::string_view text);

// Equal, A to Z and a to z being the same.
bool equals_ignoring_case(std::string_view left, std::string_view right);

// The whole of `text`, trimmed, as a decimal number with an optional sign; nothing if it is not one or does
// not fit into 64 bits. A value stored with a fraction of zeros ("1.0") counts as its whole number.
std::optional<std::int64_t> to_number(std::string_view text);

// Removes the first line from `text` and returns it without its end, a line feed with or without a carriage
// return before it. The last line needs no line end. To be called until `text` is empty.
std::string_view take_line(std::string_view& text);

}  // namespace zrl
