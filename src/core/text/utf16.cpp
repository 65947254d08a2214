#include "core/text/utf16.h"

#include <algorithm>
#include <cstddef>

#include "core/text/utf8.h"

namespace zrl {

std::u16string to_utf16(std::string_view utf8) {
  std::u16string result;
  result.reserve(utf8.size());
  while (!utf8.empty()) {
    const auto ascii_end =
        std::find_if(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    result.append(utf8.begin(), ascii_end);
    utf8.remove_prefix(static_cast<std::size_t>(ascii_end - utf8.begin()));
    if (utf8.empty()) break;
    const char32_t character = take_character(utf8);
    if (character < 0x10000) {
      result += static_cast<char16_t>(character);
    } else {
      result += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      result += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
    }
  }
  return result;
}

std::string to_utf8(std::u16string_view units) {
  std::string result;
  result.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (is_high_surrogate(character) && i + 1 < units.size() && is_low_surrogate(units[i + 1])) {
      character = character_of_pair(character, units[++i]);
    }
    append_character(result, character);
  }
  return result;
}

std::string to_utf16_bytes(std::string_view utf8) {
  std::string result;
  result.reserve(2 * utf8.size());
  for (const char16_t unit : to_utf16(utf8)) {
    result += static_cast<char>(unit & 0xFF);
    result += static_cast<char>(unit >> 8);
  }
  return result;
}

std::string from_utf16_bytes(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2 + 1);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    units += static_cast<char16_t>(low | high << 8);
  }
  if (bytes.size() % 2 != 0) units += u'\xFFFD';
  return to_utf8(units);
}

}  // namespace zrl
