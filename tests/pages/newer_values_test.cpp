// Two people at work on the same options, lists and scripts.
#include <chrono>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pages/lists/mail_page.h"
#include "pages/settings/pop_config_page.h"
#include "pages/settings/strings_page.h"
#include "scripting/script_engine_page.h"
#include "scripting/script_table.h"
#include "service/service_control_page.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// The page of one person; the other one works by the proxy's connection.
template <typename PageType>
class TwoPeople : public testing::Test, public test::ShownPage<PageType> {
 protected:
  TwoPeople() { this->host.guards = true; }
};

class NewerTexts : public TwoPeople<StringsPage> {};

TEST_F(NewerTexts, AnUnchangedFieldIsNotWrittenBackOverANewerValue) {
  StringsPage& page = shown();
  set_string("bye", "221 theirs");
  page.hello.user_type("250 mine");
  page.updatedb.user_click();
  EXPECT_EQ(text_option("hello"), "250 mine");
  EXPECT_EQ(text_option("bye"), "221 theirs");
  EXPECT_EQ(page.bye.text(), "221 theirs");
  EXPECT_THAT(host.boxes, IsEmpty());
  // What nobody else has changed is written as ever, and in its order.
  EXPECT_THAT(activity(), ElementsAre(StartsWith("set_string welcome="), "set_string hello=250 mine",
                                      StartsWith("set_string queue=")));
}

TEST_F(NewerTexts, AChangedFieldAsks) {
  StringsPage& page = shown();
  std::string mine;
  const auto both_change = [&](std::string_view theirs, BoxReply reply) {
    mine = std::string(theirs) + ", mine";
    host.reply = reply;
    host.boxes.clear();
    page.Command1.user_click();
    forget_activity();
    set_string("hello", theirs);
    page.hello.user_type(mine);
    page.updatedb.user_click();
    ASSERT_THAT(host.boxes, SizeIs(1));
    EXPECT_THAT(host.boxes[0].text, HasSubstr("Reply to HELO and EHLO:\r\n" + std::string(theirs)));
    EXPECT_EQ(host.boxes[0].act, "Overwrite");
    EXPECT_EQ(host.boxes[0].other, "Keep the other");
  };
  both_change("250 first", BoxReply::ok);
  EXPECT_EQ(text_option("hello"), mine);
  both_change("250 second", BoxReply::other);
  EXPECT_EQ(text_option("hello"), "250 second");
  EXPECT_EQ(page.hello.text(), "250 second");
  both_change("250 third", BoxReply::cancel);
  EXPECT_EQ(text_option("hello"), "250 third");
  EXPECT_EQ(page.hello.text(), mine);
  EXPECT_THAT(activity(), Contains("failed: not stored hello=" + mine));
  // It is asked again, until somebody decides; what was decided is not asked again.
  host.reply = BoxReply::ok;
  page.updatedb.user_click();
  EXPECT_EQ(text_option("hello"), mine);
  host.boxes.clear();
  page.hello.user_type("250 mine, again");
  page.updatedb.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
  EXPECT_EQ(text_option("hello"), "250 mine, again");
}

TEST_F(NewerTexts, TheSameChangeOrAnEmptiedValueAsksNothing) {
  StringsPage& page = shown();
  set_string("hello", "250 both");
  page.hello.user_type(" 250 both ");
  set_string("bye", "");
  page.bye.user_type("221 mine");
  page.updatedb.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
  EXPECT_EQ(text_option("hello"), "250 both");
  EXPECT_EQ(text_option("bye"), "221 mine");
}

// The answer takes its time; meanwhile the value changes once more.
TEST_F(NewerTexts, WhatChangesDuringTheQuestionIsAskedAboutAgain) {
  StringsPage& page = shown();
  class Interrupted : public test::RecordingHost {
   public:
    BoxReply message_box(const MessageBox& box) override {
      if (boxes.empty()) during();
      return RecordingHost::message_box(box);
    }
    std::function<void()> during;
  } slow;
  slow.guards = true;
  slow.during = [this] { set_string("hello", "250 newest"); };
  Console other(folder.path(), slow);
  register_components(other);
  StringsPage theirs(other);
  theirs.initialise();
  set_string("hello", "250 newer");
  theirs.hello.user_type("250 mine");
  theirs.updatedb.user_click();
  ASSERT_THAT(slow.boxes, SizeIs(2));
  EXPECT_THAT(slow.boxes[1].text, HasSubstr("250 newest"));
  (void)page;
}

TEST_F(NewerTexts, WithoutTheGuardEverythingIsWritten) {
  host.guards = false;
  StringsPage& page = shown();
  set_string("bye", "221 theirs");
  set_string("hello", "250 theirs");
  page.hello.user_type("250 mine");
  page.updatedb.user_click();
  EXPECT_EQ(text_option("hello"), "250 mine");
  EXPECT_EQ(text_option("bye"), "221 2.0.0 thank you for not SPAMMING me");
  EXPECT_THAT(host.boxes, IsEmpty());
}

class NewerPorts : public TwoPeople<ServiceControlPage> {};

TEST_F(NewerPorts, AreNotDeletedBeforeTheQuestion) {
  set_option("listenport", 25);
  set_option("forwardport", 26);
  ServiceControlPage& page = shown();
  set_option("listenport", 2525);
  set_option("forwardport", 2626);
  page.Text3.user_type("27");
  host.reply = BoxReply::cancel;
  page.Command1.user_click();
  EXPECT_EQ(option("listenport"), "2525");
  EXPECT_EQ(page.Text2.text(), "2525");
  EXPECT_EQ(option("forwardport"), "2626");
  EXPECT_EQ(page.Text3.text(), "27");
  host.reply = BoxReply::ok;
  page.Command1.user_click();
  EXPECT_EQ(option("forwardport"), "27");
}

// Both people have the page open, each on a console of their own.
class NewerAccounts : public TwoPeople<PopConfigPage> {
 protected:
  NewerAccounts() {
    other_host.guards = true;
    register_components(other_console);
    execute(
        "INSERT INTO pop3 (entry,password,maxsize,submit,leave) "
        "VALUES ('me,pop.example','secret',7,'D:\\first',0)");
    mine = &shown();
    theirs.initialise();
    for (PopConfigPage* page : {mine, &theirs}) page->userlist.user_choose(0);
  }
  std::string stored(Literal column) { return rows("pop3", column).at(0); }

  PopConfigPage* mine = nullptr;
  test::RecordingHost other_host;
  Console other_console{folder.path(), other_host};
  PopConfigPage theirs{other_console};
};

TEST_F(NewerAccounts, TakeWhatIsUnchangedHereWithoutAQuestion) {
  theirs.subm.user_type("D:\\theirs");
  theirs.leave.user_click();
  theirs.password.user_type("newer");
  theirs.addmod.user_click();
  mine->maxsize.user_type("9");
  mine->forward.user_type("me@home.example");
  mine->addmod.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
  EXPECT_EQ(stored("submit") + stored("password") + stored("leave"), "D:\\theirsnewer1");
  EXPECT_EQ(stored("maxsize") + stored("forward"), "9me@home.example");
  EXPECT_EQ(mine->subm.text(), "D:\\theirs");
  EXPECT_TRUE(mine->leave.checked());
  // The other one has not seen that: a second save of theirs puts nothing back.
  theirs.addmod.user_click();
  EXPECT_EQ(stored("maxsize") + stored("forward"), "9me@home.example");
  EXPECT_THAT(other_host.boxes, IsEmpty());
}

TEST_F(NewerAccounts, AreOverwrittenOnlyIfThePersonSaysSo) {
  theirs.subm.user_type("D:\\theirs");
  theirs.password.user_type("newer");
  theirs.scan.user_click();
  theirs.addmod.user_click();
  mine->subm.user_type("D:\\mine");
  mine->password.user_type("mine");
  host.reply = BoxReply::cancel;
  mine->addmod.user_click();
  ASSERT_THAT(host.boxes, SizeIs(1));
  EXPECT_THAT(host.boxes[0].text,
              testing::EndsWith("me,pop.example:\r\nPick-up folder: D:\\theirs\r\nPassword: ********"));
  EXPECT_EQ(host.boxes[0].act + ", " + host.boxes[0].other, "Overwrite, Keep the other");
  EXPECT_EQ(stored("submit") + stored("password"), "D:\\theirsnewer");
  EXPECT_EQ(mine->subm.text() + mine->password.text(), "D:\\minemine");
  EXPECT_THAT(activity(), Contains("failed: not stored: me,pop.example"));

  host.reply = BoxReply::other;
  mine->subm.user_type("D:\\mine");
  mine->forward.user_type("me@home.example");
  mine->addmod.user_click();
  EXPECT_EQ(stored("submit") + stored("password") + stored("forward"), "D:\\theirsnewerme@home.example");
  EXPECT_EQ(mine->subm.text() + mine->password.text(), "D:\\theirsnewer");

  // What was decided is not asked again, and what comes after it is.
  host.reply = BoxReply::ok;
  host.boxes.clear();
  mine->subm.user_type("D:\\mine");
  mine->addmod.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
  theirs.subm.user_type("D:\\theirs, too");
  theirs.addmod.user_click();
  EXPECT_THAT(other_host.boxes, SizeIs(1));
  EXPECT_EQ(stored("submit") + stored("scan"), "D:\\theirs, too1");
}

TEST_F(NewerAccounts, OfTheSameNameAreAskedAbout) {
  for (PopConfigPage* page : {mine, &theirs}) {
    page->clearnew.user_click();
    page->username.user_type("new");
    page->server.user_type("pop.example");
  }
  theirs.subm.user_type("D:\\theirs");
  theirs.addmod.user_click();
  mine->subm.user_type("D:\\mine");
  host.reply = BoxReply::cancel;
  mine->addmod.user_click();
  EXPECT_THAT(host.boxes, SizeIs(1));
  EXPECT_EQ(rows("pop3", "submit").at(1), "D:\\theirs");
}

class NewerScripts : public testing::Test, public test::ScriptTable<test::ShownPage<ScriptEnginePage>> {
 protected:
  NewerScripts() { host.guards = true; }

  ScriptEnginePage& chosen(std::string_view name) {
    ScriptEnginePage& page = shown();
    page.scriptnamen.user_choose(static_cast<std::int64_t>(page.scriptnamen.items().find(name)));
    return page;
  }
  void they_store(std::string_view position, std::string_view source) {
    execute("DELETE FROM scriptengine WHERE scriptname='check'");
    put("check", position, 0, 1, source);
  }
};

TEST_F(NewerScripts, ASaveDropsNoColleaguesSource) {
  shown();
  put("check", "BODY", 0, 1, "' first");
  ScriptEnginePage& page = chosen("check");
  page.scriptsource.user_type("' mine");
  they_store("BODY", "' theirs");
  host.reply = BoxReply::cancel;
  page.savechunk.user_click();
  EXPECT_THAT(stored("check"), HasSubstr("' theirs"));
  EXPECT_EQ(page.scriptsource.text(), "' mine");
  EXPECT_TRUE(page.savechunk.enabled());
  host.reply = BoxReply::ok;
  page.savechunk.user_click();
  EXPECT_THAT(stored("check"), HasSubstr("' mine"));
  EXPECT_FALSE(page.savechunk.enabled());
  page.scriptsource.user_type("' mine, too");
  they_store("AV", "' theirs, too");
  host.reply = BoxReply::other;
  page.savechunk.user_click();
  EXPECT_THAT(stored("check"), StartsWith("AV 1: ' theirs, too"));
  EXPECT_EQ(page.scriptsource.text(), "' theirs, too");
}

TEST_F(NewerScripts, AnotherPositionDoesNotWriteBackAnOldSource) {
  shown();
  put("check", "BODY", 0, 1, "' first");
  ScriptEnginePage& page = chosen("check");
  they_store("BODY", "' theirs");
  page.sposition.user_choose(static_cast<std::int64_t>(page.sposition.items().find("HEADER")));
  page.savechunk.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
  EXPECT_EQ(stored("check"), "HEADER 1: ' theirs");
  EXPECT_EQ(page.scriptsource.text(), "' theirs");
}

class ChangedLists : public TwoPeople<MailPage> {};

TEST_F(ChangedLists, SayThatOthersHaveChangedThem) {
  insert("whitemail", "entry", {"a@one.example", "b@one.example"});
  MailPage& page = shown();
  ListBox* white = nullptr;
  for (Control* control : page.controls()) {
    if (control->kind() != ControlKind::list_box) continue;
    auto* box = static_cast<ListBox*>(control);
    if (!box->items().empty()) white = box;
  }
  ASSERT_NE(white, nullptr);
  // Looks that come too soon after another one are left out.
  const auto stale = [&] {
    for (int i = 0; i < 20 && !white->stale(); ++i) {
      page.look_for_changes();
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return white->stale();
  };
  EXPECT_FALSE(stale());
  set_string("hello", "something else in the same file");
  EXPECT_FALSE(stale());
  insert("whitemail", "entry", {"c@one.example"});
  EXPECT_EQ(white->items().size(), 2u);
  EXPECT_TRUE(stale());
  white->user_reload();
  EXPECT_EQ(white->items().size(), 3u);
  EXPECT_FALSE(white->stale());
  // One gone and another come: neither their number nor the newest key tells.
  execute("DELETE FROM whitemail WHERE entry='c@one.example'");
  insert("whitemail", "entry", {"d@one.example"});
  EXPECT_TRUE(stale());
  white->user_reload();
  execute("DELETE FROM whitemail WHERE entry='a@one.example'");
  EXPECT_TRUE(stale());
  EXPECT_THAT(activity(), Not(Contains(StartsWith("failed"))));
}

}  // namespace
}  // namespace zrl
