#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/console.h"
#include "core/contracts/html_converter.h"
#include "core/contracts/regexp.h"
#include "core/html_text.h"
#include "core/pattern_matcher.h"
#include "core/text/error.h"
#include "core/text/files.h"
#include "core/text/paths.h"
#include "core/text_file.h"
#include "support/fake_components.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

// Finds its pattern as it stands; "(" is malformed, "!" is never finished.
class PlainRegExp : public RegExp {
 public:
  explicit PlainRegExp(int& made) { ++made; }

  void set_pattern(std::string_view pattern, Options options) override {
    if (pattern == "(") throw Error(5020, "Expected ')' in regular expression");
    EXPECT_TRUE(options.ignore_case);
    pattern_ = pattern;
  }
  void set_pattern(std::u16string_view, Options) override {}
  bool find(std::string_view text, std::size_t from, RegExpMatch& match) override {
    match.whole = {text.find(pattern_, from), pattern_.size()};
    return match.whole.offset != text.npos;
  }
  bool find(std::u16string_view, std::size_t, RegExpMatch&) override { return false; }
  bool limit_reached() const override { return pattern_ == "!"; }

 private:
  std::string pattern_;
};

class Brackets : public HtmlConverter {
 public:
  explicit Brackets(int& made) { ++made; }

  std::string html2txt(std::string_view html) override {
    if (html.empty()) throw Error(1, "nothing to convert");
    return '[' + std::string(html) + ']';
  }
};

class UtilitiesTest : public testing::Test {
 protected:
  UtilitiesTest() { test::add_registry(console.components(), store); }

  std::string last_failure() {
    const ActivityRecord& record = console.activity();
    if (record.total() == 0 || record[record.total() - 1].ok) return "";
    const auto entry = record[record.total() - 1];
    return std::string(entry.text) + ": " + std::string(entry.error);
  }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  test::MemoryRegistry::Store store;
  Console console{folder.path(), host, [] {
                    return std::chrono::system_clock::from_time_t(1'131'121'805);
                  }};  // 2005-11-04 16:30:05
  int made = 0;
};

TEST_F(UtilitiesTest, MatchingKeepsOneComponent) {
  console.components().add<RegExp>([this] { return std::make_shared<PlainRegExp>(made); });
  EXPECT_EQ(console.regex_match("REGEX[b]", "abc"), "b");
  EXPECT_EQ(console.regex_match("regex[x]", "abc"), "");
  EXPECT_EQ(console.regex_match("b", "abc"), "");  // no regular expression
  EXPECT_EQ(made, 1);
  EXPECT_EQ(console.activity().total(), 0u);

  EXPECT_EQ(console.regex_match("REGEX[(]", "abc"), "");
  EXPECT_THAT(last_failure(), testing::HasSubstr("Expected ')'"));
  EXPECT_EQ(console.regex_match("REGEX[!]", "abc"), "");
  EXPECT_THAT(last_failure(), testing::HasSubstr("given up"));
  EXPECT_EQ(console.regex_match("REGEX[c]", "abc"), "c");
}

TEST_F(UtilitiesTest, HtmlIsConvertedByOneComponent) {
  EXPECT_EQ(console.html_text().html_to_text("<b>"), "<b>");
  EXPECT_NE(last_failure(), "");
  console.components().add<HtmlConverter>([this] { return std::make_shared<Brackets>(made); });
  EXPECT_EQ(console.html_text().html_to_text("<b>"), "[<b>]");
  EXPECT_EQ(console.html_text().html_to_text(""), "");
  EXPECT_EQ(last_failure(), "html2txt: nothing to convert");
  EXPECT_EQ(made, 1);
}

TEST_F(UtilitiesTest, AMissingMatcherIsAFailedStep) {
  EXPECT_EQ(console.regex_match("REGEX[b]", "abc"), "");
  EXPECT_NE(last_failure(), "");
}

TEST_F(UtilitiesTest, TimeStampsAreLocal) {
  ::setenv("TZ", "CET-1CEST", 1);
  ::tzset();
  EXPECT_EQ(console.time_stamp(), "20051104173005");
  ::unsetenv("TZ");
  ::tzset();
}

TEST_F(UtilitiesTest, MailDirectoriesBelongToAnInstance) {
  store.values["hklm\\software\\mirvan\\smtpsvc\\2\\dropdirectory"] = "D:\\drop";
  store.values["hklm\\software\\mirvan\\smtpsvc\\2\\queuedirectory"] = "D:\\queue";
  store.values["hklm\\software\\mirvan\\smtpsvc\\1\\pickupdirectory"] = "C:\\pickup";
  store.values["hklm\\software\\mirvan\\smtpsvc\\2\\badmaildirectory"] = "D:\\bad";
  const SmtpDirectories second = console.settings().smtp_directories(2);
  EXPECT_EQ(second.drop, "D:\\drop");
  EXPECT_EQ(second.bad_mail, "D:\\bad");
  EXPECT_EQ(second.pickup, "");
  EXPECT_EQ(second.queue, "D:\\queue");
  EXPECT_EQ(console.settings().smtp_directories(1).pickup, "C:\\pickup");
}

TEST_F(UtilitiesTest, TextFilesAreWrittenInUtf8) {
  const std::string product_folder = to_product_path(folder.path()) + "\\new\\scripts";
  EXPECT_TRUE(write_text_file(console, product_folder, "a.vbs", "MsgBox \"h\u00e4 \U0001F600\xff\"\r\n"));
  EXPECT_EQ(read_file(folder.path() / "new/scripts/a.vbs"), "MsgBox \"h\u00e4 \U0001F600\uFFFD\"\r\n");
  EXPECT_TRUE(write_text_file(console, product_folder + '\\', "a.vbs", "second"));
  EXPECT_EQ(read_file(folder.path() / "new/scripts/a.vbs"), "second");
  ASSERT_EQ(console.activity().total(), 2u);
  EXPECT_EQ(console.activity()[1].text, (folder.path() / "new/scripts/a.vbs").string());
  EXPECT_TRUE(console.activity()[1].write);
}

TEST_F(UtilitiesTest, NewFilesReplaceNoneAndHoldEveryByte) {
  const std::string product_folder = to_product_path(folder.path()) + "\\new";
  const std::string bytes("\xE4\0\r\n\xC3", 5);
  int proposed = 0;
  const auto next_name = [&] { return std::to_string(proposed++ / 2) + ".eml"; };
  for (const char* name : {"0.eml", "1.eml", "2.eml"}) {
    EXPECT_EQ(write_new_file(console, product_folder, next_name, name + bytes), name);
    EXPECT_EQ(read_file(folder.path() / "new" / name), name + bytes);
  }
  EXPECT_EQ(console.activity().total(), 3u);
  EXPECT_EQ(console.activity()[2].text, (folder.path() / "new/2.eml").string());
  EXPECT_EQ(write_new_file(console, product_folder, [] { return "0.eml"; }, "x"), "");
  EXPECT_EQ(write_new_file(console, product_folder, [] { return "../a"; }, "x"), "");
  EXPECT_EQ(write_new_file(console, "", [] { return "a"; }, "x"), "");
  EXPECT_NE(last_failure(), "");
  EXPECT_EQ(read_file(folder.path() / "new/0.eml"), "0.eml" + bytes);
}

TEST_F(UtilitiesTest, FileNamesDoNotLeaveTheFolder) {
  const std::string inner = (folder.path() / "inner").string();
  for (const std::string name : {"..", ".", "", "../a", "..\\a", "b/a", "b\\a", "/tmp/a", "a/../../b"}) {
    EXPECT_FALSE(write_text_file(console, inner, name, "x")) << name;
    EXPECT_NE(last_failure(), "");
  }
  EXPECT_FALSE(write_text_file(console, inner, std::string("a\0b", 3), "x"));
  EXPECT_FALSE(write_text_file(console, "", "a", "x"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(UtilitiesTest, AFolderThatCannotBeMadeIsAFailedStep) {
  std::ofstream(folder.path() / "file") << "old";
  EXPECT_FALSE(write_text_file(console, (folder.path() / "file").string(), "a", "x"));
  EXPECT_NE(last_failure(), "");
  EXPECT_EQ(read_file(folder.path() / "file"), "old");
}

}  // namespace
}  // namespace zrl
