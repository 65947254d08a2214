#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 (RFC 3629): checking, repairing, cutting, and its characters one by one. Overlong forms, surrogates
// and what lies beyond U+10FFFF are not well-formed. Where bytes are not, each of them counts as one
// character, U+FFFD. Nothing here raises an error.
namespace zrl {

// U+FFFD, which stands for what could not be read.
inline constexpr std::string_view replacement_character = "\xEF\xBF\xBD";
// U+FEFF, with which some programs begin a file.
inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// Whether the byte lies within a character and does not begin one.
constexpr bool is_continuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The bytes of the well-formed character at the start of `text`, which must not be empty; 0 if none is there.
std::size_t character_length(std::string_view text);

// Takes the first character off `text`, which must not be empty.
char32_t take_character(std::string_view& text);

// U+FFFD for a surrogate and for what is beyond U+10FFFF.
void append_character(std::string& to, char32_t character);

bool is_valid_utf8(std::string_view text);

// `text` with U+FFFD for every byte that belongs to no well-formed character.
std::string valid_utf8(std::string_view text);

// As much of the beginning of `text` as fits into `limit` bytes and does not end within a character.
std::string_view cut_between_characters(std::string_view text, std::size_t limit);

// The same, well-formed. It may have up to three times `limit` bytes, where bytes are replaced.
std::string beginning_of(std::string_view text, std::size_t limit);

// Of well-formed text; elsewhere, the bytes that do not continue a character.
std::size_t character_count(std::string_view text);

// `text` with "?" for each character beyond US-ASCII and for each byte that belongs to none.
std::string to_us_ascii(std::string_view text);

}  // namespace zrl
