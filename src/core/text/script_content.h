#pragma once

#include <string>
#include <string_view>

namespace zrl {

// The bytes that the column `scriptcontent` of the table `scriptengine` keeps of a script: 16-bit
// units, low byte first (UTF-16, RFC 2781). Bytes of `text` that are not UTF-8 become U+FFFD.
std::string to_script_content(std::string_view text);

// The way back: UTF-8. Halves of surrogate pairs, and a last byte without its other half, become U+FFFD.
std::string from_script_content(std::string_view bytes);

}  // namespace zrl
