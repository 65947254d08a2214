#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/files.h"
#include "host/web/handler_page.h"
#include "host/web/session_driver.h"

// Handlers that wait while the browser goes on.
namespace zrl::test {

namespace {

using Kind = web::Incoming::Kind;

std::string caption(const SessionDriver& session, std::string_view form, std::string_view control) {
  return std::string(session.held(std::string(form), control, "caption").as_string());
}

void until_caption(SessionDriver& session, std::string_view form, std::string_view control,
                   std::string_view wanted) {
  while (caption(session, form, control) != wanted) session.receive("change");
}

TEST(SessionWaiting, AMessageBoxHoldsEverythingElseBack) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::uint64_t asked = session.click("handlers", "ask");
  const json::object first = session.receive("box");
  EXPECT_EQ(first.at("text"), "First?");
  EXPECT_EQ(first.at("style"), 33);
  EXPECT_EQ(first.at("buttons"), json::parse(R"(["ok", "cancel"])"));
  const std::uint64_t counted = session.click("handlers", "count");
  session.send(json::object{{"type", "answer"}, {"id", 99}, {"reply", "ok"}});
  EXPECT_EQ(session.rows("handlers", "list", 0, 1).at("length"), 3);  // windows are answered all the same
  EXPECT_EQ(caption(session, "handlers", "clicks"), "0");

  session.answer(first, "ok");
  EXPECT_EQ(session.receive("unbox").at("id"), first.at("id"));
  // A reload brings the box again; what had waited on the old connection is forgotten.
  session.receive("box");
  session.connect();
  const json::object second = session.receive("box");
  EXPECT_EQ(second.at("text"), "Second?");
  EXPECT_EQ(caption(session, "handlers", "answers"), "yes ");
  session.answer(second, "cancel");
  until_caption(session, "handlers", "answers", "yes no ");
  session.until_done(session.click("handlers", "count"));
  EXPECT_EQ(caption(session, "handlers", "clicks"), "1");
  EXPECT_LT(asked, counted);
}

TEST(SessionWaiting, ABoxThatWasAnsweredDoesNotComeAgain) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::uint64_t asked = session.click("handlers", "ask");
  session.answer(session.receive("box"), "ok");
  session.answer(session.receive("box"), "ok");
  session.until_done(asked);
  session.connect();
  while (const auto message = session.receive()) {
    EXPECT_NE(message->at("type"), "box");
    if (message->at("type") == "files") break;  // the last part of the greeting
  }
  // The next question starts without a reply.
  session.click("handlers", "ask");
  session.answer(session.receive("box"), "cancel");
  session.answer(session.receive("box"), "cancel");
  until_caption(session, "handlers", "answers", "yes yes no no ");
}

// A browser that comes anew owes nothing and is owed nothing: its numbers begin again, and what its last
// connection had sent while a box was open is not run, nor does it take up room.
TEST(SessionWaiting, WhatWaitedOnTheLastConnectionIsForgotten) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "ask");
  session.receive("box");
  for (int i = 0; i < 256; ++i) session.click("handlers", "count");
  session.connect();
  session.receive("box");
  std::uint64_t last = 0;
  for (int i = 0; i < 200; ++i) last = session.click("handlers", "count");
  session.rows("handlers", "list", 0, 1);
  EXPECT_THAT(session.errors, ::testing::IsEmpty());
  session.connect();
  session.answer(session.receive("box"), "ok");
  session.answer(session.receive("box"), "ok");
  until_caption(session, "handlers", "answers", "yes yes ");
  EXPECT_EQ(caption(session, "handlers", "clicks"), "0");
  EXPECT_GT(last, 0u);
}

TEST(SessionWaiting, TheAnswerGetsThroughHoweverMuchWaits) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "ask");
  const json::object first = session.receive("box");
  std::uint64_t last = 0;
  for (int i = 0; i < 300; ++i) last = session.click("handlers", "count");
  EXPECT_EQ(session.until_error(last), "busy");
  EXPECT_THAT(session.errors, ::testing::Each("busy"));
  EXPECT_EQ(session.errors.size(), 44u);
  session.answer(first, "ok");
  session.answer(session.receive("box"), "ok");
  until_caption(session, "handlers", "clicks", "256");
}

TEST(SessionWaiting, AClickThatDestroysIsAskedAboutFirst) {
  SessionDriver session(test_pages());
  session.open("handlers");
  EXPECT_EQ(session.receive("form").at("controls").at("empty").at("destroys"), true);
  const auto length = [&session] { return session.held("handlers", "list", "items").at("length"); };
  const std::uint64_t refused = session.click("handlers", "empty");
  const json::object box = session.receive("box");
  EXPECT_EQ(box.at("title"), "Empty the list");
  EXPECT_EQ(box.at("act"), "Empty the list");
  EXPECT_EQ(box.at("text"), "Delete 3 rows of the logs? This cannot be taken back.");
  session.answer(box, "cancel");
  session.until_done(refused);
  EXPECT_EQ(length(), 3);

  // The number is that of the click; what nobody answered is not done.
  session.until_done(session.click("handlers", "shorten"));
  session.click("handlers", "empty");
  EXPECT_EQ(session.receive("box").at("text"), "Delete 1 row of the logs? This cannot be taken back.");
  session.connect();
  const json::object again = session.receive("box");
  session.answer(again, "ok");
  while (length() != 0) session.receive("change");

  // Where nothing is lost, nothing is asked.
  session.until_done(session.click("handlers", "empty"));
}

TEST(SessionWaiting, AQuestionThatNobodyAnswersDestroysNothing) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "empty");
  session.receive("box");
  session.end(web::Incoming::Kind::ended);
  EXPECT_EQ(read_file(session.folder() / "rows-left"), "3");
}

TEST(SessionWaiting, APageMayAskWhileItIsLoaded) {
  SessionDriver session(test_pages());
  const std::uint64_t opened = session.open("boxed");
  const json::object box = session.receive("box");
  EXPECT_EQ(box.at("buttons"), json::parse(R"(["ok"])"));
  EXPECT_EQ(caption(session, "boxed", "state"), "loading");
  session.answer(box, "ok");
  session.until_done(opened);
  EXPECT_EQ(caption(session, "boxed", "state"), "loaded");
}

TEST(SessionWaiting, EventsRunInTheirOrderWhenAHandlerLetsThem) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::uint64_t pumped = session.click("handlers", "pump");
  until_caption(session, "handlers", "state", "1 pumping");
  session.until_done(session.click("handlers", "count"));
  session.until_done(session.click("handlers", "count"));
  const std::uint64_t opened = session.open("boxed");  // waits for the handler's end
  session.click("handlers", "count");                  // and so does what was meant for the next page
  session.rows("handlers", "list", 0, 1);
  EXPECT_EQ(caption(session, "handlers", "clicks"), "2");
  session.make_file("go");
  session.until_done(pumped);
  EXPECT_EQ(caption(session, "handlers", "state"), "pumped");
  session.answer(session.receive("box"), "ok");
  session.until_done(opened);
  session.receive("error");
  EXPECT_THAT(session.errors, ::testing::ElementsAre("no_form"));
  EXPECT_FALSE(session.forms.contains("handlers"));
}

TEST(SessionWaiting, HandlersNestOnlySoDeep) {
  SessionDriver session(test_pages());
  session.show("handlers");
  std::uint64_t last = 0;
  for (int i = 0; i < 40; ++i) last = session.click("handlers", "pump");
  until_caption(session, "handlers", "state", "16 pumping");
  session.rows("handlers", "list", 0, 1);
  EXPECT_EQ(caption(session, "handlers", "state"), "16 pumping");
  session.make_file("go");
  session.until_done(last);
  until_caption(session, "handlers", "state", "pumped");
}

TEST(SessionWaiting, WaitingServesTheBrowser) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::uint64_t paused = session.click("handlers", "pause");
  until_caption(session, "handlers", "state", "pausing");
  session.until_done(session.click("handlers", "count"));
  EXPECT_EQ(caption(session, "handlers", "state"), "pausing");
  session.until_done(paused);
  EXPECT_EQ(caption(session, "handlers", "state"), "paused");
}

TEST(SessionWaiting, AModalDialogCoversItsPage) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::uint64_t shown = session.click("handlers", "dialog");
  const json::object form = session.receive("form");
  EXPECT_EQ(form.at("form"), "counting");
  EXPECT_EQ(form.at("dialog"), true);
  EXPECT_EQ(form.at("modal"), true);
  EXPECT_EQ(session.until_error(session.click("handlers", "count")), "busy");
  const std::uint64_t opened = session.open("allcontrols");
  session.until_done(session.click("counting", "add"));
  EXPECT_EQ(caption(session, "counting", "count"), "1");

  // A dialog on the dialog covers that one.
  const std::uint64_t again = session.click("counting", "again");
  EXPECT_EQ(session.receive("form").at("form"), "counting#2");
  EXPECT_EQ(session.until_error(session.click("counting", "add")), "busy");
  EXPECT_EQ(session.until_error(session.close_form("counting")), "busy");
  const std::uint64_t left = session.click("counting#2", "leave");
  EXPECT_EQ(session.receive("closed").at("form"), "counting#2");
  session.until_done(left);
  session.until_done(again);

  EXPECT_EQ(caption(session, "handlers", "state"), "opening");
  session.close_form("counting");
  session.until_done(shown);
  EXPECT_EQ(caption(session, "handlers", "state"), "opened");
  session.until_done(opened);
  EXPECT_TRUE(session.forms.contains("allcontrols"));
}

TEST(SessionWaiting, DialogsNestOnlySoDeep) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "dialog");
  std::string top(session.receive("form").at("form").as_string());
  for (int i = 2; i <= 8; ++i) {
    session.click(top, "again");
    top = session.receive("form").at("form").as_string();
  }
  EXPECT_EQ(top, "counting#8");
  session.until_done(session.click(top, "again"));
  EXPECT_EQ(session.forms.size(), 9u);
}

TEST(SessionWaiting, AModelessDialogStandsBesideItsPage) {
  SessionDriver session(test_pages(), true);
  session.show("handlers");
  session.until_done(session.click("handlers", "dialog"));
  EXPECT_EQ(caption(session, "handlers", "state"), "opened");
  session.until_done(session.click("counting", "add"));
  session.until_done(session.click("handlers", "count"));
  session.until_done(session.click("counting", "leave"));
  EXPECT_FALSE(session.forms.contains("counting"));
  // The page takes its dialogs along.
  session.until_done(session.click("handlers", "dialog"));
  session.connect();
  session.until_done(session.click("counting", "add"));
  session.show("allcontrols");
  EXPECT_EQ(session.forms.size(), 1u);
}

TEST(SessionWaiting, TimersTickButNotWithinThemselves) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.until_done(session.click("handlers", "ticking"));
  until_caption(session, "handlers", "ticks", "3");
  session.until_done(session.click("handlers", "ticking"));
  const std::string ticks = caption(session, "handlers", "ticks");
  session.until_done(session.click("handlers", "pause"));
  EXPECT_EQ(caption(session, "handlers", "ticks"), ticks);

  session.until_done(session.click("handlers", "ticking"));
  session.click("handlers", "ask");
  json::object box = session.receive("box");
  const std::string before = caption(session, "handlers", "ticks");
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  session.rows("handlers", "list", 0, 1);
  EXPECT_EQ(caption(session, "handlers", "ticks"), before);
}

TEST(SessionWaiting, AReloadFindsThePageAsItWas) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.until_done(session.event("handlers", "shouted", "text", {{"text", "kept"}}));
  session.click("handlers", "dialog");
  session.receive("form");
  session.until_done(session.click("counting", "add"));
  session.connect();
  while (session.forms.size() < 2) session.receive("form");
  EXPECT_EQ(session.held("handlers", "shouted", "text"), "KEPT");
  EXPECT_EQ(caption(session, "counting", "count"), "1");
  session.until_done(session.close_form("counting"));
}

TEST(SessionWaiting, AnEndedSessionLeavesItsPageInOrder) {
  for (const char* last_act : {"count", "ask", "dialog"}) {
    SessionDriver session(test_pages());
    session.show("handlers");
    session.click("handlers", last_act);
    session.end(Kind::ended);
    EXPECT_TRUE(std::filesystem::exists(session.folder() / "handlers-left")) << last_act;
  }
  // A question that nobody answers is answered with no.
  {
    SessionDriver session(test_pages());
    session.show("handlers");
    session.click("handlers", "ask");
    session.receive("box");
    session.end(Kind::ended);
    EXPECT_EQ(read_file(session.folder() / "handlers-left"), "left no no ");
  }
  // A running action is let run, unless the program is being stopped.
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "pump");
  until_caption(session, "handlers", "state", "1 pumping");
  session.end(Kind::stopping);
  EXPECT_TRUE(std::filesystem::exists(session.folder() / "handlers-left"));
}

TEST(SessionWaiting, APageThatCannotBeMadeIsRefused) {
  SessionDriver session(test_pages());
  session.show("handlers");
  EXPECT_EQ(session.until_error(session.open("broken")), "refused");
  EXPECT_TRUE(session.forms.empty());
}

}  // namespace

}  // namespace zrl::test
