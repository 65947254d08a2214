#include "scripting/vbscript/unicode.h"

#include <algorithm>

namespace zrl::vbs {

namespace {

// Upper case letters from first to last; the lower case ones lie `distance` on. With `step` 2 upper
// and lower case letters take turns.
struct CaseRange {
  char16_t first;
  char16_t last;
  int distance;
  int step;
};

constexpr CaseRange case_ranges[] = {
    {0x00C0, 0x00D6, 32, 1}, {0x00D8, 0x00DE, 32, 1}, {0x0100, 0x012E, 1, 2},    {0x0132, 0x0136, 1, 2},
    {0x0139, 0x0147, 1, 2},  {0x014A, 0x0176, 1, 2},  {0x0178, 0x0178, -121, 1}, {0x0179, 0x017D, 1, 2},
    {0x01CD, 0x01DB, 1, 2},  {0x01DE, 0x01EE, 1, 2},  {0x01F8, 0x021E, 1, 2},    {0x0222, 0x0232, 1, 2},
    {0x0386, 0x0386, 38, 1}, {0x0388, 0x038A, 37, 1}, {0x038C, 0x038C, 64, 1},   {0x038E, 0x038F, 63, 1},
    {0x0391, 0x03A1, 32, 1}, {0x03A3, 0x03AB, 32, 1}, {0x0400, 0x040F, 80, 1},   {0x0410, 0x042F, 32, 1},
    {0x0460, 0x0480, 1, 2},  {0x048A, 0x04BE, 1, 2},  {0x04C1, 0x04CD, 1, 2},    {0x04D0, 0x052E, 1, 2},
    {0x0531, 0x0556, 48, 1}, {0x1E00, 0x1E94, 1, 2},  {0x1EA0, 0x1EFE, 1, 2},    {0x2160, 0x216F, 16, 1},
    {0x24B6, 0x24CF, 26, 1}, {0xFF21, 0xFF3A, 32, 1},
};

}  // namespace

char16_t lower_case_beyond_ascii(char16_t unit) {
  for (const CaseRange& range : case_ranges) {
    if (unit < range.first) break;
    if (unit <= range.last && (unit - range.first) % range.step == 0) {
      return static_cast<char16_t>(unit + range.distance);
    }
  }
  return unit;
}

char16_t upper_case_beyond_ascii(char16_t unit) {
  for (const CaseRange& range : case_ranges) {
    const int original = unit - range.distance;
    if (original >= range.first && original <= range.last && (original - range.first) % range.step == 0) {
      return static_cast<char16_t>(original);
    }
  }
  return unit;
}

std::u16string lower_cased(std::u16string_view text) {
  std::u16string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), to_lower);
  return lower;
}

bool equal_ignoring_case(std::u16string_view a, std::u16string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char16_t x, char16_t y) {
           return x == y || to_lower(x) == to_lower(y);
         });
}

int compare_ignoring_case(std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = to_lower(a[i]) - to_lower(b[i]);
    if (difference != 0) return difference;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

std::u16string ascii(std::string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace zrl::vbs
