#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Blanks, case, numbers and lines of texts. All texts are UTF-8; case and blanks are those of ASCII, because
// entries, option keys and host names are.
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

// Takes the first line off the text and returns it without its end, a line feed with or without a carriage
// return before it. The last line needs none.
std::string_view take_line(std::string_view& text);

}  // namespace zrl
