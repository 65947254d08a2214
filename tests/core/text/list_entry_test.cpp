#include "core/text/list_entry.h"

#include <string>

#include <gtest/gtest.h>

namespace zrl {
namespace {

TEST(ListEntry, QuotesAreEscaped) {
  const struct {
    const char* text;
    const char* escaped;
  } cases[] = {
      {"O'Neil", "O\\x27Neil"},
      {"say \"x\"", "say \\x22x\\x22"},
      {"'\"'", "\\x27\\x22\\x27"},
      {"no quotes \\x27", "no quotes \\x27"},
      {"", ""},
  };
  for (const auto& [text, escaped] : cases) EXPECT_EQ(escape_quotes(text), escaped) << text;
}

TEST(ListEntry, AddressesAreFourNumbersAndNothingElse) {
  for (const char* address : {"192.168.1.1", "0.0.0.0", "255.255.255.255", "01.002.3.4"}) {
    EXPECT_TRUE(is_ip_address(address)) << address;
  }
  for (const char* text : {"192.168.1", "300.1.1.1", "1.2.3.4.5", "1.2.3.256", "1.2.3.0004", "1.2.3.",
                           ".1.2.3", "1..2.3", " 1.2.3.4", "1.2.3.4 ", "1.2.3.4\n", "1.2.3.+4", "1.2.3.-4",
                           "1.2.3.4a", "a1.2.3.4", "1.2.3.0x1", "", "...", "1.2.3.4/24"}) {
    EXPECT_FALSE(is_ip_address(text)) << text;
  }
}

TEST(ListEntry, RegularExpressionsStandInBrackets) {
  const struct {
    std::string entry;
    bool is_regex;
    std::string expression;
  } cases[] = {
      {"REGEX[^abc]", true, "^abc"},
      {"regex[a[b]]", true, "a[b]"},
      {"REGEX[]", true, ""},
      {"REGEX[^abc", false, ""},
      {"Regex[a]", false, ""},
      {" REGEX[a]", false, ""},
      {"REGEX[a] ", false, ""},
      {"REGEX[", false, ""},
      {"x]", false, ""},
      {"", false, ""},
  };
  for (const auto& [entry, is_regex, expression] : cases) {
    EXPECT_EQ(is_regex_entry(entry), is_regex) << entry;
    EXPECT_EQ(is_regex ? regex_of(entry) : "", expression);
  }
}

}  // namespace
}  // namespace zrl
