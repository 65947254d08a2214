#include "pages/lists/mail_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MailPageTest : public testing::Test, public test::ShownPage<MailPage> {};

TEST_F(MailPageTest, AddingClearsTheOtherListAndTheDomainOfTheOppositeDomainList) {
  for (const Literal table : {Literal("blacklist"), Literal("whitelist")}) {
    insert(table, "entry", {"shop.example", "@*shop.example"});
  }
  insert("blackmail", "entry", {"me@shop.example"});
  MailPage& page = shown();
  page.mail.user_type(" Me@Shop.Example ");
  page.addwhite.user_click();
  EXPECT_EQ(page.mail.text(), " me@shop.example ");
  EXPECT_THAT(activity(), ElementsAre("INSERT INTO whitemail (entry) VALUES ('me@shop.example')",
                                      "DELETE FROM blackmail where entry='me@shop.example'",
                                      "DELETE FROM blacklist where entry='shop.example'",
                                      raised("reloadwhite"), raised("reloadauto")));
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("@*shop.example"));
  EXPECT_THAT(items(page.whitel), ElementsAre("me@shop.example"));
  EXPECT_THAT(items(page.blackl), IsEmpty());
  EXPECT_TRUE(page.addwhite.enabled());

  forget_activity();
  page.addblack.user_click();
  EXPECT_THAT(activity(), ElementsAre("INSERT INTO blackmail (entry) VALUES ('me@shop.example')",
                                      "DELETE FROM whitemail where entry='me@shop.example'",
                                      "DELETE FROM whitelist where entry='shop.example'",
                                      raised("reloadblack"), raised("reloadauto")));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("@*shop.example"));
  EXPECT_THAT(items(page.blackl), ElementsAre("me@shop.example"));

  page.addblack.user_click();
  EXPECT_THAT(items(page.blackl), ElementsAre("me@shop.example", "me@shop.example"));
}

TEST_F(MailPageTest, OnlyAWholeDomainLeavesTheDomainListAndTheFlagsAreRaisedAnyway) {
  const struct {
    const char* text;
    std::size_t statements;
  } cases[] = {
      {"", 0}, {"shop.example", 0}, {"me@localhost", 2}, {"a@b@shop.example", 2}, {"me@shop.example", 3},
  };
  MailPage& page = shown();
  for (const auto& [text, statements] : cases) {
    forget_activity();
    page.mail.user_type(text);
    page.addblack.user_click();
    const std::vector<std::string> steps = activity();
    ASSERT_EQ(steps.size(), statements + 2) << text;
    EXPECT_EQ(steps[statements], raised("reloadblack")) << text;
    EXPECT_EQ(steps[statements + 1], raised("reloadauto")) << text;
  }
}

TEST_F(MailPageTest, RemovingTakesTheAddressOffBothListsWhateverItIs) {
  insert("whitemail", "entry", {"a@b.example", "no-address", "a@b.example"});
  insert("blackmail", "entry", {"a@b.example", "c@b.example"});
  MailPage& page = shown();
  EXPECT_THAT(items(page.whitel), ElementsAre("a@b.example", "a@b.example"));
  page.blackl.user_choose(0);
  page.remove.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM blackmail where entry='a@b.example'",
                                      "DELETE FROM whitemail where entry='a@b.example'",
                                      raised("reloadwhite"), raised("reloadblack"), raised("reloadauto")));
  EXPECT_THAT(items(page.blackl), ElementsAre("c@b.example"));
  EXPECT_EQ(page.blackl.index(), 0);
  page.mail.user_type("NO-address");
  page.remove.user_click();
  EXPECT_THAT(rows("whitemail", "entry"), IsEmpty());
}

TEST_F(MailPageTest, ADialogRaisesTwoFlagsAnUpdateNone) {
  put_download("adduserblack.txt", "new@a.example\nboth@a.example\n");
  put_download("deluserblack.txt", "both@a.example\n");
  MailPage& page = shown();
  EXPECT_EQ(dialog_of(page.imleft), "eMail Blacklist: blackmail.txt");
  EXPECT_EQ(dialog_of(page.imright), "eMail Whitelist: whitemail.txt");
  EXPECT_THAT(activity(), ElementsAre(raised("reloadblack"), raised("reloadauto"), raised("reloadwhite"),
                                      raised("reloadauto")));

  console.components().remove(Downloader::program_id);
  forget_activity();
  page.remotelist.user_click();
  EXPECT_EQ(activity().size(), 3U);  // the downloader, and two files
  EXPECT_THAT(items(page.blackl), ElementsAre("new@a.example"));
}

TEST_F(MailPageTest, ALocalUserIsRemovedByItsAddress) {
  insert("localmail", "entry", {"user", "user@mirvan.example"});
  MailPage& page = shown();
  for (const char* text : {"user", " user@mirvan.example"}) {
    page.mail.user_type(text);
    page.remove_local_user();
  }
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM localmail where entry='user@mirvan.example'"));
  EXPECT_THAT(rows("localmail", "entry"), ElementsAre("user"));
}

TEST_F(MailPageTest, TheSwitchIsAnOption) {
  set_option("checkmail", 1);
  MailPage& page = shown();
  EXPECT_TRUE(page.checkmail.checked());
  page.checkmail.user_click();
  EXPECT_EQ(option("checkmail"), "0");
}

}  // namespace
}  // namespace zrl
