#include "scripting/script_engine_page.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/files.h"
#include "scripting/script_table.h"
#include "support/fake_update_server.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using test::returning;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class ScriptEnginePageTest : public testing::Test,
                             public test::ScriptTable<test::ShownPage<ScriptEnginePage>> {
 protected:
  static std::vector<std::string> names(const ComboBox& box) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < box.items().size(); ++i) result.emplace_back(box.items()[i]);
    return result;
  }
  void create(ScriptEnginePage& page, std::string_view name) {
    page.scriptnamen.user_type(name);
    page.insertnew.user_click();
  }
  void choose(ScriptEnginePage& page, std::string_view name) {
    const std::size_t index = page.scriptnamen.items().find(name);
    ASSERT_LT(index, page.scriptnamen.items().size()) << name;
    page.scriptnamen.user_choose(static_cast<std::int64_t>(index));
  }
  static std::vector<std::string> marks(const ScriptEnginePage& page) {
    std::vector<std::string> result;
    for (const TextField::Mark& mark : page.scriptsource.marks()) {
      result.push_back((mark.elsewhere ? "elsewhere: " : "") + mark.name + "(" + std::to_string(mark.line) +
                       ", " + std::to_string(mark.column) + "): " + mark.text);
    }
    return result;
  }
  std::string copy_of(std::string_view file) {
    const auto path = folder.path() / "scripts" / file;
    return std::filesystem::exists(path) ? read_file(path) : "none";
  }
};

TEST_F(ScriptEnginePageTest, MakesTheTableAndShowsWhatThereIs) {
  ScriptEnginePage& page = shown();
  EXPECT_THAT(rows("scriptengine", "scriptname"), IsEmpty());  // raises without a table
  EXPECT_EQ(page.sposition.text(), "Never");
  EXPECT_THAT(names(page.sposition),
              ElementsAre("Never", "CONNECT", "ENVELOPE", "HEADER", "HEADERENV", "BODYSTREAM", "BODY", "AV"));
  EXPECT_EQ(page.inputbox.text(), "Testdata");
  put("late", "BODY", 9, 1, "");
  put("early", "BODY", 1, 1, "");
  put("hidden", "BODY", 5, 0, "");
  put("never_listed", "BODY", 6, 99, "");
  ScriptEnginePage& again = shown();
  EXPECT_THAT(names(again.scriptnamen), ElementsAre("early", "late"));
  again.allscripts.user_click();
  EXPECT_THAT(names(again.scriptnamen), ElementsAre("early", "hidden", "late"));
  expect_switches({{"scriptcheck", "scriptcheck"}});
}

TEST_F(ScriptEnginePageTest, CreatesFromTheTemplate) {
  ScriptEnginePage& page = shown();
  page.insertnew.user_click();
  EXPECT_THAT(activity(), IsEmpty());  // without a name nothing happens
  create(page, "my new script");
  EXPECT_EQ(page.scriptnamen.text(), "my_new_script");
  const std::string text =
      "Function my_new_script(input)\r\nOn Error Resume Next\r\n\r\n"
      "\tmy_new_script=0\t\t\t'set return value (always Integer)\r\n"
      "\t'msgbox input\t\t\t'output Testdata\r\n\r\n\r\nEnd Function \r\n";
  EXPECT_EQ(page.scriptsource.text(), text);
  EXPECT_EQ(stored("my_new_script"), "NEVER 0: " + text);
  EXPECT_EQ(copy_of("my_new_script.vbs"), text);
  EXPECT_THAT(activity(), Contains("INSERT INTO scriptengine (scriptname) VALUES ('my_new_script')"));
  EXPECT_FALSE(page.savechunk.enabled());
  EXPECT_THAT(names(page.scriptnamen), IsEmpty());  // not visible yet
  page.svisible.user_click();
  EXPECT_EQ(stored("my_new_script"), "NEVER 1: " + text);
  page.allscripts.user_click();
  EXPECT_THAT(names(page.scriptnamen), ElementsAre("my_new_script"));
  EXPECT_EQ(page.scriptnamen.index(), 0);
}

TEST_F(ScriptEnginePageTest, AnExistingNameGetsTheTextOfTheEditor) {
  create_table();
  put("there", "BODY", 1, 1, "old");
  ScriptEnginePage& page = shown();
  page.scriptsource.user_type(
      "' gr\xC3\xB6\xC3\x9F"
      "er");
  create(page, "there");
  EXPECT_EQ(page.scriptsource.text(),
            "' gr\xC3\xB6\xC3\x9F"
            "er");
  EXPECT_EQ(stored("there"),
            "NEVER 0: ' gr\xC3\xB6\xC3\x9F"
            "er");
  EXPECT_EQ(copy_of("there.vbs"), page.scriptsource.text());
  EXPECT_EQ(console.activity().failures(), 0U);
  ASSERT_THAT(host.boxes, SizeIs(1));
  EXPECT_EQ(host.boxes[0].title, "Replace Script");
  EXPECT_THAT(host.boxes[0].text, testing::EndsWith("\r\nthere"));
}

// Hidden ones too, which the list does not show.
TEST_F(ScriptEnginePageTest, AnExistingNameIsNotReplacedWithoutConsent) {
  create_table();
  put("my_hidden", "BODY", 1, 0, "old");
  put("never_listed", "AV", 1, 99, "older");
  ScriptEnginePage& page = shown();
  page.scriptsource.user_type("' new");
  host.reply = BoxReply::cancel;
  create(page, "my hidden");
  EXPECT_EQ(page.scriptnamen.text(), "my hidden");
  EXPECT_TRUE(page.insertnew.enabled());
  create(page, "never_listed");
  EXPECT_THAT(host.boxes, SizeIs(2));
  EXPECT_EQ(stored("my_hidden"), "BODY 0: old");
  EXPECT_EQ(stored("never_listed"), "AV 99: older");
  EXPECT_EQ(copy_of("my_hidden.vbs"), "none");
  EXPECT_EQ(page.scriptsource.text(), "' new");
  EXPECT_TRUE(page.savechunk.enabled());
  EXPECT_THAT(activity(), IsEmpty());
  create(page, "brand_new");
  EXPECT_THAT(host.boxes, SizeIs(2));
}

TEST_F(ScriptEnginePageTest, AFailedSaveCanBeRepeated) {
  create_table();
  put("one", "BODY", 1, 1, "' first");
  ScriptEnginePage& page = shown();
  choose(page, "one");
  execute("CREATE TRIGGER kept BEFORE UPDATE ON scriptengine BEGIN SELECT raise(ABORT, 'no'); END");
  page.scriptsource.user_type("' changed");
  page.savechunk.user_click();
  EXPECT_EQ(stored("one"), "BODY 1: ' first");
  EXPECT_TRUE(page.savechunk.enabled());
  execute("DROP TRIGGER kept");
  page.savechunk.user_click();
  EXPECT_EQ(stored("one"), "BODY 1: ' changed");
  EXPECT_FALSE(page.savechunk.enabled());
}

TEST_F(ScriptEnginePageTest, SelectsEditsAndSaves) {
  create_table();
  put("one", "BODY", 1, 1, "' first");
  put("two", "AV", 2, 1, "' second");
  execute("INSERT INTO scriptengine (scriptname,svisible) VALUES ('bare',1)");
  ScriptEnginePage& page = shown();
  choose(page, "two");
  EXPECT_EQ(page.scriptsource.text(), "' second");
  EXPECT_EQ(page.sposition.text(), "AV");
  EXPECT_TRUE(page.svisible.checked());
  EXPECT_FALSE(page.savechunk.enabled());
  EXPECT_FALSE(page.insertnew.enabled());
  page.scriptsource.user_type("' changed");
  EXPECT_TRUE(page.savechunk.enabled());
  page.sposition.user_type("ENVELOPE");
  // What is typed into the name field selects nothing.
  page.scriptnamen.user_type("three");
  EXPECT_TRUE(page.insertnew.enabled());
  forget_activity();
  page.savechunk.user_click();
  EXPECT_EQ(stored("two"), "ENVELOPE 1: ' changed");
  EXPECT_EQ(stored("one"), "BODY 1: ' first");
  EXPECT_THAT(activity(), ElementsAre("SELECT * FROM scriptengine WHERE scriptname='two'",
                                      (folder.path() / "scripts/two.vbs").string()));
  choose(page, "bare");
  EXPECT_EQ(page.scriptsource.text(), "");
  EXPECT_EQ(page.sposition.text(), "");
}

TEST_F(ScriptEnginePageTest, DeletesAfterAskingAndKeepsTheCopy) {
  ScriptEnginePage& page = shown();
  create(page, "gone");
  host.reply = BoxReply::cancel;
  page.deletefromdb.user_click();
  ASSERT_THAT(host.boxes, SizeIs(1));
  EXPECT_EQ(host.boxes[0].title, "Delete Script");
  EXPECT_EQ(host.boxes[0].text, "Are you sure?");
  EXPECT_EQ(host.boxes[0].style, BoxStyle::ok_cancel);
  EXPECT_NE(stored("gone"), "none");
  host.reply = BoxReply::ok;
  forget_activity();
  page.deletefromdb.user_click();
  EXPECT_EQ(activity().front(), "DELETE FROM scriptengine where scriptname='gone'");
  EXPECT_EQ(stored("gone"), "none");
  EXPECT_EQ(page.scriptsource.text() + page.sposition.text() + page.scriptnamen.text(), "");
  EXPECT_NE(copy_of("gone.vbs"), "none");
}

// The name is anybody's.
TEST_F(ScriptEnginePageTest, NoNameLeadsOutOfTheFolder) {
  ScriptEnginePage& page = shown();
  for (const std::string_view name : {"../proxy", "..\\proxy", "/tmp/x"}) {
    create(page, name);
    EXPECT_THAT(stored(name), StartsWith("NEVER 0: Function ")) << name;
    EXPECT_THAT(activity(), Contains(testing::AllOf(StartsWith("failed: "), testing::EndsWith(".vbs"))))
        << name;
    forget_activity();
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "proxy.vbs"));
  create(page, "it's");
  EXPECT_THAT(activity().front(), StartsWith("failed: INSERT INTO scriptengine"));
  EXPECT_THAT(rows("scriptengine", "scriptname"), SizeIs(3));
}

TEST_F(ScriptEnginePageTest, RunsOneScript) {
  ScriptEnginePage& page = shown();
  page.executescript.user_click();
  EXPECT_EQ(page.outputlabel.caption(), "");  // there is no text to run
  create(page, "count");
  page.scriptsource.user_type(returning("count", "Len(input)"));
  page.inputbox.user_type("a\nb\r\nc");  // whose line ends are those of a mail then
  page.executescript.user_click();
  EXPECT_EQ(page.outputlabel.caption(), "The result of your script is: 7");
  EXPECT_THAT(page.scriptsource.marks(), IsEmpty());
  EXPECT_THAT(stored("count"), HasSubstr("Len(input)"));  // saved first
  page.scriptsource.user_type("Function count(input)\n  count = 1 +\nEnd Function");
  page.executescript.user_click();
  EXPECT_EQ(page.outputlabel.caption(), "The result of your script is: ");
  EXPECT_THAT(marks(page), ElementsAre(StartsWith("count(2, 14): "), StartsWith("count(0, 0): ")));
  EXPECT_THAT(activity(), Contains("failed: AddCode count"));
  EXPECT_TRUE(page.executescript.enabled());
}

// Saving compiles, and whatever is selected next has marks of its own.
TEST_F(ScriptEnginePageTest, MarksWhatDoesNotCompile) {
  create_table();
  put("fine", "AV", 1, 1, returning("fine", "1"));
  put("other", "AV", 1, 1, "Function other(");
  ScriptEnginePage& page = shown();
  choose(page, "fine");
  page.scriptsource.user_type("Function fine(input)\r\n  If\r\nEnd Function");
  EXPECT_THAT(marks(page), IsEmpty());
  page.savechunk.user_click();
  EXPECT_THAT(marks(page),
              testing::UnorderedElementsAre(StartsWith("fine(2, "), StartsWith("elsewhere: other(1, ")));
  choose(page, "other");
  EXPECT_THAT(marks(page), IsEmpty());
  page.scriptsource.user_type(returning("other", "2"));
  page.savechunk.user_click();
  EXPECT_THAT(marks(page), ElementsAre(StartsWith("elsewhere: fine(2, ")));
  page.deletefromdb.user_click();
  EXPECT_THAT(marks(page), IsEmpty());
}

TEST_F(ScriptEnginePageTest, WithNothingSelectedNoScriptIsChanged) {
  ScriptEnginePage& page = shown();
  create(page, "there");
  page.deletefromdb.user_click();
  page.scriptsource.user_type("' whose is this?");
  page.savechunk.user_click();
  EXPECT_THAT(rows("scriptengine", "scriptname"), IsEmpty());
  EXPECT_EQ(copy_of(".vbs"), "' whose is this?");
  EXPECT_EQ(page.scriptsource.text(), "' whose is this?");
}

TEST_F(ScriptEnginePageTest, RunsAllScriptsOfThePosition) {
  create_table();
  put("one", "CONNECT", 1, 1, returning("one", "1"));
  put("two", "CONNECT", 2, 1, returning("two", "2"));
  put("bad", "CONNECT", 3, 1, "Function bad(input)\nbad = nothing_like_this(1)\nEnd Function");
  ScriptEnginePage& page = shown();
  choose(page, "one");
  page.Command1.user_click();
  EXPECT_EQ(page.Label4.caption(), "The result of your scripts are: 5");
  EXPECT_THAT(lines_of("Scripts.log"), SizeIs(3));
  EXPECT_THAT(marks(page), ElementsAre(StartsWith("elsewhere: bad(2, ")));
}

TEST_F(ScriptEnginePageTest, WithoutADatabaseNothingIsShownAndNothingBreaks) {
  console.settings().regwrite_string(console.settings().data_provider_path(), "nothing");
  ScriptEnginePage& page = shown();
  ASSERT_THAT(host.boxes, SizeIs(1));
  EXPECT_EQ(host.boxes[0].title, "No Database Connection Possible (Script Engine Control)");
  EXPECT_EQ(page.sposition.text(), "Never");
  create(page, "new");
  page.Command1.user_click();
  page.scriptcheck.user_click();
  EXPECT_EQ(page.Label4.caption(), "The result of your scripts are: 0");
}

TEST_F(ScriptEnginePageTest, UpdatesFromTheServer) {
  test::FakeUpdateServer server;
  console.settings().regwrite_string(console.settings().path_of("updateurl"), server.address());
  server.publish(
      "/scripts.json",
      R"([{"scriptname":"published","scriptcontent":"' text","sposition":"AV","prio":3,"svisible":1}])");
  ScriptEnginePage& page = shown();
  page.update.user_click();
  EXPECT_EQ(stored("published"), "AV 1: ' text");
  EXPECT_THAT(names(page.scriptnamen), ElementsAre("published"));
  page.download.user_click();
  EXPECT_THAT(activity(), Contains("update_db"));
  EXPECT_THAT(activity(), Contains(HasSubstr("updateall")));
  EXPECT_TRUE(page.download.enabled() && page.update.enabled());
}

TEST_F(ScriptEnginePageTest, LeavingReleasesEverything) {
  ScriptEnginePage& page = shown();
  page.terminate();
  EXPECT_EQ(page.conn, nullptr);
  page.executescript.user_click();
  page.Command1.user_click();
}

}  // namespace
}  // namespace zrl
