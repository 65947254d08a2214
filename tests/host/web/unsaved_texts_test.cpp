// What somebody has typed and no act has used is neither left nor replaced without a question.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/web/handler_page.h"
#include "host/web/session_driver.h"

namespace zrl::test {

namespace {

using ::testing::HasSubstr;

std::uint64_t type(SessionDriver& session, std::string_view form, std::string_view field,
                   std::string_view text) {
  const std::uint64_t seq = session.event(form, field, "text", {{"text", text}});
  session.until_done(seq);
  return seq;
}

// Sends the answer to the question that comes.
std::string answered(SessionDriver& session, std::uint64_t seq, std::string_view reply) {
  const json::object box = session.receive("box");
  session.answer(box, reply);
  session.until_done(seq);
  return std::string(box.at("act").as_string()) + ": " + std::string(box.at("text").as_string());
}

TEST(UnsavedTexts, ArePartOfTheQuestionBeforeAPageOrADialogIsLeft) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  type(session, "allcontrols", "Text1", "typed");
  EXPECT_EQ(session.held("allcontrols", "Text1", "unsaved"), true);
  EXPECT_THAT(answered(session, session.open("handlers"), "cancel"), HasSubstr("Leave: What you have typed"));
  EXPECT_TRUE(session.forms.contains("allcontrols"));
  EXPECT_EQ(session.held("allcontrols", "Text1", "text"), "");  // the browser's own text is not told back
  answered(session, session.open("handlers"), "ok");
  EXPECT_TRUE(session.forms.contains("handlers"));

  session.show("allcontrols");
  session.click("allcontrols", "open");
  while (!session.forms.contains("sample")) session.receive("form");
  type(session, "sample", "source", "typed");
  answered(session, session.close_form("sample"), "cancel");
  EXPECT_TRUE(session.forms.contains("sample"));
  session.close_form("sample");
  session.answer(session.receive("box"), "ok");
  EXPECT_EQ(session.receive("closed").at("unsaved"), json::parse(R"(["source"])"));

  session.click("allcontrols", "open");
  while (!session.forms.contains("sample")) session.receive("form");
  type(session, "sample", "source", "used");
  session.click("sample", "apply");
  EXPECT_FALSE(session.receive("closed").contains("unsaved"));
}

TEST(UnsavedTexts, AreUsedByAnActThatReadsThemAndWorks) {
  SessionDriver session(page_catalogue());
  session.show("strings");
  type(session, "strings", "hello", "250 typed");
  type(session, "strings", "bye", "221 typed");
  // Something that reads none of them, and one that would replace them.
  EXPECT_THAT(answered(session, session.click("strings", "Command1"), "cancel"),
              HasSubstr("Reply to HELO and EHLO\r\nReply to QUIT"));
  EXPECT_EQ(session.held("strings", "hello", "unsaved"), true);
  session.until_done(session.click("strings", "updatedb"));
  EXPECT_EQ(session.held("strings", "hello", "unsaved"), false);
  EXPECT_EQ(session.held("strings", "bye", "unsaved"), false);
  EXPECT_FALSE(session.forms.at("strings").at("bye").as_object().contains("setAside"));
  // What is typed back to what stood there loses nothing.
  type(session, "strings", "hello", "250 other");
  type(session, "strings", "hello", "250 typed");
  session.show("domainbw");

  // An act that fails has used nothing.
  type(session, "domainbw", "Text1", "it's");
  session.until_done(session.click("domainbw", "Command2"));
  EXPECT_EQ(session.held("domainbw", "Text1", "unsaved"), true);
  answered(session, session.open("strings"), "ok");
}

TEST(UnsavedTexts, AreSetAsideWhereTheProgramReplacesThem) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  type(session, "allcontrols", "Text1", "typed");
  session.until_done(session.event("allcontrols", "List1", "choose", {{"index", 0}}));
  EXPECT_EQ(session.held("allcontrols", "Text1", "text"), "apple.example");
  EXPECT_EQ(session.held("allcontrols", "Text1", "unsaved"), false);
  EXPECT_EQ(session.held("allcontrols", "Text1", "setAside"), true);
  session.show("handlers");
}

TEST(UnsavedTexts, ArePartOfTheQuestionBeforeTheSessionIsLeft) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  session.leave();
  session.receive("leave");  // there is nothing to ask about
  type(session, "allcontrols", "Text1", "typed");
  const std::uint64_t cancelled = session.leave();
  EXPECT_THAT(answered(session, cancelled, "cancel"), HasSubstr("Leave: What you have typed"));
  // Nothing of it says that the browser may sign out.
  session.click("allcontrols", "open");
  while (true) {
    const auto message = session.receive();
    ASSERT_TRUE(message);
    ASSERT_NE(message->at("type").as_string(), "leave");
    if (message->at("type").as_string() == "form") break;
  }
  // Nor does an open dialog keep it from signing out.
  session.leave();
  session.answer(session.receive("box"), "ok");
  session.receive("leave");
}

TEST(UnsavedTexts, AreNoneInFieldsThatChooseRows) {
  SessionDriver session(page_catalogue());
  session.show("messages");
  for (const char* field : {"filter", "since", "until"}) {
    for (const char* text : {"2026", "2026-01"}) type(session, "messages", field, text);
    EXPECT_FALSE(session.forms.at("messages").at(field).as_object().contains("unsaved")) << field;
    EXPECT_EQ(session.held("messages", field, "choosesRows"), true);
  }
  session.show("strings");  // without a question
}

TEST(UnsavedTexts, OfAScriptAreAskedAboutBeforeAnotherScriptIsChosen) {
  SessionDriver session(page_catalogue());
  session.show("ScriptEngine");
  for (const char* name : {"one", "two"}) {
    type(session, "ScriptEngine", "scriptnamen", name);
    session.until_done(session.click("ScriptEngine", "insertnew"));
  }
  session.until_done(session.click("ScriptEngine", "allscripts"));
  type(session, "ScriptEngine", "scriptsource", "' typed");
  const auto choose = [&] { return session.event("ScriptEngine", "scriptnamen", "choose", {{"index", 0}}); };
  EXPECT_THAT(answered(session, choose(), "cancel"), HasSubstr("Discard: "));
  EXPECT_EQ(session.held("ScriptEngine", "scriptnamen", "text"), "two");
  answered(session, choose(), "ok");
  EXPECT_EQ(session.held("ScriptEngine", "scriptnamen", "text"), "one");
  EXPECT_EQ(session.held("ScriptEngine", "scriptsource", "setAside"), true);
}

}  // namespace

}  // namespace zrl::test
