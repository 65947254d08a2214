#include "components/checks/keyword_search.h"

#include <random>

#include <gtest/gtest.h>

#include "components/checks/subject_field.h"
#include "core/text/error.h"
#include "support/fake_services.h"

namespace zrl::checks {
namespace {

// Small alphabets and lengths, so that words often stand in the text, at its ends too.
TEST(TextIndex, FindsTheWordsThatStandInTheText) {
  std::mt19937 random(7);
  const auto random_text = [&](std::size_t longest) {
    std::string text(random() % (longest + 1), 'a');
    for (char& c : text) c = static_cast<char>('a' + random() % 3);
    return text;
  };
  for (int i = 0; i < 300; ++i) {
    const std::string text = random_text(60);
    const TextIndex index(text);
    for (int j = 0; j < 100; ++j) {
      const std::string word = random_text(8);
      ASSERT_EQ(index.contains(word), text.find(word) != text.npos) << word << " in " << text;
    }
    EXPECT_TRUE(index.contains(text));
    EXPECT_FALSE(index.contains(text + "a"));
  }
}

class KeywordSearchTest : public testing::Test {
 protected:
  std::string find(const StringList& entries, std::string_view text) {
    return KeywordSearch(text, console_).find(entries);
  }

  KeywordSearchTest() {
    // A regular expression that is the word itself.
    console_.match = [](std::string_view entry, std::string_view text) {
      const std::string word(entry.substr(6, entry.size() - 7));
      return text.find(word) == text.npos ? std::string() : word;
    };
  }

  test::FakeServices console_;
};

TEST_F(KeywordSearchTest, EntriesAreFoundWhateverTheirCase) {
  const struct {
    StringList entries;
    std::string_view text;
    std::string_view found;
  } cases[] = {
      {{"viagra"}, "Buy VIAGRA now", "viagra"},
      {{"ViAgra"}, "viagra", "ViAgra"},
      {{"hot"}, "the hotel", "hot"},
      {{"x", "now"}, "buy NOW", "now"},
      {{"second", "first"}, "first and second", "second"},  // the list's order, not the text's
      {{"O\\x27Neil"}, "from o'neil", "O\\x27Neil"},
      {{"say \\x22yes\\x22"}, "Say \"yes\"!", "say \\x22yes\\x22"},
      {{"Grüße"}, "viele Grüße", "Grüße"},
      {{"", "viagra"}, "clean", ""},
      {{"longer than the text"}, "text", ""},
      {{}, "text", ""},
      {{"word"}, "", ""},
      {{"REGEX[b.y]", "REGEX[low]"}, "a low price", "REGEX[low] (low)"},
      {{"regex[buy]", "plain"}, "buy plain", "plain"},  // plain words are cheaper and come first
      {{"REGEX[open"}, "a regex[open bracket", "REGEX[open"},
  };
  for (const auto& [entries, text, found] : cases) EXPECT_EQ(find(entries, text), found) << text;
}

TEST_F(KeywordSearchTest, AnswersAreBoundedAndValid) {
  const std::string long_word = std::string(199, 'a') + "\u00e4" + std::string(5000, 'b');
  EXPECT_EQ(find({long_word}, long_word), std::string(199, 'a') + "\uFFFD...");
  EXPECT_EQ(find({"a\xff!b"}, "xA\xff!B"), "a\uFFFD!b");
}

TEST_F(KeywordSearchTest, ExpressionsThatTakeTooLongAreGivenUp) {
  const KeywordSearch search("spam", console_, std::chrono::milliseconds(-1));
  EXPECT_THROW(search.find({"REGEX[spam]"}), Error);
  EXPECT_EQ(search.find({"REGEX[spam]", "spam"}), "spam");
}

TEST(SubjectField, IsTheFirstOneUnfoldedWithoutTheRestOfTheHeader) {
  const struct {
    std::string_view header;
    std::string_view subject;
  } cases[] = {
      {"Subject: hello", "hello"},
      {"subject:hello\r\n", "hello"},
      {"SUBJECT :  a  b \r\n", "a  b"},
      {"From: x\r\nSubject: one\r\n two\r\n\tthree\r\nTo: y", "one two\tthree"},
      {"From: x\n  Subject: folded\nSubject: real\nSubject: other", "real"},
      {"From: x\r\n\r\nSubject: body", ""},
      {"Subjects: x\nsubject", ""},
      {"Subject:", ""},
      {"", ""},
  };
  for (const auto& [header, subject] : cases) EXPECT_EQ(subject_of(header), subject) << header;
}

}  // namespace
}  // namespace zrl::checks
