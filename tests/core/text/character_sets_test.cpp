#include "core/text/character_sets.h"

#include <gtest/gtest.h>

namespace zrl {
namespace {

constexpr std::size_t no_limit = 1 << 20;
const std::string lost = "\xEF\xBF\xBD";

TEST(CharacterSets, Windows1252ComesBackAndAgreesWithTheSystem) {
  for (int byte = 0; byte < 256; ++byte) {
    const char16_t character = windows_1252_character(static_cast<unsigned char>(byte));
    EXPECT_EQ(windows_1252_byte(character), byte);
  }
  EXPECT_EQ(windows_1252_byte(u'\x0141'), std::nullopt);
  EXPECT_EQ(windows_1252_byte(u'\x20A0'), std::nullopt);
  EXPECT_EQ(CharacterSet("windows-1252").exact("\x80 gr\xFC\xDF \x9F"), "€ grüß Ÿ");
}

TEST(CharacterSets, NamesStandForTheirLargerBrothers) {
  const struct {
    const char* name;
    const char* bytes;
    const char* text;
  } cases[] = {
      {"ISO-8859-1", "\x93\xE4\x94", "“ä”"},      {" latin1 ", "\x80", "€"},
      {"iso-8859-9", "\x80\xFD", "€ı"},           {"tis-620", "\xA1", "ก"},
      {"GB2312", "\x81\x30\x81\x30", "\xC2\x80"}, {"shift_jis", "\x87\x40", "①"},
      {"ks_c_5601-1987", "\xB0\xA1", "가"},       {"UTF8", "ä", "ä"},
      {"iso-2022-jp", "\x1B$B$\"\x1B(B", "あ"},   {"us-ascii", "a", "a"},
  };
  for (const auto& [name, bytes, text] : cases) {
    CharacterSet set(name);
    EXPECT_TRUE(set.is_known());
    EXPECT_EQ(set.exact(bytes), text) << name;
    EXPECT_EQ(set.repaired(bytes, no_limit), text) << name;
  }
}

TEST(CharacterSets, WhatDoesNotFitIsRefusedOrReplaced) {
  const struct {
    const char* name;
    const char* bytes;
    std::string text;
  } cases[] = {
      {"utf-8", "a\xFFz", "a" + lost + "z"},
      {"us-ascii", "\xE4", "ä"},  // as what it most likely is
      {"us-ascii", "\xC3\xA4", "ä"},
      {"x-unheard-of", "\x80", "€"},
      {"x-unheard-of", "\x81", lost},
      {"../../x", "a", "a"},
      {"UTF-8//IGNORE", "\xE4", "ä"},
      {"iso-2022-jp", "\x1B$B\x1B(Bz\xFF", "z" + lost},
      {"utf-16be", "\xD8", lost},
  };
  for (const auto& [name, bytes, text] : cases) {
    CharacterSet set(name);
    EXPECT_EQ(set.exact(bytes), std::nullopt) << name;
    EXPECT_EQ(set.repaired(bytes, no_limit), text) << name;
    // A conversion leaves nothing behind for the next.
    EXPECT_EQ(set.repaired(bytes, no_limit), text) << name;
  }
}

TEST(CharacterSets, ResultsAreBounded) {
  const std::string bytes(1'000'000, '\xE4');
  for (const char* name : {"iso-8859-1", "iso-8859-15", "cp437"}) {
    EXPECT_LE(CharacterSet(name).repaired(bytes, 1000).size(), 20'000U) << name;
  }
}

}  // namespace
}  // namespace zrl
