#include "core/text/script_content.h"

#include <cstdint>

#include "core/text/text.h"

namespace zrl {

namespace {

// Takes one character off well-formed UTF-8.
std::uint32_t take_character(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text[0]);
  std::size_t length = 1;
  std::uint32_t character = first;
  if (first >= 0xF0) {
    length = 4;
    character = first & 0x07U;
  } else if (first >= 0xE0) {
    length = 3;
    character = first & 0x0FU;
  } else if (first >= 0xC0) {
    length = 2;
    character = first & 0x1FU;
  }
  for (std::size_t i = 1; i < length; ++i) {
    character = character << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  text.remove_prefix(length);
  return character;
}

void append_unit(std::string& to, std::uint32_t unit) {
  to += static_cast<char>(unit & 0xFF);
  to += static_cast<char>(unit >> 8 & 0xFF);
}

void append_character(std::string& to, std::uint32_t character) {
  const auto append = [&](std::uint32_t byte) { to += static_cast<char>(byte); };
  const auto append_rest = [&](int shift) { append(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) return append(character);
  if (character < 0x800) {
    append(0xC0 | character >> 6);
  } else {
    if (character < 0x10000) {
      append(0xE0 | character >> 12);
    } else {
      append(0xF0 | character >> 18);
      append_rest(12);
    }
    append_rest(6);
  }
  append_rest(0);
}

constexpr std::uint32_t replacement = 0xFFFD;

bool is_high_half(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool is_low_half(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

std::string to_script_content(std::string_view text) {
  const std::string repaired = valid_utf8(text);
  std::string result;
  result.reserve(2 * repaired.size());
  for (std::string_view rest = repaired; !rest.empty();) {
    std::uint32_t character = take_character(rest);
    if (character >= 0x10000) {
      character -= 0x10000;
      append_unit(result, 0xD800 + (character >> 10));
      character = 0xDC00 + (character & 0x3FF);
    }
    append_unit(result, character);
  }
  return result;
}

std::string from_script_content(std::string_view bytes) {
  const std::size_t units = bytes.size() / 2;
  const auto unit_at = [&](std::size_t i) {
    const auto low = static_cast<unsigned char>(bytes[2 * i]);
    const auto high = static_cast<unsigned char>(bytes[2 * i + 1]);
    return std::uint32_t{low} | std::uint32_t{high} << 8;
  };
  std::string result;
  result.reserve(units + 1);
  for (std::size_t i = 0; i < units; ++i) {
    std::uint32_t character = unit_at(i);
    if (is_high_half(character) && i + 1 < units && is_low_half(unit_at(i + 1))) {
      character = 0x10000 + ((character - 0xD800) << 10) + (unit_at(++i) - 0xDC00);
    } else if (is_high_half(character) || is_low_half(character)) {
      character = replacement;
    }
    append_character(result, character);
  }
  if (bytes.size() % 2 != 0) append_character(result, replacement);
  return result;
}

}  // namespace zrl
