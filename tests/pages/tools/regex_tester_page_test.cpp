#include "pages/tools/regex_tester_page.h"

#include <gmock/gmock.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using RegexTesterPageTest = test::ShownPage<RegexTesterPage>;

class RegexTester : public testing::Test, public RegexTesterPageTest {};

TEST_F(RegexTester, ExpressionsAreWrappedUnlessTheyAreAlready) {
  const struct {
    const char* typed;
    const char* wrapped;
    const char* result;
  } cases[] = {
      {"v.agra", "REGEX[v.agra]", "Mirvan Regular Expression Engine found: VIAGRA"},
      {"REGEX[v(i)agra]", "REGEX[v(i)agra]", "Mirvan Regular Expression Engine found: VIAGRA"},
      {"regex[[0-9]+]", "regex[[0-9]+]", "Mirvan Regular Expression Engine found: 10"},
      {"Regex[buy]", "Regex[buy]", "Nothing found"},  // no list would take it for an expression
      {"regex[buy", "regex[buy", "Nothing found"},
      {"regex", "REGEX[regex]", "Nothing found"},
      {"cialis", "REGEX[cialis]", "Nothing found"},
      {"", "REGEX[]", "Nothing found"},
      {"(", "REGEX[(]", "Nothing found"},
  };
  RegexTesterPage& page = shown();
  page.searchtext.user_type("Buy VIAGRA,\r\n10 pills, viagra");
  for (const auto& [typed, wrapped, result] : cases) {
    page.reguex.user_type(typed);
    page.Command1.user_click();
    EXPECT_EQ(page.reguex.text(), wrapped);
    EXPECT_EQ(page.rresult.caption(), result) << typed;
  }
  EXPECT_THAT(activity(), testing::ElementsAre("failed: regex_match REGEX[(]"));
}

TEST_F(RegexTester, WorksWithoutADatabase) {
  console.components().remove(Database::program_id);
  RegexTesterPage& page = shown();
  EXPECT_TRUE(host.boxes.empty());
  EXPECT_EQ(page.conn, nullptr);
  page.searchtext.user_type("Buy");
  page.reguex.user_type("b.y");
  page.Command1.user_click();
  EXPECT_EQ(page.rresult.caption(), "Mirvan Regular Expression Engine found: Buy");
}

TEST_F(RegexTester, TheResultIsInTheLanguageOfThePage) {
  console.settings().regwrite_string(console.settings().language_path(), "german");
  RegexTesterPage& page = shown();
  page.reguex.user_type("b.y");
  page.Command1.user_click();
  EXPECT_EQ(page.rresult.caption(), "Nichts gefunden");
  page.searchtext.user_type("Buy");
  page.Command1.user_click();
  EXPECT_EQ(page.rresult.caption(), "Mirvan hat mit dem regul\u00e4ren Ausdruck gefunden: Buy");
}

}  // namespace
}  // namespace zrl
