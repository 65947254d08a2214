#include "scripting/vbscript/unicode.h"

#include <algorithm>
#include <cstdint>

namespace zrl::vbs {

namespace {

constexpr char16_t replacement = 0xFFFD;

// Reads one code point; returns its length in bytes, or 0 where the bytes are not UTF-8.
std::size_t decode(std::string_view bytes, char32_t& point) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  const unsigned char lead = byte(0);
  std::size_t length = 0;
  char32_t smallest = 0;
  if (lead < 0x80) {
    point = lead;
    return 1;
  }
  if (lead >= 0xC2 && lead < 0xE0) {
    length = 2, smallest = 0x80, point = lead & 0x1FU;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    length = 3, smallest = 0x800, point = lead & 0x0FU;
  } else if (lead >= 0xF0 && lead < 0xF5) {
    length = 4, smallest = 0x10000, point = lead & 0x07U;
  } else {
    return 0;
  }
  if (bytes.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80) return 0;
    point = point << 6 | (byte(i) & 0x3FU);
  }
  const bool surrogate = point >= 0xD800 && point < 0xE000;
  return point < smallest || point > 0x10FFFF || surrogate ? 0 : length;
}

void encode(std::string& out, char32_t point) {
  const auto put = [&](char32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | point >> 6);
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | point >> 12);
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3F));
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

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

std::u16string to_utf16(std::string_view utf8) {
  std::u16string text;
  text.reserve(utf8.size());
  while (!utf8.empty()) {
    if (static_cast<unsigned char>(utf8[0]) < 0x80) {
      text += static_cast<char16_t>(utf8[0]);
      utf8.remove_prefix(1);
      continue;
    }
    char32_t point = 0;
    const std::size_t length = decode(utf8, point);
    if (length == 0) {
      text += replacement;
    } else if (point < 0x10000) {
      text += static_cast<char16_t>(point);
    } else {
      text += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
      text += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    }
    utf8.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

bool is_utf8(std::string_view bytes) {
  while (!bytes.empty()) {
    char32_t point = 0;
    const std::size_t length = decode(bytes, point);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string to_utf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    const bool high = unit >= 0xD800 && unit < 0xDC00;
    if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
      const char16_t low = text[++i];
      encode(out, 0x10000U + (static_cast<char32_t>(unit - 0xD800) << 10) + (low - 0xDC00U));
    } else {
      encode(out, unit >= 0xD800 && unit < 0xE000 ? replacement : unit);
    }
  }
  return out;
}

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
