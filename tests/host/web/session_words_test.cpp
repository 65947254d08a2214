// What the browser is told in words: sentences of acts, hints, entries of lists.
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue/catalogue.h"
#include "host/web/session_driver.h"

namespace zrl::test {

namespace {

using testing::HasSubstr;
using testing::Not;

class SessionWordsTest : public testing::Test {
 protected:
  std::uint64_t type(std::string_view form, std::string_view control, std::string_view text) {
    return session.event(form, control, "text", {{"text", text}});
  }

  // The hits of a whole search, in however many answers they come.
  json::value found(std::string_view text) {
    json::array hits;
    json::object asked{{"type", "find"}, {"request", 7}, {"text", text}};
    while (true) {
      session.send(asked);
      const json::object answer = session.receive("entries");
      EXPECT_EQ(answer.at("request"), 7);
      for (const json::value& hit : answer.at("hits").as_array()) hits.push_back(hit);
      if (answer.at("next").is_null()) return hits;
      asked["from"] = answer.at("next");
    }
  }

  std::string audit_log() const {
    std::ifstream file(session.audit_file(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  SessionDriver session{page_catalogue()};
};

TEST_F(SessionWordsTest, AnActBringsItsSentenceAndTheShowingOfAPageNothing) {
  session.open("domainbw");
  json::object activity = session.receive("activity");
  EXPECT_EQ(activity.at("said"), json::array());
  EXPECT_EQ(activity.at("entries").at(0).at("routine"), true);
  session.show("wbuser");
  EXPECT_THAT(audit_log(), Not(HasSubstr("version")));

  session.until_done(type("wbuser", "mail", "nobody"));
  session.click("wbuser", "addblack");
  activity = session.receive("activity");
  EXPECT_EQ(activity.at("said"),
            json::parse(R"([{"text": "Nothing stored: an address needs an at sign", "tone": "neutral"}])"));
  // The flag that the page raises nevertheless is an act of the person.
  EXPECT_FALSE(activity.at("entries").at(0).as_object().contains("routine"));

  session.show("domainbw");
  session.until_done(type("domainbw", "Text1", "spam.example"));
  session.click("domainbw", "Command3");
  activity = session.receive("activity");
  EXPECT_EQ(activity.at("said"),
            json::parse(R"([{"text": "spam.example added to the domain black list", "tone": "good"}])"));
  session.until_done(session.click("domainbw", "refrall"));
  EXPECT_THAT(audit_log(), HasSubstr("INSERT INTO blacklist"));
  EXPECT_THAT(audit_log(), Not(HasSubstr("version")));
}

TEST_F(SessionWordsTest, AFieldBringsItsHintAsSoonAsItIsAnother) {
  session.show("domainbw");
  EXPECT_TRUE(session.held("domainbw", "Text1", "hint").is_null());
  EXPECT_FALSE(session.forms.at("domainbw").at("Command3").as_object().contains("hint"));
  session.until_done(type("domainbw", "Text1", "http://spam.example"));
  EXPECT_EQ(session.held("domainbw", "Text1", "hint"),
            json::parse(R"({"text": "This is a web address; only its domain belongs here",
                            "unfinished": false})"));
  session.until_done(type("domainbw", "Text1", "spam"));
  EXPECT_EQ(session.held("domainbw", "Text1", "hint").at("unfinished"), true);
  session.until_done(type("domainbw", "Text1", "spam.example"));
  EXPECT_TRUE(session.held("domainbw", "Text1", "hint").is_null());
  // The page does what it always did.
  session.until_done(type("domainbw", "Text1", "http://spam.example"));
  session.until_done(session.click("domainbw", "Command3"));
  EXPECT_EQ(session.held("domainbw", "List2", "items").at("length"), 1);
}

TEST_F(SessionWordsTest, AClickThatThePageWouldRefuseIsExplainedAndTheTextStays) {
  session.show("ipbw");
  session.until_done(type("ipbw", "ip", "192.0.2.300"));
  const std::uint64_t click = session.click("ipbw", "Command3");
  const json::object error = session.receive("error");
  EXPECT_EQ(error.at("seq"), click);
  EXPECT_EQ(error.at("code"), "unfit");
  EXPECT_EQ(error.at("form"), "ipbw");
  EXPECT_EQ(error.at("control"), "ip");
  EXPECT_EQ(error.at("text"), "Four numbers from 0 to 255 make an IP number");
  session.until_done(type("ipbw", "ip", "192.0.2.30"));
  EXPECT_EQ(session.held("ipbw", "ip", "text"), "");  // nothing was put in the place of what was typed
  session.until_done(session.click("ipbw", "Command3"));
  EXPECT_EQ(session.held("ipbw", "blackl", "items").at("length"), 1);
}

TEST_F(SessionWordsTest, EntriesAreFoundWhereTheyAreShown) {
  for (const auto& [page, field, text, button] :
       {std::array{"wbuser", "mail", "a@needle.example", "addwhite"},
        std::array{"domainbw", "Text1", "needle.example", "Command3"},
        std::array{"keywords", "Text1", "the <b>needle</b>", "Command2"}}) {
    session.show(page);
    session.until_done(type(page, field, text));
    session.until_done(session.click(page, button));
  }
  EXPECT_EQ(found("NEEDLE"), json::parse(R"([
      {"page": "domainbw", "control": "List2", "frame": "Black list", "text": "needle.example"},
      {"page": "wbuser", "control": "whitel", "frame": "White list", "text": "a@needle.example"},
      {"page": "keywords", "control": "List2", "frame": "Body keywords", "text": "the <b>needle</b>"}])"));
  EXPECT_EQ(found(""), json::array());
  session.send(json::parse(R"({"type": "find", "request": 8, "text": "x", "from": {"list": -1, "row": 0}})"));
  EXPECT_EQ(session.receive("error").at("code"), "malformed");
  session.send(json::object{{"type", "find"}, {"request", 9}, {"text", std::string(257, 'x')}});
  EXPECT_EQ(session.receive("error").at("code"), "malformed");
}

TEST_F(SessionWordsTest, TheLanguageChangesAtOnceAndIsAudited) {
  session.show("domainbw");
  session.send(json::parse(R"({"type": "language", "language": "german", "seq": 100})"));
  EXPECT_EQ(session.receive("activity").at("said").at(0).at("text"), "Die Sprache ist Deutsch");
  EXPECT_EQ(session.receive("hello").at("language"), "german");
  session.receive("form");
  EXPECT_EQ(found("x"), json::array());
  EXPECT_THAT(audit_log(), HasSubstr("language=german"));
  session.send(json::parse(R"({"type": "language", "language": "klingon", "seq": 101})"));
  EXPECT_EQ(session.receive("error").at("code"), "malformed");
}

}  // namespace

}  // namespace zrl::test
