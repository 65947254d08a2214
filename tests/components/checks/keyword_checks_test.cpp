// The checks of keywords over the real database, run as the plug-in host runs them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/check_plugin.h"
#include "core/text/base64.h"
#include "core/text/error.h"
#include "core/text/reply_texts.h"
#include "support/installed_console.h"

namespace zrl::checks {
namespace {

using testing::Contains;

class KeywordChecksTest : public testing::Test, public test::InstalledConsole {
 protected:
  std::string body(std::string_view text) { return ask(checks::body_stream, "BODYSTREAM", text); }
  std::string subject(std::string_view text) {
    return ask(checks::subject, "HEADER", "From: a@b.example\r\nSubject: " + std::string(text) + "\r\n");
  }
  std::string ask(std::string_view check, std::string_view position, std::string_view text) {
    return console.components().create<PluginHost>()->call_module(check, position, "SEND", text);
  }
};

TEST_F(KeywordChecksTest, TheBodyIsRefusedForItsKeywordsAndExpressions) {
  EXPECT_EQ(body("buy viagra"), "");
  execute(insert_into("words", "entry", "viagra"));
  execute(insert_into("words", "entry", "REGEX[c[i1]a(l|1)is]"));
  execute("INSERT INTO words (entry) VALUES ('')");  // by another program
  execute(insert_into("swords", "entry", "clean"));
  EXPECT_EQ(body("Buy VIAGRA"), "550 5.1.0 rejected - your body is not allowed: viagra");
  EXPECT_EQ(body("buy C1a1is"),
            "550 5.1.0 rejected - your body is not allowed: REGEX[c[i1]a(l|1)is] (C1a1is)");
  EXPECT_EQ(body("a clean text"), "");
}

TEST_F(KeywordChecksTest, AnExpressionThatIsNotWellFormedStopsNoOther) {
  execute(insert_into("words", "entry", "REGEX[(]"));
  execute(insert_into("words", "entry", "REGEX[spam]"));
  EXPECT_EQ(body("spam"), "550 5.1.0 rejected - your body is not allowed: REGEX[spam] (spam)");
  EXPECT_THAT(activity(), Contains("failed: regex_match REGEX[(]"));
}

TEST_F(KeywordChecksTest, TheSubjectIsRefusedForItsKeywords) {
  execute(insert_into("swords", "entry", "casino"));
  execute(insert_into("swords", "entry", "=?koi8-r?"));
  const std::string refusal(replies::subject_not_allowed);
  EXPECT_EQ(subject("Online CASINO"), refusal + ": casino");
  EXPECT_EQ(subject("=?utf-8?b?" + base64_encode("Casino") + "?="), refusal + ": casino");
  EXPECT_EQ(subject("=?koi8-r?q?=F0?="), refusal + ": =?koi8-r?");
  EXPECT_EQ(subject("hello\r\nX-Other: casino"), "");
}

TEST_F(KeywordChecksTest, TheWhiteListLetsASubjectPassOnlyWhileItIsOn) {
  execute(insert_into("swords", "entry", "casino"));
  execute(insert_into("subjectwhite", "entry", "[my list]"));
  set_option("checkshortsubject", 1);
  set_option("checklongsubject", 1);
  const std::string mail = "[My List] casino " + std::string(200, 'x');
  EXPECT_NE(subject(mail), "");
  set_option("enablesubjectwhite", 1);
  EXPECT_EQ(subject(mail), "");
  EXPECT_NE(subject("casino"), "");
}

TEST_F(KeywordChecksTest, ConspicuousSubjectsAreRefusedByTheRulesThatAreOn) {
  std::string longest;
  for (int i = 0; i < 110; ++i) longest += "\u00e4";
  const struct {
    const char* option;
    int value;
    std::string passes;
    std::string refused;
    std::string_view reply;
  } cases[] = {
      {"checklongsubject", 1, longest, longest + "x", replies::subject_too_long},
      {"checkshortsubject", 1, "x", " \t ", replies::subject_empty},
      {"subjectspace", 5, "a b c d e f g h    i", "a     b", replies::subject_many_spaces},
      {"subjectspace", 3, "a  b", "a \t b", replies::subject_many_spaces},
  };
  for (const auto& [option, value, passes, refused, reply] : cases) {
    EXPECT_EQ(subject(refused), "") << option;
    set_option(option, value);
    EXPECT_EQ(subject(refused), reply) << option;
    EXPECT_EQ(subject(passes), "") << option;
    set_option(option, 0);
  }
  set_option("subjectspace", 2);  // too few to be a rule
  EXPECT_EQ(subject("a  b"), "");
}

TEST_F(KeywordChecksTest, WhatCannotRunRaisesAnError) {
  EXPECT_THROW(ask("no.such.check", "BODY", "text"), Error);
  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:none/proxy.db");
  EXPECT_THROW(body("text"), Error);
  EXPECT_THROW(subject("text"), Error);
}

// A check that can't be used.
class Unusable : public CheckPlugin {
 public:
  int info() override { return 0; }
  bool initmodule(const MessageContext&) override { throw Error(error_number::invalid_call, "no use"); }
  void send(std::string_view, std::string_view, std::string_view) override {}
  std::string send() const override { return "found"; }
};

TEST_F(KeywordChecksTest, ACheckThatIsNotUsableAnswersNothing) {
  console.components().add<CheckPlugin>("unusable.check", [] { return std::make_shared<Unusable>(); });
  EXPECT_EQ(ask("unusable.check", "BODY", "text"), "");
}

}  // namespace
}  // namespace zrl::checks
