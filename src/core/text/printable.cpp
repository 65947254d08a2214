#include "core/text/printable.h"

#include <algorithm>
#include <cstddef>

#include "core/text/utf8.h"

namespace zrl {

namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// In order, and apart. The front end's tests compare them with the properties that its language knows.
constexpr Range unseen_ranges[] = {
    {0x0, 0x1F},         // C0
    {0x7F, 0x9F},        // DEL, C1
    {0xAD, 0xAD},        // soft hyphen
    {0x34F, 0x34F},      // combining grapheme joiner
    {0x600, 0x605},      // Arabic number signs
    {0x61C, 0x61C},      // Arabic letter mark
    {0x6DD, 0x6DD},      // Arabic end of ayah
    {0x70F, 0x70F},      // Syriac abbreviation mark
    {0x890, 0x891},      // Arabic pound and piastre marks
    {0x8E2, 0x8E2},      // Arabic disputed end of ayah
    {0x115F, 0x1160},    // Hangul fillers
    {0x17B4, 0x17B5},    // Khmer inherent vowels
    {0x180B, 0x180F},    // Mongolian selectors and vowel separator
    {0x200B, 0x200F},    // zero-width characters, direction marks
    {0x2028, 0x202E},    // line and paragraph separators, embeddings and overrides
    {0x2060, 0x206F},    // word joiner, invisible operators, isolates
    {0x3164, 0x3164},    // Hangul filler
    {0xD800, 0xDFFF},    // surrogates
    {0xFDD0, 0xFDEF},    // no characters
    {0xFE00, 0xFE0F},    // variation selectors
    {0xFEFF, 0xFEFF},    // byte-order mark
    {0xFFA0, 0xFFA0},    // Hangul filler
    {0xFFF0, 0xFFFB},    // annotations
    {0xFFFE, 0xFFFF},    // no characters, as at the end of each plane
    {0x110BD, 0x110BD},  // Kaithi number sign
    {0x110CD, 0x110CD},  // Kaithi number sign above
    {0x13430, 0x1343F},  // Egyptian format controls
    {0x1BCA0, 0x1BCA3},  // shorthand format controls
    {0x1D173, 0x1D17A},  // musical format controls
    {0x1FFFE, 0x1FFFF},
    {0x2FFFE, 0x2FFFF},
    {0x3FFFE, 0x3FFFF},
    {0x4FFFE, 0x4FFFF},
    {0x5FFFE, 0x5FFFF},
    {0x6FFFE, 0x6FFFF},
    {0x7FFFE, 0x7FFFF},
    {0x8FFFE, 0x8FFFF},
    {0x9FFFE, 0x9FFFF},
    {0xAFFFE, 0xAFFFF},
    {0xBFFFE, 0xBFFFF},
    {0xCFFFE, 0xCFFFF},
    {0xDFFFE, 0xDFFFF},
    {0xE0000, 0xE0FFF},  // tags, more variation
                         // selectors
    {0xEFFFE, 0xEFFFF},
    {0xFFFFE, 0xFFFFF},
    {0x10FFFE, 0x10FFFF},
};

void append_hex(std::string& out, char byte) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto value = static_cast<unsigned char>(byte);
  out.append({'\\', 'x', digits[value / 16], digits[value % 16]});
}

}  // namespace

bool is_unseen(char32_t character) {
  const Range* range = std::ranges::lower_bound(unseen_ranges, character, {}, &Range::last);
  return range != std::end(unseen_ranges) && range->first <= character;
}

std::string printable(std::string_view text, bool keep_lines) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::string_view from = text;
    const std::size_t length = character_length(from);
    const char32_t character = take_character(text);
    const bool kept = keep_lines && (character == '\n' || character == '\t');
    if (length != 0 && (kept || !is_unseen(character))) {
      result += from.substr(0, length);
      continue;
    }
    const bool is_c1 = length == 2 && character < 0xA0;
    for (const char byte : from.substr(is_c1 ? 1 : 0, from.size() - text.size() - (is_c1 ? 1 : 0))) {
      append_hex(result, byte);
    }
  }
  return result;
}

}  // namespace zrl
