#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// UTF-8 (RFC 3629): checking, repairing, cutting, and its characters one by one. Overlong forms, surrogates
// and values beyond U+10FFFF are not well-formed. Each byte that belongs to no well-formed character counts
// as one character, U+FFFD. Limits and lengths are in bytes. Nothing here raises an error, and views that
// are returned point into the argument.
namespace zrl {

// U+FFFD, which stands for what could not be read.
inline constexpr std::string_view replacement_character = "\xEF\xBF\xBD";
// U+FEFF, with which some programs begin a file.
inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

// Whether the byte has the form of the second or a later byte of a character.
constexpr bool is_continuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// The bytes of the well-formed character at the start of `text`, which must not be empty; 0 if none is there.
std::size_t character_length(std::string_view text);

// Removes the first character from `text`, which must not be empty, and returns it; U+FFFD for a single byte
// that belongs to none.
char32_t take_character(std::string_view& text);

// Appends U+FFFD in place of a surrogate or a value beyond U+10FFFF.
void append_character(std::string& to, char32_t character);

bool is_valid_utf8(std::string_view text);

// `text` with U+FFFD for every byte that belongs to no well-formed character.
std::string valid_utf8(std::string_view text);

// The longest beginning of `text` that fits into `limit` bytes and does not end within a character.
std::string_view cut_between_characters(std::string_view text, std::size_t limit);

// The same, repaired as by valid_utf8(). It may have up to three times `limit` bytes, because a byte that is
// replaced grows to three.
std::string beginning_of(std::string_view text, std::size_t limit);

// The characters of well-formed text. Of other text, the number of bytes that are no continuation.
std::size_t character_count(std::string_view text);

}  // namespace zrl
