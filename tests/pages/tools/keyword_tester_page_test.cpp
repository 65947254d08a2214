#include "pages/tools/keyword_tester_page.h"

#include <gmock/gmock.h>

#include "core/text/error.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class KeywordTesterPageTest : public testing::Test, public test::ShownPage<KeywordTesterPage> {
 protected:
  // A plug-in host that answers as told, and writes down what it is asked.
  class Recorder : public PluginHost {
   public:
    explicit Recorder(KeywordTesterPageTest& test) : test_(test) {}
    std::string call_module(std::string_view check, std::string_view position, std::string_view command,
                            std::string_view text) override {
      std::string call(check);
      call.append(" ").append(position).append(" ").append(command).append(" ").append(text);
      test_.calls.push_back(call);
      if (test_.on_call) test_.on_call();
      const auto found = test_.answers.find(check);
      if (found == test_.answers.end()) throw Error(error_number::cannot_create_object, "no such check");
      return found->second;
    }

   private:
    KeywordTesterPageTest& test_;
  };

  KeywordTesterPage& shown_with_recorder() {
    console.components().add<PluginHost>([this] { return std::make_shared<Recorder>(*this); });
    return shown();
  }

  std::vector<std::string> calls;
  std::map<std::string, std::string, std::less<>> answers;
  std::function<void()> on_call;
};

TEST_F(KeywordTesterPageTest, TheBlockListsAreAskedOnlyWhenNoKeywordWasFound) {
  KeywordTesterPage& page = shown_with_recorder();
  page.Text1.user_type("a\r\nb");
  answers = {{"bodystream.checkebodystream", "word"}, {"surbl.plugin", "listed"}};
  page.Command1.user_click();
  EXPECT_EQ(page.Label1.caption(), "word");
  EXPECT_THAT(calls, ElementsAre("bodystream.checkebodystream BODYSTREAM SEND a\r\nb"));

  calls.clear();
  answers["bodystream.checkebodystream"] = "";
  page.Command1.user_click();
  EXPECT_EQ(page.Label1.caption(), "listed");
  EXPECT_THAT(calls, ElementsAre("bodystream.checkebodystream BODYSTREAM SEND a\r\nb",
                                 "surbl.plugin BODY SEND a\r\nb"));
}

TEST_F(KeywordTesterPageTest, ASubjectGetsItsFieldNameOnce) {
  KeywordTesterPage& page = shown_with_recorder();
  answers = {{"proxychecks.subject", "found"}};
  const struct {
    const char* typed;
    const char* asked;
  } cases[] = {{"hello", "Subject: hello"},
               {"", "Subject: "},
               {"Subject", "Subject: Subject"},
               {"sUBJECT:hello", "sUBJECT:hello"},
               {" subject: x", "Subject:  subject: x"}};
  for (const auto& [typed, asked] : cases) {
    calls.clear();
    page.Text1.user_type(typed);
    page.Command2.user_click();
    EXPECT_EQ(page.Text1.text(), asked);
    EXPECT_THAT(calls, ElementsAre(std::string("proxychecks.subject HEADER SEND ") + asked));
    EXPECT_EQ(page.Label1.caption(), "found");
  }
}

TEST_F(KeywordTesterPageTest, TheButtonIsDisabledAndTheLabelEmptyWhileAsking) {
  KeywordTesterPage& page = shown_with_recorder();
  answers = {{"bodystream.checkebodystream", "found"}, {"proxychecks.subject", "found"}};
  int seen = 0;
  on_call = [&] {
    EXPECT_EQ(page.Label1.caption(), "");
    EXPECT_NE(page.Command1.enabled(), page.Command2.enabled());
    ++seen;
  };
  const int yields = host.yields;
  for (Button* button : {&page.Command1, &page.Command2}) {
    button->user_click();
    EXPECT_TRUE(page.Command1.enabled() && page.Command2.enabled());
    EXPECT_EQ(page.Label1.caption(), "found");
  }
  EXPECT_EQ(seen, 2);
  EXPECT_EQ(host.yields, yields + 2);
}

TEST_F(KeywordTesterPageTest, AFailingCheckAnswersNothing) {
  KeywordTesterPage& page = shown_with_recorder();
  answers = {{"surbl.plugin", ""}};
  page.Command1.user_click();
  EXPECT_EQ(page.Label1.caption(), "");
  EXPECT_THAT(activity(), ElementsAre("failed: call_module bodystream.checkebodystream BODYSTREAM SEND"));
  EXPECT_EQ(calls.size(), 2u);
}

TEST_F(KeywordTesterPageTest, WithoutAPluginHostThePageSaysSo) {
  console.components().remove(PluginHost::program_id);
  KeywordTesterPage& page = shown();
  EXPECT_EQ(page.Label1.caption(), "Error while loading plugin");
  page.Text1.user_type("text");
  page.Command2.user_click();
  EXPECT_EQ(page.Label1.caption(), "");
  EXPECT_TRUE(page.Command2.enabled());
}

TEST_F(KeywordTesterPageTest, UsesNoConnectionOfItsOwn) {
  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:none/none.db");
  KeywordTesterPage& page = shown();
  EXPECT_EQ(page.database, nullptr);
  EXPECT_EQ(page.conn, nullptr);
  EXPECT_TRUE(host.boxes.empty());
}

// The checks of the build, over the real database.
TEST_F(KeywordTesterPageTest, TheKeywordsOfTheListsAreFound) {
  insert("words", "entry", {"viagra"});
  insert("swords", "entry", {"REGEX[c.sino]"});
  KeywordTesterPage& page = shown();
  page.Text1.user_type("Buy VIAGRA");
  page.Command1.user_click();
  EXPECT_EQ(page.Label1.caption(), "550 5.1.0 rejected - your body is not allowed: viagra");
  page.Text1.user_type("Cas1no, casino");
  page.Command2.user_click();
  EXPECT_EQ(page.Label1.caption(),
            "550 5.1.0 rejected - your subject is not allowed: REGEX[c.sino] (casino)");
  EXPECT_THAT(activity(), IsEmpty());
}

}  // namespace
}  // namespace zrl
