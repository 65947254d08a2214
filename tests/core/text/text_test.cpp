#include "core/text/text.h"

#include <gtest/gtest.h>

#include "core/text/filled.h"

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

TEST(Text, LinesEndWithLineFeedsAndMayHaveReturns) {
  std::string_view text = "a\r\n\rb\n\nlast\r";
  for (const char* line : {"a", "\rb", "", "last"}) EXPECT_EQ(take_line(text), line);
  EXPECT_TRUE(text.empty());
}

TEST(Text, PlacesAreFilledOnceAndOnlyByTheirValues) {
  EXPECT_EQ(filled("%2 in %1, %2", {"%2", "a"}), "a in %2, a");
  EXPECT_EQ(filled("%0 %3 100% %", {"x", "y"}), "%0 %3 100% %");
}

}  // namespace
}  // namespace zrl
