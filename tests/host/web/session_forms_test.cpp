#include <chrono>
#include <csignal>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "core/text/files.h"
#include "host/web/audit.h"
#include "host/web/handler_page.h"
#include "host/web/session_driver.h"

// What the browser is told about forms, lists, and the record.
namespace zrl::test {

namespace {

using std::chrono::milliseconds;

// All messages up to the one that tells that the event has been handled.
std::vector<json::object> messages_until_done(SessionDriver& session, std::uint64_t seq) {
  std::vector<json::object> messages;
  while (auto message = session.receive()) {
    if (message->at("type") == "done" && message->at("seq") == seq) return messages;
    messages.push_back(std::move(*message));
  }
  return messages;
}

json::object changes_of(SessionDriver& session, std::uint64_t seq) {
  json::object changes;
  for (const json::object& message : messages_until_done(session, seq)) {
    if (message.at("type") != "change") continue;
    for (const auto& [control, changed] : message.at("controls").as_object()) changes[control] = changed;
  }
  return changes;
}

std::string audit_log(const SessionDriver& session) {
  std::ifstream file(session.audit_file(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(SessionForms, AFormIsShownWhole) {
  SessionDriver session(test_pages());
  session.open("allcontrols");
  const json::object form = session.receive("form");
  EXPECT_EQ(form.at("caption"), "All controls");
  EXPECT_EQ(form.at("dialog"), false);
  const json::object& controls = form.at("controls").as_object();
  EXPECT_EQ(controls.at("Text1"),
            json::parse(R"({"kind": "TextField", "text": "", "toolTip": "Its change shows in the label below",
                            "enabled": true, "visible": true, "multiLine": false, "fixedPitch": false,
                            "secret": false, "placeholder": "Type here", "label": "Label1"})"));
  EXPECT_EQ(controls.at("Option2").at("group"), "Frame3");
  EXPECT_EQ(controls.at("Combo2").at("editable"), true);
  EXPECT_EQ(controls.at("List1").at("items").at("length"), 3);
  EXPECT_FALSE(controls.at("Frame1").as_object().contains("label"));
  // The layout's shape; the first child is a control, the second a frame with rows that grow.
  const json::array& column = form.at("layout").at("column").as_array();
  EXPECT_EQ(column[0], json::parse(R"({"control": "headline"})"));
  EXPECT_EQ(column[1].at("frame"), "Frame1");
  EXPECT_EQ(column[1].at("content").at("column").at(0).at("row").at(0),
            json::parse(R"({"control": "Text1", "grow": true})"));
}

TEST(SessionForms, OnlyWhatChangesIsSentAndNothingThatTheBrowserKnows) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  EXPECT_EQ(changes_of(session, session.event("allcontrols", "Text1", "text", {{"text", "héllo"}})),
            json::parse(R"({"Text1": {"unsaved": true}, "echo": {"caption": "You typed: héllo"}})"));
  EXPECT_EQ(changes_of(session, session.click("allcontrols", "Check1")),
            json::parse(R"({"Check1": {"value": 0}, "Frame3": {"enabled": false}})"));
  EXPECT_EQ(changes_of(session, session.event("allcontrols", "HScroll1", "scroll", {{"value", 0}})),
            json::object());
  EXPECT_EQ(changes_of(session, session.event("allcontrols", "Combo2", "choose", {{"index", 1}})),
            json::parse(R"({"Combo2": {"text": "second", "index": 1},
                            "echo": {"caption": "Chosen second"}})"));
}

TEST(SessionForms, TextThatAHandlerChangesComesBack) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const auto type = [&](std::string_view control, std::string_view text) {
    return changes_of(session, session.event("handlers", control, "text", {{"text", text}}));
  };
  EXPECT_EQ(type("shouted", "abc"), json::parse(R"({"shouted": {"text": "ABC", "unsaved": true}})"));
  EXPECT_EQ(type("shouted", "ABC"), json::object());
  // The text is what it was before, but not what the browser shows.
  EXPECT_EQ(type("reset", "gone"), json::parse(R"({"reset": {"text": ""}})"));
}

TEST(SessionForms, MarksOfASourceTextAreToldWhenTheyChange) {
  SessionDriver session(test_pages());
  session.open("handlers");
  const json::object code = session.receive("form").at("controls").at("code").as_object();
  EXPECT_EQ(code.at("source"), true);
  EXPECT_EQ(code.at("marks"), json::array());
  const auto type = [&](std::string_view text) {
    return changes_of(session, session.event("handlers", "code", "text", {{"text", text}}));
  };
  EXPECT_EQ(type("wrong"), json::parse(R"({"code": {"marks": [{"name": "code", "line": 1, "column": 2,
                                          "text": "wröng", "elsewhere": false}], "unsaved": true}})"));
  EXPECT_EQ(type("wrong again"), json::object());
  EXPECT_EQ(type("right"), json::parse(R"({"code": {"marks": []}})"));
}

TEST(SessionForms, WhatIsRefusedIsToldAgainAsItIs) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  struct Case {
    const char* control;
    const char* event;
    json::object more;
  };
  const Case cases[] = {{"disabled", "click", {}},
                        {"hidden", "text", {{"text", "x"}}},
                        {"Text1", "click", {}},
                        {"List1", "choose", {{"index", 3}}},
                        {"List1", "choose", {{"index", -1}}},
                        {"HScroll1", "scroll", {{"value", 301}}},
                        {"Timer1", "click", {}},
                        {"nowhere", "click", {}}};
  for (const Case& tried : cases) {
    EXPECT_EQ(session.until_error(session.event("allcontrols", tried.control, tried.event, tried.more)),
              "refused")
        << tried.control << " " << tried.event;
  }
  session.forms["allcontrols"]["hidden"].as_object()["text"] = "x";
  session.until_error(session.event("allcontrols", "hidden", "text", {{"text", "x"}}));
  EXPECT_EQ(session.held("allcontrols", "hidden", "text"), "");
  EXPECT_EQ(session.until_error(session.click("nowhere", "Text1")), "no_form");
  EXPECT_EQ(session.until_error(session.open("nowhere")), "unknown_page");
  EXPECT_EQ(session.until_error(session.close_form("allcontrols")), "refused");
}

TEST(SessionForms, ListsAreSentByWindows) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  EXPECT_EQ(session.rows("allcontrols", "List1", 1, 5).at("rows"),
            json::parse(R"(["banana.example", "cherry.example"])"));

  session.until_done(session.click("allcontrols", "fill"));
  const json::value items = session.held("allcontrols", "List1", "items");
  EXPECT_EQ(items.at("length"), 1'000'000);
  json::object window = session.rows("allcontrols", "List1", 999'990, 100'000);
  EXPECT_EQ(window.at("revision"), items.at("revision"));
  EXPECT_EQ(window.at("rows").as_array().size(), 10u);
  EXPECT_FALSE(window.contains("indexes"));
  EXPECT_EQ(session.rows("allcontrols", "List1", 0, 100'000).at("rows").as_array().size(), 500u);

  window = session.rows("allcontrols", "List1", 270, 2, "OST99999");
  EXPECT_EQ(window.at("length"), 11);
  EXPECT_EQ(window.at("start"), 11);
  EXPECT_EQ(window.at("rows"), json::array());
  window = session.rows("allcontrols", "List1", 9, 100, "OST99999");
  EXPECT_EQ(window.at("rows"), json::parse(R"(["host999998.example", "host999999.example"])"));
  EXPECT_EQ(window.at("indexes"), json::parse("[999998, 999999]"));

  session.until_done(session.click("allcontrols", "clear"));
  EXPECT_EQ(session.rows("allcontrols", "List1", 0, 100, "OST99999").at("length"), 0);
}

TEST(SessionForms, ListsAreSentInOtherOrdersAndRowsAreFoundInThem) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  for (const char* entry : {"mail.banana.example", "Aardvark.test", "banana.example", "zoo@banana.example"}) {
    session.event("allcontrols", "Text1", "text", {{"text", entry}});
    session.until_done(session.click("allcontrols", "add"));
  }
  const auto view = [&session](std::string_view more) {
    session.send(json::parse(R"({"type": "rows", "form": "allcontrols", "control": "List1", "request": 1,
                                 "start": 0, "count": 9)" +
                             std::string(more) + "}"));
    return session.receive("rows");
  };
  EXPECT_EQ(view(R"(, "filter": "", "order": "domain")").at("rows"),
            json::parse(R"(["apple.example", "banana.example", "banana.example", "mail.banana.example",
                            "zoo@banana.example", "cherry.example", "Aardvark.test"])"));
  const json::object sorted = view(R"(, "filter": "AN", "order": "text", "find": " Banana.Example ")");
  EXPECT_EQ(sorted.at("rows"), json::parse(R"(["banana.example", "banana.example", "mail.banana.example",
                                               "zoo@banana.example"])"));
  EXPECT_EQ(sorted.at("indexes"), json::parse("[1, 5, 3, 6]"));
  EXPECT_EQ(sorted.at("order"), "text");
  EXPECT_EQ(sorted.at("found"), json::parse(R"({"index": 5, "position": 1})"));
  EXPECT_EQ(view(R"(, "filter": "moon", "order": "added", "index": 2)").at("found"),
            json::parse(R"({"index": 2, "position": null})"));
  EXPECT_EQ(view(R"(, "filter": "", "find": "moon")").at("found"), nullptr);
  EXPECT_FALSE(view(R"(, "filter": "")").contains("found"));
}

TEST(SessionForms, SeveralEntriesAreRemovedAsTheirPlacesOnViewSay) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  session.until_done(session.click("allcontrols", "fill"));
  const auto remove = [&session](std::uint64_t revision, std::string_view view) {
    json::object more = json::parse(view).as_object();
    more["revision"] = revision;
    return session.event("allcontrols", "List1", "remove", more);
  };
  const auto revision = [&session] {
    return session.held("allcontrols", "List1", "items").at("revision").to_number<std::uint64_t>();
  };
  const std::uint64_t stale = revision();
  // The first row of the view and its last two.
  constexpr std::string_view three =
      R"({"filter": "host99999", "order": "text", "ranges": [[0, 0], [9, 200]]})";
  const auto agree = [&session](std::uint64_t removal, std::string_view reply) {
    const json::object box = session.receive("box");
    EXPECT_EQ(box.at("text"), "Remove 3 entries from \"Lists\"?");
    EXPECT_EQ(box.at("act"), "Remove");
    session.answer(box, reply);
    session.until_done(removal);
  };
  agree(remove(stale, three), "cancel");
  EXPECT_EQ(session.held("allcontrols", "List1", "items").at("length"), 1'000'000);
  agree(remove(stale, three), "ok");
  EXPECT_EQ(session.held("allcontrols", "List1", "items").at("length"), 999'997);
  EXPECT_EQ(session.rows("allcontrols", "List1", 0, 3, "host99999").at("rows"),
            json::parse(R"(["host999990.example", "host999991.example", "host999992.example"])"));

  EXPECT_EQ(session.until_error(remove(stale, R"({"filter": "", "ranges": [[0, 0]]})")), "refused");
  EXPECT_EQ(session.until_error(
                session.event("allcontrols", "List2", "remove",
                              {{"filter", ""}, {"revision", 0}, {"ranges", json::parse("[[0, 0]]")}})),
            "refused");
  for (const char* ranges : {"[[2, 1]]", "[[1, 2], [2, 3]]", "[[-1, 0]]", "[1]", "[[0]]", "7"}) {
    EXPECT_EQ(
        session.until_error(remove(revision(), R"({"filter": "", "ranges": )" + std::string(ranges) + "}")),
        "malformed")
        << ranges;
  }
  EXPECT_EQ(session.held("allcontrols", "List1", "items").at("length"), 999'997);
}

TEST(SessionForms, HostileRowsBecomeValidTexts) {
  SessionDriver session(test_pages());
  session.show("allcontrols");
  const json::array rows = session.rows("allcontrols", "List2", 0, 100).at("rows").as_array();
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(rows[0], "<script>alert(1)</script>");
  EXPECT_EQ(rows[4].as_string(), json::string("zero\0byte", 9));
  EXPECT_EQ(rows[6], "\uFFFD\uFFFD not UTF-8");
  EXPECT_EQ(rows[8].as_string().size(), (16u << 10) + 3);  // cut, with an ellipsis
  EXPECT_EQ(rows[9], "");
  session.send(json::parse(R"({"type": "rows", "form": "allcontrols", "control": "Text1", "request": 7,
                               "start": 0, "count": 1, "filter": ""})"));
  const json::object error = session.receive("error");
  EXPECT_EQ(error.at("code"), "refused");
  EXPECT_EQ(error.at("request"), 7);
}

TEST(SessionForms, WhatAnActionDidIsToldAndRecorded) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.click("handlers", "write_many");
  json::object activity = session.receive("activity");
  EXPECT_EQ(activity.at("total"), 1200);
  EXPECT_EQ(activity.at("first"), 1150);
  EXPECT_EQ(activity.at("failed"), 0);
  EXPECT_EQ(activity.at("page"), "handlers");
  EXPECT_EQ(activity.at("entries").as_array().size(), 50u);
  session.click("handlers", "raise");
  activity = session.receive("activity");
  EXPECT_EQ(activity.at("failed"), 1);
  EXPECT_EQ(activity.at("entries").at(0).at("error"), "raised on purpose");

  session.send(json::parse(R"({"type": "record", "request": 3, "start": 700, "count": 1000})"));
  const json::object record = session.receive("record");
  EXPECT_EQ(record.at("total"), 1201);
  EXPECT_EQ(record.at("entries").as_array().size(), 500u);
  EXPECT_EQ(record.at("entries").at(0).at("text"), "write 700");
}

TEST(SessionForms, TheAuditLogHoldsWritesAndCannotBeForged) {
  SessionDriver session(test_pages());
  session.show("handlers");
  session.until_done(session.click("handlers", "write"));
  session.until_done(session.click("handlers", "read"));
  session.until_done(session.click("handlers", "write_many"));
  const std::string log = audit_log(session);
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1201);
  const std::string first = log.substr(0, log.find('\n'));
  EXPECT_THAT(first, ::testing::EndsWith("Z\tadmin\thandlers\tcomponent\tok\ttwo\\x0alines\\x09and "
                                         "\\x1b[31mred\\x1b[0m \\xe2\\x80\\x8f\uFFFD"));
  EXPECT_THAT(log, ::testing::Not(::testing::HasSubstr("a read")));
  EXPECT_EQ(std::filesystem::status(session.audit_file()).permissions(), std::filesystem::perms(0600));
}

TEST(SessionForms, AnAuditLogThatCannotBeWrittenStopsNothing) {
  SessionDriver session(test_pages());
  session.show("handlers");
  std::filesystem::create_symlink(session.folder() / "elsewhere", session.audit_file());
  session.until_done(session.click("handlers", "write"));
  session.until_done(session.click("handlers", "count"));
  EXPECT_EQ(session.held("handlers", "clicks", "caption"), "1");
  EXPECT_FALSE(std::filesystem::exists(session.folder() / "elsewhere"));
  EXPECT_THAT(session.errors, ::testing::Contains("not_recorded"));

  ActivityRecord record;
  record.succeeded(ActivityRecord::Kind::sql, "lost", 0);
  web::AuditLog full_disk(std::make_shared<web::AuditFile>("/dev/full"), "admin");
  EXPECT_EQ(full_disk.append(record, 0, "handlers"), 1u);
}

TEST(SessionForms, AnAuditLogThatHasToBeWrittenAndCannotRefusesActions) {
  SessionDriver session(test_pages(), false, web::AuditFile::IfUnwritable::refuse);
  session.show("handlers");
  session.until_done(session.click("handlers", "count"));
  std::filesystem::remove(session.audit_file());
  std::filesystem::create_directory(session.audit_file());
  EXPECT_EQ(session.until_error(session.click("handlers", "count")), "no_audit");
  EXPECT_EQ(session.until_error(session.event("handlers", "shouted", "text", {{"text", "x"}})), "no_audit");
  // What is there may be looked at.
  session.show("handlers");
  std::filesystem::remove(session.audit_file());
  session.until_done(session.click("handlers", "count"));
  EXPECT_EQ(session.held("handlers", "clicks", "caption"), "1");
}

TEST(AuditLog, TurnsOverBySizeAndTellsTroubleOnce) {
  TemporaryFolder folder;
  const auto path = folder.path() / "audit.log";
  std::vector<std::string> told;
  web::AuditFile file(path, web::AuditFile::IfUnwritable::carry_on,
                      [&told](std::string_view line) { told.emplace_back(line); }, {.bytes = 100, .kept = 2});
  // Another process appends, and turns over, too.
  web::AuditFile other(path, web::AuditFile::IfUnwritable::carry_on, {}, {.bytes = 100, .kept = 2});
  for (int i = 0; i < 9; ++i) {
    const std::string line(39, static_cast<char>('0' + i));
    EXPECT_TRUE((i % 2 == 0 ? file : other).append(line + "\n"));
  }
  EXPECT_EQ(zrl::read_file(path).substr(0, 1), "8");
  EXPECT_EQ(zrl::read_file(path.string() + ".1"), std::string(39, '6') + "\n" + std::string(39, '7') + "\n");
  EXPECT_EQ(zrl::read_file(path.string() + ".2").substr(0, 1), "4");
  EXPECT_FALSE(std::filesystem::exists(path.string() + ".3"));

  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_FALSE(file.append("lost\n"));
  EXPECT_FALSE(file.append("lost\n"));
  ASSERT_EQ(told.size(), 1u);
  EXPECT_THAT(told[0], ::testing::HasSubstr("cannot be written"));
  std::filesystem::remove(path);
  EXPECT_TRUE(file.append("found\n"));
  EXPECT_EQ(told.size(), 2u);
  EXPECT_THAT(zrl::read_file(path), ::testing::EndsWith("\t2 times, lines could not be written\nfound\n"));
}

TEST(AuditLog, HoldsNoSecretsAndGoesOnBehindATornLine) {
  TemporaryFolder folder;
  const auto file = folder.path() / "audit.log";
  web::AuditLog log(std::make_shared<web::AuditFile>(file), "admin");
  ActivityRecord record;
  record.succeeded(ActivityRecord::Kind::sql, "password='secret'", 0, "password='***'");
  record.failed(ActivityRecord::Kind::sql, "password='secret'", "locked", 0, true, "password='***'");
  EXPECT_EQ(log.append(record, 0, "pop_config"), 2u);
  const std::string lines = zrl::read_file(file);
  EXPECT_THAT(lines, ::testing::HasSubstr("ok\tpassword='***'\n"));
  EXPECT_THAT(lines, ::testing::Not(::testing::HasSubstr("secret")));

  // The disk is full in the middle of a line, and then no longer.
  rlimit limit{};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  const rlimit short_limit{lines.size() + 10, limit.rlim_max};
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &short_limit);
  log.note("pop_config", "file", "torn", "");
  ::setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, before);
  log.note("pop_config", "file", "whole", "");
  const std::string rest = zrl::read_file(file).substr(lines.size());
  EXPECT_EQ(rest.find('\n'), 10u);
  EXPECT_THAT(rest, ::testing::EndsWith("Z\tadmin\tpop_config\tfile\tok\twhole\n"));
}

TEST(SessionForms, MalformedMessagesChangeNothing) {
  SessionDriver session(test_pages());
  session.show("handlers");
  const std::string deep = std::string(100, '[') + std::string(100, ']');
  const std::vector<std::string> messages = {
      "",
      "nonsense",
      "[]",
      "{}",
      deep,
      R"({"type": "event"})",
      R"({"type": 1})",
      R"({"type": "unknown", "seq": 2})",
      R"({"type": "event", "form": "handlers", "control": "count", "event": "click"})",
      R"({"type": "event", "form": "handlers", "control": "count", "event": "click", "seq": 1})",
      R"({"type": "event", "form": "handlers", "control": "count", "event": "click", "seq": -5})",
      R"({"type": "event", "form": "handlers", "control": "count", "event": "click", "seq": 1.5})",
      R"({"type": "event", "form": "handlers", "control": "count", "event": "poke", "seq": 50})",
      R"({"type": "event", "form": "handlers", "control": "list", "event": "choose", "seq": 51})",
      R"({"type": "event", "form": "handlers", "control": "reset", "event": "text", "text": 5, "seq": 52})",
      R"({"type": "rows", "form": "handlers", "control": "list", "request": 1, "start": -1, "count": 1})",
      R"({"type": "answer", "id": 1, "reply": "maybe"})",
      "{\"type\": \"open\", \"page\": \"\xff\", \"seq\": 53}",
      R"({"type": "open", "page": "handlers", "seq": 54} more)"};
  for (const std::string& message : messages) {
    session.send_text(message);
    EXPECT_EQ(session.receive("error").at("code"), "malformed") << message;
  }
  EXPECT_EQ(session.violations, 0);
  session.send_text("the twentieth");
  session.receive("error");
  session.until_done(session.click("handlers", "count"));
  EXPECT_EQ(session.violations, 1);
  EXPECT_EQ(session.held("handlers", "clicks", "caption"), "1");
}

TEST(SessionForms, AnotherLanguageBringsAFreshConsole) {
  SessionDriver session(test_pages());
  session.show("handlers");
  EXPECT_EQ(session.language(), "english");
  session.until_done(session.click("handlers", "german"));
  const json::object hello = session.receive("hello");
  EXPECT_EQ(hello.at("language"), "german");
  EXPECT_EQ(hello.at("open"), "handlers");
  EXPECT_EQ(session.receive("form").at("form"), "handlers");
  EXPECT_EQ(session.language(), "german");
  session.show("allcontrols");
}

TEST(SessionForms, CaptionsOfAllPagesAreTold) {
  SessionDriver session(test_pages());
  session.send(json::parse(R"({"type": "captions"})"));
  const json::object pages = session.receive("captions").at("pages").as_object();
  EXPECT_EQ(pages.at("boxed"), json::parse(R"([{"control": "state", "text": "loading"}])"));
  EXPECT_EQ(pages.at("broken"), json::array());
  EXPECT_GT(pages.at("allcontrols").as_array().size(), 40u);
  EXPECT_TRUE(session.forms.empty());
}

}  // namespace

}  // namespace zrl::test
