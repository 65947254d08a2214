#pragma once

#include <string>
#include <string_view>

// UTF-16 (RFC 2781), the encoding of scripts: as units in memory, and as the bytes of the column
// `scriptcontent` of the table `scriptengine`, low byte first (UTF-16LE) and without a byte-order mark. What
// cannot be read becomes U+FFFD: each byte that is not UTF-8, each half of a surrogate pair without its other
// half, and an odd last byte. Well-formed text survives a round trip. Nothing here raises an error.
namespace zrl {

constexpr bool is_high_surrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool is_low_surrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The character of a surrogate pair, which the two predicates above must have accepted.
constexpr char32_t character_of_pair(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

// Units in the byte order of the machine.
std::u16string to_utf16(std::string_view utf8);
std::string to_utf8(std::u16string_view units);

// The bytes as they are stored, and back to UTF-8.
std::string to_utf16_bytes(std::string_view utf8);
std::string from_utf16_bytes(std::string_view bytes);

}  // namespace zrl
