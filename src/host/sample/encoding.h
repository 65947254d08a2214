#pragma once

#include <string>
#include <string_view>

// What mails and scripts are written with. Texts given are valid UTF-8 below U+10000.
namespace zrl::sample {

// In one of the sets ISO-8859-1, ISO-8859-15 and windows-1251; what it lacks becomes "?".
std::string single_byte(std::string_view text, std::string_view charset);

// `width` characters a line, lines ended by CR LF.
std::string base64(std::string_view bytes, std::size_t width = 76);

// For text bodies: lines end with CR LF and stay below 76 characters through soft breaks.
std::string quoted_printable(std::string_view bytes);

// "=?charset?B?...?=" with `kind` B or Q.
std::string encoded_word(std::string_view charset, char kind, std::string_view bytes);

}  // namespace zrl::sample
