#include "pages/lists/local_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LocalPageTest : public testing::Test, public test::ShownPage<LocalPage> {};

TEST_F(LocalPageTest, TheAddressTestChoosesTheList) {
  LocalPage& page = shown();
  for (const char* text : {" 10.0.0.1 ", "10.0.0.1", "10.0.0.256", "Example.com", "Example.com", "", "  "}) {
    page.Text1.user_type(text);
    page.Command1.user_click();
    EXPECT_EQ(page.Text1.text(), "");
    EXPECT_TRUE(page.Command1.enabled());
  }
  EXPECT_THAT(items(page.List2), ElementsAre("10.0.0.1"));
  EXPECT_THAT(items(page.List1), ElementsAre("10.0.0.256", "Example.com"));
  EXPECT_EQ(activity().size(), 10u);  // two statements an entry, none for blanks, and no flag
  EXPECT_EQ(activity()[0], "DELETE FROM myips where IPNumber='10.0.0.1'");
  EXPECT_EQ(activity()[5], "INSERT INTO mydomain (entry) VALUES ('10.0.0.256')");
}

TEST_F(LocalPageTest, ARemovedTextLeavesWhicheverListHoldsIt) {
  insert("mydomain", "entry", {"a.example", "10.0.0.1"});
  insert("myips", "IPNumber", {"10.0.0.1", "10.0.0.2"});
  LocalPage& page = shown();
  page.Command2.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  page.List2.user_choose(0);
  EXPECT_EQ(page.Text1.text(), "10.0.0.1");
  page.Command2.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM myips where IPNumber='10.0.0.1'",
                                      "DELETE FROM mydomain where entry='10.0.0.1'"));
  EXPECT_THAT(items(page.List1), ElementsAre("a.example"));
  EXPECT_THAT(items(page.List2), ElementsAre("10.0.0.2"));
  EXPECT_EQ(page.List2.index(), -1);
}

TEST_F(LocalPageTest, RefreshingEmptiesTheFieldAndShowsWhatOthersWrote) {
  LocalPage& page = shown();
  page.Text1.user_type("typed.example");
  insert("mydomain", "entry", {"new.example"});
  set_option("norelay", 1);
  page.Command3.user_click();
  EXPECT_EQ(page.Text1.text(), "");
  EXPECT_THAT(items(page.List1), ElementsAre("new.example"));
  EXPECT_TRUE(page.acheck.checked());
}

TEST_F(LocalPageTest, TheSwitchesAndTheTransferHaveTheirKeys) {
  expect_switches({{"acheck", "norelay"}, {"checklocalhelo", "checklocalhelo"}, {"nofakedom", "nofakedom"}});
  LocalPage& page = shown();
  EXPECT_THAT(transfer(page.imleft),
              ElementsAre("Local Domain list", "failed: import entry mydomain /none/x.txt"));
  EXPECT_THAT(transfer(page.imright),
              ElementsAre("Local IP list", "failed: import IPNumber myips /none/x.txt"));
}

}  // namespace
}  // namespace zrl
