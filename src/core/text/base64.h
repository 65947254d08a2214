#pragma once

#include <string>
#include <string_view>

// Base64 with the standard alphabet and padding (RFC 4648, section 4).
namespace zrl {

// One line, whatever its length.
std::string base64_encode(std::string_view bytes);

// Raises no error. Line breaks, blanks and any other byte outside the alphabet are skipped, as MIME demands
// (RFC 2045, section 6.8). Padding may be missing; what follows it is decoded as a further text. A single
// character that is left over yields nothing. The result may hold any bytes.
std::string base64_decode(std::string_view text);

}  // namespace zrl
