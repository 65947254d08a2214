#include "pages/lists/exception_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ExceptionPageTest : public testing::Test, public test::ShownPage<ExceptionPage> {};

TEST_F(ExceptionPageTest, TheAtSignTellsTheListAndTheTextIsStoredAsTyped) {
  const struct {
    const char* text;
    std::vector<std::string> added;
    std::vector<std::string> removed;
  } cases[] = {
      {"", {}, {}},
      {"   ", {}, {"DELETE FROM exceptdomain where entry=''"}},
      {" Shop.Example ",
       {"INSERT INTO exceptdomain (entry) VALUES ('Shop.Example')"},
       {"DELETE FROM exceptdomain where entry='Shop.Example'"}},
      {" Me@Shop.Example",
       {"INSERT INTO exceptmail (entry) VALUES ('Me@Shop.Example')"},
       {"DELETE FROM exceptmail where entry='Me@Shop.Example'"}},
      {"o'neil@shop.example",
       {"failed: INSERT INTO exceptmail (entry) VALUES ('o'neil@shop.example')"},
       {"failed: DELETE FROM exceptmail where entry='o'neil@shop.example'"}},
  };
  ExceptionPage& page = shown();
  for (const auto& [text, added, removed] : cases) {
    page.Text1.user_type(text);
    forget_activity();
    page.addex.user_click();
    EXPECT_EQ(activity(), added) << text;
    forget_activity();
    page.removeex.user_click();
    EXPECT_EQ(activity(), removed) << text;
    EXPECT_EQ(page.Text1.text(), text);
  }
  EXPECT_THAT(rows("exceptdomain", "entry"), IsEmpty());
  EXPECT_THAT(rows("exceptmail", "entry"), IsEmpty());
}

TEST_F(ExceptionPageTest, AnEntryAddedTwiceShowsTwiceAndNoPlaceIsKept) {
  insert("exceptdomain", "entry", {"me@shop.example"});
  ExceptionPage& page = shown();
  page.Text1.user_type("shop.example");
  page.addex.user_click();
  page.addex.user_click();
  EXPECT_THAT(items(page.exceptdomains), ElementsAre("me@shop.example", "shop.example", "shop.example"));
  page.exceptdomains.user_choose(0);
  EXPECT_EQ(page.Text1.text(), "me@shop.example");
  page.removeex.user_click();
  EXPECT_EQ(page.exceptdomains.items().size(), 3U);  // looked for among the addresses
  EXPECT_EQ(page.exceptdomains.index(), -1);
}

// Each box bears the name of a table, and each list box that name in the plural.
TEST_F(ExceptionPageTest, SwitchesListsAndDialogsBelongTogether) {
  set_option("exceptmail", 1);
  insert("exceptmail", "entry", {"me@shop.example"});
  ExceptionPage& page = shown();
  EXPECT_TRUE(page.exceptmail.checked());
  EXPECT_FALSE(page.exceptdomain.checked());
  EXPECT_THAT(items(page.exceptmails), ElementsAre("me@shop.example"));
  page.exceptdomain.user_click();
  EXPECT_EQ(option("exceptdomain"), "1");

  forget_activity();
  insert("exceptdomain", "entry", {"imported.example"});
  EXPECT_EQ(dialog_of(page.imleft), "Domain Exception List: exceptdomain.txt");
  EXPECT_THAT(items(page.exceptdomains), ElementsAre("imported.example"));
  EXPECT_EQ(dialog_of(page.imright), "eMail Exception List: exceptmail.txt");
  EXPECT_THAT(activity(), IsEmpty());
}

}  // namespace
}  // namespace zrl
