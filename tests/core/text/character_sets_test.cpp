#include "core/text/character_sets.h"

#include <gtest/gtest.h>

namespace zrl {
namespace {

const std::string lost = "\xEF\xBF\xBD";

TEST(CharacterSets, Windows1252ComesBackAndAgreesWithTheSystem) {
  for (int byte = 0; byte < 256; ++byte) {
    const char16_t character = windows_1252_character(static_cast<unsigned char>(byte));
    EXPECT_EQ(windows_1252_byte(character), byte);
  }
  EXPECT_EQ(windows_1252_byte(u'\x0141'), std::nullopt);
  EXPECT_EQ(windows_1252_byte(u'\x20A0'), std::nullopt);
  EXPECT_EQ(CharacterSet("windows-1252").decode("\x80 gr\xFC\xDF \x9F"), "€ grüß Ÿ");
}

TEST(CharacterSets, AreReadAsMailsMeanThem) {
  const struct {
    const char* name;
    const char* bytes;
    std::string text;
  } cases[] = {
      {"ISO-8859-1", "\x93\xE4\x94", "“ä”"},
      {" latin1 ", "\x80", "€"},
      {"iso_8859-1", "\x96", "–"},
      {"iso-8859-9", "\x80\xFD", "€ı"},
      {"tis-620", "\xA1", "ก"},
      {"GB2312", "\x81\x30\x81\x30", "\xC2\x80"},
      {"gb2312", "\xA9\x96\x86\xD8", "〇嗀"},  // characters of GBK alone
      {"shift_jis", "\x87\x40\xFB\xFC", "①髙"},
      {"sjis", "\x87\x40", "①"},
      {"euc-jp", "\xAD\xA1", "①"},
      {"ks_c_5601-1987", "\xB0\xA1\x8C\x63", "가똠"},
      {"windows-949", "\x8C\x63", "똠"},
      {"iso-8859-8-i", "\xE0", "א"},
      {"UTF8", "ä", "ä"},
      {"iso-2022-jp", "\x1B$B$\"\x1B(B", "あ"},
      {"us-ascii", "a", "a"},
      // As what they most likely are.
      {"us-ascii", "\xE4", "ä"},
      {"us-ascii", "\xC3\xA4", "ä"},
      {"us-ascii", "\xC3\xA4\xE2\x82", "ä" + lost + lost},  // cut
      {"us-ascii", "caf\xE9", "café"},                      // not cut
      {"us-ascii", "\xE9t\xE9", "été"},
      {"", "\xC3\xA4 \xF0\x9F\x98", "ä " + lost + lost + lost},
      {"x-unheard-of", "\x80", "€"},
      {"x-unheard-of", "\x81", lost},
      {"../../x", "a", "a"},
      {"UTF-8//IGNORE", "\xE4", "ä"},
      // What does not fit is replaced.
      {"utf-8", "a\xFFz", "a" + lost + "z"},
      {"iso-2022-jp", "\x1B$B\x1B(Bz\xFF", "z" + lost},
      {"utf-16be", "\xD8", lost},
  };
  for (const auto& [name, bytes, text] : cases) {
    CharacterSet set(name);
    EXPECT_EQ(set.decode(bytes), text) << name;
    // A conversion leaves nothing behind for the next.
    EXPECT_EQ(set.decode(bytes), text) << name;
  }
}

TEST(CharacterSets, ResultsAreBounded) {
  const std::string bytes(1'000'000, '\xE4');
  for (const char* name : {"iso-8859-1", "iso-8859-15", "cp437"}) {
    EXPECT_LE(CharacterSet(name).decode(bytes, 1000).size(), 20'000U) << name;
  }
}

}  // namespace
}  // namespace zrl
