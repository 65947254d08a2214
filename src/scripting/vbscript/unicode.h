#pragma once

#include <string>
#include <string_view>

#include "core/text/utf16.h"

// Texts are UTF-8 outside the engine and 16-bit units inside: utf16.h goes between them.
namespace zrl::vbs {

// Simple case mapping of one unit: Latin, Greek, Cyrillic, Armenian, full-width letters.
char16_t lower_case_beyond_ascii(char16_t unit);
char16_t upper_case_beyond_ascii(char16_t unit);

inline char16_t to_lower(char16_t unit) {
  if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
  return lower_case_beyond_ascii(unit);
}
inline char16_t to_upper(char16_t unit) {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
  return upper_case_beyond_ascii(unit);
}

std::u16string lower_cased(std::u16string_view text);
bool equal_ignoring_case(std::u16string_view a, std::u16string_view b);
// Below, above or at 0, as a comparison of lower-cased units.
int compare_ignoring_case(std::u16string_view a, std::u16string_view b);

inline bool is_digit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}
inline bool is_letter(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') || unit >= 0xAA;
}

// A sequence of ASCII as 16-bit units.
std::u16string ascii(std::string_view text);

}  // namespace zrl::vbs
