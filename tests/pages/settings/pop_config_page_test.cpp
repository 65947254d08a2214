#include "pages/settings/pop_config_page.h"

#include <gmock/gmock.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class PopConfigPageTest : public testing::Test, public test::ShownPage<PopConfigPage> {
 protected:
  PopConfigPage& shown_with_account() {
    PopConfigPage& page = shown();
    page.username.user_type("me");
    page.server.user_type("pop.example");
    return page;
  }
  // What a field's text becomes in the table.
  std::string stored(TextField PopConfigPage::* field, Literal column, std::string_view text) {
    PopConfigPage& page = shown_with_account();
    (page.*field).user_type(text);
    page.addmod.user_click();
    return rows("pop3", column).at(0);
  }
};

TEST_F(PopConfigPageTest, AnAccountIsAddedWithItsStatementsInOrder) {
  PopConfigPage& page = shown_with_account();
  page.password.user_type("pa55");
  page.leave.user_click();
  page.tagging.user_click();
  page.subjectdelete.user_click();
  page.maxsize.user_type("2000");
  page.subm.user_type("D:\\pickup");
  page.forward.user_type("me@home.example");
  page.spamforward.user_type("spam@home.example");
  page.badmail.user_type("\\\\files\\spam");
  page.addmod.user_click();
  const std::string where = " where entry='me,pop.example'";
  const std::vector<std::string> statements = {
      "INSERT INTO pop3 (entry) VALUES ('me,pop.example')",
      "UPDATE pop3 set leave=1" + where,
      "UPDATE pop3 set spamtobadmail=0" + where,
      "UPDATE pop3 set subjectdelete=1" + where,
      "UPDATE pop3 set maxsize=2000" + where,
      "UPDATE pop3 set scan=0" + where,
      "UPDATE pop3 set submit='D:\\pickup'" + where,
      "UPDATE pop3 set forward='me@home.example'" + where,
      "UPDATE pop3 set spamforward='spam@home.example'" + where,
      "UPDATE pop3 set badmail='\\\\files\\spam'" + where,
      "UPDATE pop3 set [password]='pa55'" + where,
      "UPDATE pop3 set tag='[SPAM]'" + where,
  };
  EXPECT_EQ(activity(), statements);
  EXPECT_THAT(items(page.userlist), ElementsAre("me,pop.example"));

  // Another showing reads it all back.
  PopConfigPage& next = shown();
  next.userlist.user_choose(0);
  EXPECT_EQ(next.username.text(), "me");
  EXPECT_EQ(next.server.text(), "pop.example");
  EXPECT_EQ(next.password.text(), "pa55");
  EXPECT_TRUE(next.leave.checked() && next.tagging.checked() && next.subjectdelete.checked());
  EXPECT_FALSE(next.scan.checked() || next.spamtobadmail.checked());
  EXPECT_EQ(next.maxsize.text(), "2000");
  EXPECT_EQ(next.subm.text(), "D:\\pickup");
  EXPECT_EQ(next.forward.text(), "me@home.example");
  EXPECT_EQ(next.spamforward.text(), "spam@home.example");
  EXPECT_EQ(next.badmail.text(), "\\\\files\\spam");
}

TEST_F(PopConfigPageTest, ThePasswordIsHiddenWhereItIsShownOrKept) {
  PopConfigPage& page = shown_with_account();
  page.password.user_type("pa55");
  page.addmod.user_click();
  EXPECT_THAT(rows("pop3", "password"), ElementsAre("pa55"));
  page.password.user_type("it's pa55");
  page.addmod.user_click();  // fails for the apostrophe
  EXPECT_THAT(rows("pop3", "password"), ElementsAre("pa55"));

  std::vector<std::string> for_everyone;
  const ActivityRecord& record = console.activity();
  for (std::uint64_t i = record.first(); i < record.total(); ++i) {
    for_everyone.emplace_back(record[i].public_text);
    for_everyone.emplace_back(record[i].error);
  }
  EXPECT_THAT(for_everyone, Each(Not(HasSubstr("pa55"))));
  EXPECT_THAT(for_everyone,
              Contains("UPDATE pop3 set [password]='********' where entry='me,pop.example'").Times(2));
}

TEST_F(PopConfigPageTest, SavingAnAccountAgainChangesItsRow) {
  execute(insert_into("pop3", "entry", "other,pop.example"));
  PopConfigPage& page = shown_with_account();
  page.tagging.user_click();
  page.maxsize.user_type("10");
  page.addmod.user_click();
  page.tagging.user_click();
  page.maxsize.user_type("");
  forget_activity();
  page.addmod.user_click();
  EXPECT_EQ(activity().front(), "failed: INSERT INTO pop3 (entry) VALUES ('me,pop.example')");
  EXPECT_EQ(console.activity().failures(), 0U);  // it was meant to fail, so nobody is told
  EXPECT_THAT(activity(), Each(Not(HasSubstr("maxsize"))));
  EXPECT_THAT(rows("pop3", "entry"), ElementsAre("other,pop.example", "me,pop.example"));
  EXPECT_THAT(rows("pop3", "tag"), ElementsAre("", ""));
  EXPECT_THAT(rows("pop3", "maxsize"), ElementsAre("", "10"));
}

TEST_F(PopConfigPageTest, NothingIsStoredWithoutUserNameOrServer) {
  PopConfigPage& page = shown();
  page.addmod.user_click();
  page.username.user_type("me");
  page.addmod.user_click();
  page.username.user_type("");
  page.server.user_type("pop.example");
  page.addmod.user_click();
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(PopConfigPageTest, WhatCannotBeUsedIsStoredAsEmpty) {
  const struct {
    TextField PopConfigPage::* field;
    Literal column;
    const char* text;
    bool kept;
  } cases[] = {
      {&PopConfigPage::forward, "forward", "nobody", false},
      {&PopConfigPage::forward, "forward", "@", true},
      {&PopConfigPage::spamforward, "spamforward", "nobody.example", false},
      {&PopConfigPage::subm, "submit", "/var/pickup", false},
      {&PopConfigPage::subm, "submit", "C:", true},
      {&PopConfigPage::badmail, "badmail", "spam", false},
      {&PopConfigPage::badmail, "badmail", "C:spam", false},
      {&PopConfigPage::badmail, "badmail", "CC:\\spam", false},
      {&PopConfigPage::badmail, "badmail", "\\spam", false},
      {&PopConfigPage::badmail, "badmail", "C:\\", true},
      {&PopConfigPage::badmail, "badmail", "\\\\", true},
      {&PopConfigPage::badmail, "badmail", "C", false},
  };
  for (const auto& [field, column, text, kept] : cases) {
    EXPECT_EQ(stored(field, column, text), kept ? text : "") << text;
  }
  EXPECT_EQ(stored(&PopConfigPage::maxsize, "maxsize", "12"), "12");
  EXPECT_EQ(stored(&PopConfigPage::maxsize, "maxsize", "0 or 1=1"), "12");
  EXPECT_THAT(activity(), Contains(StartsWith("failed: UPDATE pop3 set maxsize=0 or 1=1 where")));
}

TEST_F(PopConfigPageTest, WhatIsRefusedLeavesItsFieldAndIsRecorded) {
  PopConfigPage& page = shown_with_account();
  page.forward.user_type("me@home.example");
  page.spamforward.user_type("nobody");
  page.subm.user_type("/var/pickup");
  page.badmail.user_type("spam");
  page.addmod.user_click();
  EXPECT_EQ(page.forward.text(), "me@home.example");
  EXPECT_EQ(page.spamforward.text() + page.subm.text() + page.badmail.text(), "");
  EXPECT_THAT(activity(), testing::IsSupersetOf({"failed: subm /var/pickup", "failed: spamforward nobody",
                                                 "failed: badmail spam"}));
  EXPECT_THAT(activity(), Not(Contains(StartsWith("failed: forward"))));

  set_option("poptime", 15);
  page.poptime.user_type("often");
  page.setpoptime.user_click();
  EXPECT_EQ(page.poptime.text(), "15");
}

TEST_F(PopConfigPageTest, AnotherAccountsFormIsNeverLeftBehind) {
  execute("INSERT INTO pop3 (entry,password,maxsize,tag,scan) VALUES ('a,b,c.example','first',7,'x',1)");
  execute(insert_into("pop3", "entry", "bare"));
  execute(insert_into("pop3", "entry", "gone,pop.example"));
  PopConfigPage& page = shown();
  page.userlist.user_choose(0);
  EXPECT_EQ(page.username.text() + " at " + page.server.text(), "a,b at c.example");
  EXPECT_TRUE(page.tagging.checked() && page.scan.checked());

  page.userlist.user_choose(1);
  EXPECT_EQ(page.username.text() + " at " + page.server.text(), "bare at ");
  EXPECT_EQ(page.password.text() + page.maxsize.text(), "0");
  EXPECT_FALSE(page.tagging.checked() || page.scan.checked());

  page.userlist.user_choose(0);
  execute(delete_from("pop3", "entry", "gone,pop.example"));
  page.userlist.user_choose(2);
  EXPECT_EQ(page.password.text() + page.maxsize.text(), "");

  page.userlist.user_choose(0);
  page.clearnew.user_click();
  EXPECT_EQ(page.username.text() + page.server.text() + page.password.text() + page.maxsize.text(), "");
  EXPECT_FALSE(page.tagging.checked());
  EXPECT_EQ(page.userlist.index(), -1);
}

TEST_F(PopConfigPageTest, DeletingTakesTheAccountOfTheForm) {
  execute(insert_into("pop3", "entry", "me,pop.example"));
  execute(insert_into("pop3", "entry", "you,pop.example"));
  PopConfigPage& page = shown();
  page.userlist.user_choose(1);
  forget_activity();
  page.deletea.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM pop3 where entry='you,pop.example'"));
  EXPECT_THAT(items(page.userlist), ElementsAre("me,pop.example"));
}

TEST_F(PopConfigPageTest, EmptyFoldersMakeTheMailServersOwnTheCommonOnes) {
  PopConfigPage& page = shown_with_account();
  page.addmod.user_click();
  EXPECT_THAT(activity(), Each(Not(StartsWith("set_string"))));  // there is no mail server

  const auto put = [this](std::string_view name, std::string_view path) {
    console.settings().regwrite_string(console.settings().path_of(std::string("SmtpSvc\\1\\").append(name)),
                                       path);
  };
  put("BadMailDirectory", "C:\\mail\\bad");
  put("PickupDirectory", "C:\\mail\\pickup");
  forget_activity();
  page.addmod.user_click();
  const std::vector<std::string> steps = activity();
  EXPECT_THAT(std::vector(steps.end() - 2, steps.end()),
              ElementsAre("set_string badmail=C:\\mail\\bad", "set_string pickup=C:\\mail\\pickup"));
  EXPECT_THAT(rows("pop3", "submit"), ElementsAre(""));

  put("PickupDirectory", "C:\\other");
  page.subm.user_type("refused, but not empty");
  page.addmod.user_click();
  EXPECT_EQ(text_option("pickup"), "C:\\mail\\pickup");
}

TEST_F(PopConfigPageTest, TheSwitchAndTheIntervalAreOptions) {
  expect_switches({{"enable_pop3", "enable_pop3"}});
  PopConfigPage& page = shown();
  EXPECT_EQ(page.poptime.text(), "5");
  EXPECT_EQ(option("poptime"), "");
  page.poptime.user_type(" 15 ");
  page.setpoptime.user_click();
  EXPECT_EQ(option("poptime"), "15");
  EXPECT_EQ(shown().poptime.text(), "15");
  for (const char* text : {"", "soon", "1.5", "70000"}) {
    PopConfigPage& next = shown();
    next.poptime.user_type(text);
    next.setpoptime.user_click();
    EXPECT_EQ(option("poptime"), "15") << text;
    EXPECT_THAT(activity(), ElementsAre(std::string("failed: set_option poptime=") + text));
  }
}

}  // namespace
}  // namespace zrl
