#include "core/text/encoded_words.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace zrl {
namespace {

struct Case {
  std::string_view header;
  std::string_view text;
};

void expect(std::initializer_list<Case> cases) {
  for (const Case& c : cases) EXPECT_EQ(decode_encoded_words(c.header), c.text) << c.header;
}

TEST(EncodedWords, AreDecoded) {
  expect({
      {"=?ISO-8859-1?Q?Patrik_F=E4ltstr=f6m?= <x@y>", "Patrik Fältström <x@y>"},
      {"Re: =?utf-8?b?w6TDtsO8?=!", "Re: äöü!"},
      {"=?UTF-8?B?YQ?=", "a"},
      {"=?utf-8?q?a=3Db=3F=5F?=", "a=b?_"},
      {"=?iso-8859-15?q?=A4?= =?windows-1252?q?=80?= =?koi8-r?b?5g==?=", "€€Ф"},
      {"=?iso-2022-jp?b?GyRCRnxLXBsoQg==?=", "日本"},
      {"=?utf-8*en?q?x?=", "x"},
      {"=?utf-8?q?\?=", ""},
      {"a=?utf-8?q?b?=c", "abc"},
  });
}

TEST(EncodedWords, BlanksBetweenNeighboursAreDropped) {
  expect({
      {"=?utf-8?q?a?= =?utf-8?q?b?=\r\n =?iso-8859-1?q?c?= d", "abc d"},
      {"=?utf-8?q?a?==?utf-8?q?b?=", "ab"},
      {"=?utf-8?q?a?= x =?utf-8?q?b?=", "a x b"},
      {" =?utf-8?q?a?= \t", " a \t"},
      {"=?utf-8?q?a?= =?nonsense?q?b?= =?utf-8?q?c?=", "abc"},
      // next to a word that stays, they are text
      {"=?utf-8?q?a?= =?utf-8?x?b?= =?utf-8?q?c?=", "a =?utf-8?x?b?= c"},
  });
}

TEST(EncodedWords, ACharacterMayBeSplitOverNeighbours) {
  expect({
      {"=?utf-8?q?=C3?= =?UTF-8?q?=A4?=", "ä"},
      {"=?utf-8?b?8J8=?=\r\n\t=?utf-8?b?mIA=?=", "\U0001F600"},
      {"=?utf-8?q?=C3?= =?utf-8?q?ok?=", "\xEF\xBF\xBDok"},
  });
}

// Their sets are read as those of bodies are, and bytes that should have been encoded only once.
TEST(EncodedWords, AndTheTextBesideThemAreReadAsMailsMeanThem) {
  expect({
      {"=?ks_c_5601-1987?b?jGM=?=", "똠"},
      {"=?gb2312?b?htg=?=", "嗀"},
      {"=?shift_jis?b?h0A=?=", "①"},
      {"=?iso-8859-1?q?=93=E4=94?=", "“ä”"},
      {"=?us-ascii?q?=E4?=", "ä"},
      {"=?us-ascii?q?=C3=A4?=", "ä"},
      {"=?unknown-8bit?q?caf=E9?=", "café"},
      {"=?utf-8?q?Gr=C3=BC=C3?=", "Grü\xEF\xBF\xBD"},
      {"=?utf-8?q?=FF?=", "\xEF\xBF\xBD"},
      {"=?iso-8859-1?q?caf\xE9?=", "café"},
      {"=?utf-8?q?caf\xC3\xA9?=", "café"},
      {"caf\xE9 =?utf-8?q?=C3=A9?= caf\xC3\xA9", "café é café"},
      {"Gr\xC3\xBC\xC3", "Grü\xEF\xBF\xBD"},
      {"\xff=?x?q?\xfe?=", "ÿþ"},
  });
}

TEST(EncodedWords, WhatCannotBeDecodedStaysAsItIs) {
  for (const std::string_view text :
       {"plain", "=?", "=?=", "=?\?=", "=?utf-8", "=?utf-8?q", "=?utf-8?q?", "=?utf-8?q?a", "=?utf-8?q?a?",
        "=?utf-8?x?a?=", "=?utf-8?qq?a?=", "=??q?a?=", "=?../../x?q?a?=", "=?utf-8//IGNORE?q?=FF?=",
        "=? utf-8?q?a?=", "a = ? b ?= c"}) {
    EXPECT_EQ(decode_encoded_words(text), text);
  }
}

TEST(EncodedWords, BrokenWritersAreRead) {
  expect({
      {"=?utf-8?Q?are you there?\?=", "are you there?"},
      {"=?utf-8?q?=4?= =?utf-8?q?=G1_=?=", "=4=G1 ="},
      {"=?utf-8?q?broken =?utf-8?q?fine?=", "=?utf-8?q?broken fine"},
      {"=?utf-8?b?w6 T D\r\n tg?=", "äö"},
  });
}

// Each would take minutes if a search began anew at every "=?", or a character set were looked for
// again and again.
TEST(EncodedWords, HostileHeadersCostNoMoreThanTheirLength) {
  const auto repeat = [](std::string_view text, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
  };
  for (const std::string& text :
       {repeat("=?", 500'000), repeat("=?a?q?", 200'000), repeat("=?a?q?x ", 100'000) + "?",
        repeat("=", 1'000'000), "=?utf-8?q?" + repeat("?", 1'000'000), repeat("=?utf-8*", 100'000)}) {
    EXPECT_EQ(decode_encoded_words(text), text);
  }
  EXPECT_EQ(decode_encoded_words(repeat("=?utf-8?q?=C3?= =?utf-8?q?=A4?= ", 30'000)).size(), 60'001u);
  EXPECT_EQ(decode_encoded_words(repeat("=?x?q?=?=", 100'000)), repeat("=", 100'000));
  std::string unknown;
  for (int i = 0; i < 50'000; ++i) unknown += "=?x-" + std::to_string(i) + "?q?a?= ";
  EXPECT_EQ(decode_encoded_words(unknown), std::string(50'000, 'a') + " ");
}

}  // namespace
}  // namespace zrl
