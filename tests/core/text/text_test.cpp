#include "core/text/text.h"

#include <gtest/gtest.h>

namespace zrl {
namespace {

TEST(Text, TrimTakesBlanksAtBothEndsOnly) {
  EXPECT_EQ(trim(" \t a b\r\n"), "a b");
  EXPECT_EQ(trim(" \r\n "), "");
  EXPECT_EQ(trim(""), "");
}

TEST(Text, NumbersAreWholeTextsInRange) {
  const struct {
    const char* text;
    std::optional<std::int64_t> number;
  } cases[] = {
      {"0", 0},
      {" 60 ", 60},
      {"-1", -1},
      {"+5", 5},
      {"1.0", 1},
      {"1.5", {}},
      {"", {}},
      {"abc", {}},
      {"1a", {}},
      {"+-1", {}},
      {"9223372036854775808", {}},
      {"0x10", {}},
  };
  for (const auto& [text, number] : cases) EXPECT_EQ(to_number(text), number) << text;
}

TEST(Text, InvalidUtf8IsReplacedByteByByte) {
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

TEST(Text, PrintableLeavesNothingThatATerminalObeys) {
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

}  // namespace
}  // namespace zrl
