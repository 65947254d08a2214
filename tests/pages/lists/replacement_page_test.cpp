#include "pages/lists/replacement_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ReplacementPageTest : public testing::Test, public test::ShownPage<ReplacementPage> {
 protected:
  void insert_pair(std::string_view word, std::string_view replacement) {
    execute("INSERT INTO rwords (orig,repl) values ('" + value(word) + "','" + value(replacement) + "')");
  }
  void save(ReplacementPage& page, std::string_view word, std::string_view replacement) {
    page.Text1.user_type(word);
    page.Text2.user_type(replacement);
    forget_activity();
    page.Command1.user_click();
  }
};

TEST_F(ReplacementPageTest, SavingAddsAPairOrChangesAReplacement) {
  ReplacementPage& page = shown();
  save(page, " foo ", " bar baz ");
  EXPECT_THAT(activity(), ElementsAre("INSERT INTO rwords (orig,repl) values ('foo','bar baz')",
                                      "UPDATE rwords set repl='bar baz' where orig='foo'"));
  EXPECT_THAT(items(page.List1), ElementsAre("foo ==>> bar baz"));
  EXPECT_EQ(page.Text1.text() + page.Text2.text(), "");

  save(page, "foo", "");
  EXPECT_THAT(activity(), ElementsAre("failed: INSERT INTO rwords (orig,repl) values ('foo',' ')",
                                      "UPDATE rwords set repl=' ' where orig='foo'"));
  EXPECT_EQ(console.activity().failures(), 0U);  // it was meant to fail, so nobody is told
  EXPECT_THAT(items(page.List1), ElementsAre("foo ==>>  "));

  save(page, "  ", "nothing");
  EXPECT_THAT(activity(), IsEmpty());
  save(page, "it's", "it is");
  save(page, "x'); DROP TABLE rwords; --", "y");
  EXPECT_THAT(items(page.List1), ElementsAre("foo ==>>  "));
}

TEST_F(ReplacementPageTest, ALineIsTakenApartAtItsFirstSeparator) {
  const struct {
    const char* word;
    const char* replacement;
    const char* text1;
    const char* text2;
  } cases[] = {
      {"a", "b", "a", "b"},
      {" padded ", " ", "padded", ""},
      {"c", "d ==>> e", "c", "d ==>> e"},
      {"f ==>> g", "h", "f", "g ==>> h"},
      {"f==>>g", "h", "f==>>g", "h"},
      {"", "lost", "kept", "kept"},
      {"  ", "lost", "kept", "kept"},
  };
  for (const auto& row : cases) insert_pair(row.word, row.replacement);
  ReplacementPage& page = shown();
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    page.Text1.user_type("kept");
    page.Text2.user_type("kept");
    page.List1.user_choose(static_cast<std::int64_t>(i));
    EXPECT_EQ(page.Text1.text(), cases[i].text1);
    EXPECT_EQ(page.Text2.text(), cases[i].text2);
  }
}

// The columns are read one after the other: their rows must come in the same order.
TEST_F(ReplacementPageTest, LinesKeepWordsAndReplacementsTogether) {
  for (const char* word : {"zeta", "alpha", "mid"}) insert_pair(word, std::string("of ") + word);
  execute(Literal("INSERT INTO rwords (orig) values ('bare')"));
  insert_pair("last", "of last");
  EXPECT_THAT(items(shown().List1), ElementsAre("zeta ==>> of zeta", "alpha ==>> of alpha", "mid ==>> of mid",
                                                "bare ==>> ", "last ==>> of last"));
}

TEST_F(ReplacementPageTest, RemovingTakesBothFormsAndPurgesEmptyWords) {
  for (const char* word : {"", " ", " a ", "a", "b"}) insert_pair(word, "x");
  ReplacementPage& page = shown();
  page.Command2.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  page.Text1.user_type(" a ");
  page.Command2.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("DELETE FROM rwords where orig=' a '", "DELETE FROM rwords where orig='a'",
                          "DELETE FROM rwords where orig=''", "DELETE FROM rwords where orig=' '"));
  EXPECT_THAT(items(page.List1), ElementsAre("b ==>> x"));
  EXPECT_EQ(page.Text1.text(), "");
}

TEST_F(ReplacementPageTest, TheSwitchIsAnOption) {
  set_option("editbody", 1);
  ReplacementPage& page = shown();
  EXPECT_TRUE(page.Check2.checked());
  page.Check2.user_click();
  EXPECT_EQ(option("editbody"), "0");
}

}  // namespace
}  // namespace zrl
