#include <algorithm>

#include <gtest/gtest.h>

#include "core/text/letter_case.h"
#include "core/text/printable.h"
#include "core/text/utf16.h"
#include "core/text/utf8.h"

namespace zrl {
namespace {

using namespace std::string_view_literals;

std::string utf8_of(char32_t character) {
  std::string result;
  append_character(result, character);
  return result;
}

// Against the definition: the four lengths, and nothing else.
TEST(Utf8, EveryCharacterComesBackAndSurrogatesDoNot) {
  for (char32_t character = 0; character <= 0x110000; ++character) {
    const bool exists = character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    const std::string text = utf8_of(character);
    const std::size_t length = character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    ASSERT_EQ(text.size(), exists ? length : 3) << std::hex << std::uint32_t{character};
    std::string_view rest = text;
    ASSERT_EQ(character_length(rest), text.size());
    ASSERT_EQ(take_character(rest), exists ? character : U'\xFFFD');
    ASSERT_TRUE(rest.empty());
    ASSERT_EQ(to_utf8(to_utf16(text)), text);
  }
}

TEST(Utf8, WhatIsInvalidIsReplacedByteByByte) {
  const struct {
    std::string text;
    std::string valid;
  } cases[] = {
      {"gr\xC3\xBC\xC3\x9F", "gr\xC3\xBC\xC3\x9F"},
      {"\xFF", "\xEF\xBF\xBD"},
      {"\xC0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // overlong
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // surrogate
      {"a\xE2\x82", "a\xEF\xBF\xBD\xEF\xBF\xBD"},                // cut off
      {"\xF4\x90\x80\x80x", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDx"},
      {"\xF0\x9F\x93\xA7", "\xF0\x9F\x93\xA7"},
  };
  for (const auto& [text, valid] : cases) {
    EXPECT_EQ(valid_utf8(text), valid);
    EXPECT_EQ(is_valid_utf8(text), text == valid);
  }
}

TEST(Printable, LeavesNothingThatATerminalObeys) {
  EXPECT_EQ(printable("\x1b[31mred"), "\\x1b[31mred");
  EXPECT_EQ(printable("a\nb\tc"), "a\\x0ab\\x09c");
  EXPECT_EQ(printable("a\nb\tc\r", true), "a\nb\tc\\x0d");
  EXPECT_EQ(printable("\xC2\x9B"
                      "2J"),
            "\\x9b"
            "2J");
  EXPECT_EQ(printable("\xFF\xFE"), "\\xff\\xfe");
  EXPECT_EQ(printable("\xE2\x80\xAE"
                      "txt"),
            "\\xe2\\x80\\xae"
            "txt");
  EXPECT_EQ(printable("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC"), "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC");
}

// The check goes by words where it can; the place of the fault must not matter.
TEST(Utf8, FaultsAreFoundAtEveryPlace) {
  for (std::size_t at = 0; at < 40; ++at) {
    std::string text(40, 'a');
    text[at] = '\xE4';
    EXPECT_FALSE(is_valid_utf8(text)) << at;
    EXPECT_EQ(valid_utf8(text), std::string(at, 'a') + "\xEF\xBF\xBD" + std::string(39 - at, 'a'));
    EXPECT_EQ(character_count(text), 40U);
  }
}

TEST(Utf8, IsCutBetweenCharacters) {
  const std::string text = "a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x93\xA7z";  // 1, 2, 3, 4 and 1 bytes
  const std::size_t sizes[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11};
  for (std::size_t limit = 0; limit < std::size(sizes); ++limit) {
    EXPECT_EQ(cut_between_characters(text, limit), text.substr(0, sizes[limit]));
    EXPECT_EQ(beginning_of(text, limit), text.substr(0, sizes[limit]));
  }
  // Bytes that belong to no character leave nothing to keep whole.
  EXPECT_EQ(cut_between_characters(std::string(100, '\x80'), 50).size(), 50U);
  EXPECT_EQ(beginning_of("\xFF\xFF", 1), "\xEF\xBF\xBD");
}

TEST(LetterCase, LettersBecomeSmallWhateverTheLocale) {
  const std::pair<const char*, const char*> cases[] = {
      {"RechnungÄ.EXE", "rechnungä.exe"}, {"ÀÖØÞß×÷ÿŸ", "àöøþß×÷ÿÿ"},
      {"ĀĮİIıĶŁŇŽſ", "āįiiıķłňžſ"},       {"ƁǄǅǆȘȺ", "ɓǆǆǆșⱥ"},
      {"ΆΈΐΑΡΣςΫϴ", "άέΐαρσςϋθ"},         {"ЀЯяѠҀҊӀӁԮ", "ѐяяѡҁҋӏӂԯ"},
      {"ԱՖ ẞẠ ἈᾼῬ", "աֆ ßạ ἀᾳῥ"},         {"日本 \xFF\xC3 A", "日本 \xFF\xC3 a"},
  };
  for (const auto& [text, small] : cases) {
    EXPECT_EQ(lower_unicode(text), small);
    EXPECT_EQ(lower_unicode(small), small);
  }
}

TEST(Utf16, ComesBackAsItWas) {
  for (const std::string_view text :
       {"Function f(x)\r\nEnd Function\r\n"sv, "größer \xE2\x82\xAC \xF0\x9F\x98\x80 \xEF\xBF\xBF"sv,
        "a\0b"sv, ""sv}) {
    EXPECT_EQ(from_utf16_bytes(to_utf16_bytes(text)), text);
    EXPECT_EQ(to_utf8(to_utf16(text)), text);
  }
  EXPECT_EQ(to_utf16_bytes("\xC3\xA4"
                           "b"),
            "\xE4\0b\0"sv);
  EXPECT_EQ(to_utf16_bytes("aü€"), "a\0\xfc\0\xac\x20"sv);
}

TEST(Utf16, ReadsBytesThatNobodyWroteWell) {
  const std::string lost = "\xEF\xBF\xBD";
  EXPECT_EQ(from_utf16_bytes("a\0\0\xD8"sv), "a" + lost);  // a high half at the end
  EXPECT_EQ(from_utf16_bytes("\0\xD8"
                             "b\0"sv),
            lost + "b");                                       // and before another character
  EXPECT_EQ(from_utf16_bytes("\0\xDC\0\xD8"sv), lost + lost);  // the wrong way round
  EXPECT_EQ(from_utf16_bytes("a\0b"sv), "a" + lost);           // a byte too many
}

TEST(Printable, EscapesWhateverIsNotSeen) {
  // One of each kind that texts were hidden, turned or cut with; the front end's tests hold the whole table
  // to the properties of Unicode.
  const char32_t unseen[] = {0,      0x1B,   0x7F,    0x85,    0xAD,    0x34F,   0x61C,  0x115F, 0x180E,
                             0x200B, 0x200D, 0x200E,  0x200F,  0x2028,  0x2029,  0x202A, 0x202E, 0x2060,
                             0x2064, 0x2066, 0x2069,  0x206F,  0x3164,  0xFDD0,  0xFE0F, 0xFEFF, 0xFFA0,
                             0xFFF9, 0xFFFF, 0x1D173, 0xE0001, 0xE0041, 0x10FFFF};
  for (const char32_t character : unseen) {
    EXPECT_TRUE(is_unseen(character));
    const std::string shown = printable("a" + utf8_of(character) + "b");
    EXPECT_TRUE(shown.starts_with("a\\x") && shown.ends_with("b")) << shown;
    EXPECT_TRUE(std::ranges::all_of(shown, [](unsigned char c) { return c < 0x80; })) << shown;
  }
  for (char32_t character = 0xD800; character <= 0xDFFF; ++character) EXPECT_TRUE(is_unseen(character));
  EXPECT_EQ(printable("\u200f"), "\\xe2\\x80\\x8f");
  EXPECT_EQ(printable("\u061c"), "\\xd8\\x9c");
  EXPECT_EQ(printable("\U000E0041"), "\\xf3\\xa0\\x81\\x81");
  // What is not in the table stays, its neighbours above all.
  for (const char* text :
       {" ~\u00a0\u00ac\u00ae", "\u061b\u061e", "\u200a\u2010", "\u2027\u202f", "\u205f\u2070",
        "\ufdcf\ufdf0", "\ufe10", "\ufffc\ufffd", "\U0001F600", "\U000F0000\U0010FFFD", "שלום مرحبا"}) {
    EXPECT_EQ(printable(text), text);
  }
}

// Everything at once, so that no range hides in another.
TEST(Printable, ShowsWhatIsSeenAndNothingElse) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    if (character >= 0xD800 && character <= 0xDFFF) continue;
    const std::string text = utf8_of(character);
    ASSERT_EQ(printable(text) == text, !is_unseen(character)) << std::hex << std::uint32_t{character};
  }
}

}  // namespace
}  // namespace zrl
