#include "core/script_content.h"

#include <cstdint>

#include "core/text.h"

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

}  // namespace zrl
