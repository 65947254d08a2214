#include "core/text/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zrl {

namespace {

constexpr std::size_t most_continuations = 3;

// The bytes at the start of the text that are ASCII, but for up to seven that come last.
std::size_t ascii_words(std::string_view text) {
  constexpr std::uint64_t high_bits = 0x8080808080808080U;
  std::size_t size = 0;
  for (std::uint64_t word = 0; size + sizeof word <= text.size(); size += sizeof word) {
    std::memcpy(&word, text.data() + size, sizeof word);
    if ((word & high_bits) != 0) break;
  }
  return size;
}

// The bytes at the start of the text that are well-formed.
std::size_t valid_length(std::string_view text) {
  std::size_t size = ascii_words(text);
  while (size < text.size()) {
    const std::size_t length = character_length(text.substr(size));
    if (length == 0) break;
    size += length;
    if (length == 1) size += ascii_words(text.substr(size));
  }
  return size;
}

}  // namespace

std::size_t character_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (first >= 0xC2 && first <= 0xDF) {
    length = 2;
  } else if (first >= 0xE0 && first <= 0xEF) {
    length = 3;
    if (first == 0xE0) low = 0xA0;
    if (first == 0xED) high = 0x9F;
  } else if (first >= 0xF0 && first <= 0xF4) {
    length = 4;
    if (first == 0xF0) low = 0x90;
    if (first == 0xF4) high = 0x8F;
  }
  if (length == 0 || text.size() < length || byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (!is_continuation(text[i])) return 0;
  }
  return length;
}

char32_t take_character(std::string_view& text) {
  const auto bits = [&](std::size_t i, unsigned mask) {
    return static_cast<char32_t>(static_cast<unsigned char>(text[i]) & mask);
  };
  const std::size_t length = character_length(text);
  char32_t character = 0xFFFD;
  if (length == 1) {
    character = bits(0, 0x7F);
  } else if (length > 1) {
    character = bits(0, 0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) character = character << 6 | bits(i, 0x3F);
  }
  text.remove_prefix(std::max<std::size_t>(length, 1));
  return character;
}

void append_character(std::string& to, char32_t character) {
  const auto put = [&](char32_t byte) { to += static_cast<char>(byte); };
  const auto put_rest = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) return put(character);
  if (character < 0x800) {
    put(0xC0 | character >> 6);
  } else if ((character >= 0xD800 && character <= 0xDFFF) || character > 0x10FFFF) {
    to += replacement_character;
    return;
  } else {
    if (character < 0x10000) {
      put(0xE0 | character >> 12);
    } else {
      put(0xF0 | character >> 18);
      put_rest(12);
    }
    put_rest(6);
  }
  put_rest(0);
}

bool is_valid_utf8(std::string_view text) {
  return valid_length(text) == text.size();
}

std::string valid_utf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (true) {
    const std::size_t length = valid_length(text);
    result += text.substr(0, length);
    if (length == text.size()) return result;
    result += replacement_character;
    text.remove_prefix(length + 1);
  }
}

std::string_view cut_between_characters(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  std::size_t end = limit;
  while (end > 0 && limit - end < most_continuations && is_continuation(text[end])) --end;
  // More of them belong to no character.
  return text.substr(0, is_continuation(text[end]) ? limit : end);
}

std::string beginning_of(std::string_view text, std::size_t limit) {
  return valid_utf8(cut_between_characters(text, limit));
}

std::size_t character_count(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return !is_continuation(c); }));
}

}  // namespace zrl
