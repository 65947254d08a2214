#include "components/sqlite/sqlite.h"
#include "core/text/utf16.h"
#include "downloader_fixture.h"

namespace zrl::downloader {
namespace {

using testing::AllOf;
using testing::HasSubstr;

// Merging into a real database.
class ScriptsTest : public test::DownloaderTest {
 protected:
  ScriptsTest() {
    console.components().add<Database>([this] { return database_; });
  }

  std::string update_scripts() {
    try {
      console.settings["updateurl"] = address;
      make(console, published, options)->update_db();
    } catch (const Error& error) {
      return error.what();
    }
    return "done";
  }

  // "name position prio visible", by names.
  std::string table() {
    ConnectionHandle conn = database_->open_database("sqlite:zrl.db");
    std::string result;
    const auto rows = conn->open(Statement("SELECT * FROM scriptengine order by scriptname"),
                                 Connection::Access::read_only);
    for (; !rows->at_end(); rows->move_next()) {
      for (const char* column : {"scriptname", "sposition", "prio", "svisible"}) {
        result.append(rows->text(column)).append(" ");
      }
      result.back() = '\n';
    }
    return result;
  }
  std::string content(std::string_view name) {
    ConnectionHandle conn = database_->open_database("sqlite:zrl.db");
    const auto row = conn->open("SELECT * FROM scriptengine WHERE scriptname='" + value(name) + "'",
                                Connection::Access::read_only);
    return row->at_end() ? "none" : std::string(row->bytes("scriptcontent"));
  }

 private:
  std::shared_ptr<Database> database_ = sqlite::make(console);
};

TEST(ScriptContentTest, IsKeptInSixteenBitUnits) {
  EXPECT_EQ(to_utf16_bytes(""), "");
  EXPECT_EQ(to_utf16_bytes("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
            std::string("a\0\xE4\0\xAC\x20\x3D\xD8\x00\xDE", 10));
  EXPECT_EQ(to_utf16_bytes("\xFFz"), std::string("\xFD\xFFz\0", 4));
}

TEST_F(ScriptsTest, ScriptsOfTheSameNameAreReplacedAndOthersStay) {
  server.publish("/lists/scripts.json", R"([{"scriptname": "old", "scriptcontent": "1", "prio": 1}, 
      {"scriptname": "mine", "scriptcontent": "2", "svisible": 1, "sposition": "body"}])");
  EXPECT_EQ(update_scripts(), "done");
  EXPECT_EQ(table(), "mine BODY 0 1\nold NEVER 1 0\n");
  server.publish("/lists/scripts.json",
                 "\xEF\xBB\xBF"
                 R"([{"scriptname": "old", "sposition": "Header", "prio": -7,
      "svisible": 99, "scriptcontent": "x = \"it's\" ' \u00e4 \ud83d\ude00\r\n", "author": {"name": null}},
      {"scriptname": "\"x\" --", "scriptcontent": ""}])");
  EXPECT_EQ(update_scripts(), "done");
  EXPECT_EQ(table(), "\"x\" -- NEVER 0 0\nmine BODY 0 1\nold HEADER -7 99\n");
  EXPECT_EQ(content("old"), to_utf16_bytes("x = \"it's\" ' \xC3\xA4 \xF0\x9F\x98\x80\r\n"));
  EXPECT_EQ(content("mine"), to_utf16_bytes("2"));
}

TEST_F(ScriptsTest, AFileThatIsNotValidChangesNothing) {
  server.publish("/lists/scripts.json", R"([{"scriptname": "a", "scriptcontent": "1"}])");
  EXPECT_EQ(update_scripts(), "done");
  const std::string good = R"({"scriptname": "a", "scriptcontent": "2"})";
  const std::pair<std::string, const char*> cases[] = {
      {"", "incomplete"},
      {"[" + good, "incomplete"},
      {"[" + good + "] x", "extra data"},
      {good, "no array"},
      {"[" + good + ", 7]", "element 2 is no object"},
      {"[" + good + R"(, {"scriptcontent": "x"}])", "object 2: scriptname is no text"},
      {"[" + good + R"(, {"scriptname": "b"}])", "object 2: scriptcontent is no text"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": null}])", "scriptcontent is no text"},
      {"[" + good + R"(, {"scriptname": "", "scriptcontent": ""}])", "scriptname is not valid"},
      {"[" + good + R"(, {"scriptname": "b'; --", "scriptcontent": ""}])", "scriptname is not valid"},
      {"[" + good + R"(, {"scriptname": "b\u0000", "scriptcontent": ""}])", "scriptname is not valid"},
      {"[" + good + R"(, {"scriptname": ")" + std::string(256, 'b') + R"(", "scriptcontent": ""}])",
       "not valid"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "x\u0000"}])", "zero byte"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "\ud800"}])", "not valid"},
      {"[" + good + ", {\"scriptname\": \"b\xFF\", \"scriptcontent\": \"\"}]", "not valid"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "", "prio": "1"}])", "prio is no whole number"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "", "prio": 1.5}])", "prio is no whole number"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "", "svisible": 9999999999}])",
       "no whole number"},
      {"[" + good + R"(, {"scriptname": "b", "scriptcontent": "", "sposition": 1}])", "sposition is no text"},
      {"[" + good + ", " + good + "]", "twice"},
      {std::string(1'000'000, '['), "too deep"},
  };
  for (const auto& [text, reason] : cases) {
    server.publish("/lists/scripts.json", text);
    EXPECT_THAT(update_scripts(), AllOf(HasSubstr("the file of scripts is not valid"), HasSubstr(reason)))
        << text.substr(0, 200);
    EXPECT_EQ(content("a"), to_utf16_bytes("1"));
    EXPECT_EQ(table(), "a NEVER 0 0\n");
  }
}

TEST_F(ScriptsTest, WhatDoesNotArriveIsAnError) {
  EXPECT_THAT(update_scripts(), HasSubstr("no scripts could be fetched from " + address + ": not published"));
  options.limits.script_bytes = 100;
  server.publish("/lists/scripts.json", std::string(101, ' '));
  EXPECT_THAT(update_scripts(), HasSubstr("failed: "));
  server.publish("/lists/scripts.json", "[]");
  EXPECT_EQ(update_scripts(), "done");
  EXPECT_EQ(table(), "");
}

}  // namespace
}  // namespace zrl::downloader
