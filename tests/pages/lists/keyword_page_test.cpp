#include "pages/lists/keyword_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/sqlite/sqlite_engine.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeywordPageTest : public testing::Test, public test::ShownPage<KeywordPage> {
 protected:
  KeywordPageTest() { set_option("checksubject", 1); }

  CheckBox& box(KeywordPage& page, std::string_view name) { return static_cast<CheckBox&>(*page.find(name)); }
};

TEST_F(KeywordPageTest, ASubjectWordIsOnOneOfTheTwoSubjectLists) {
  insert("subjectwhite", "entry", {"offer", "", "invoice"});
  insert("swords", "entry", {"", "pills"});
  KeywordPage& page = shown();
  EXPECT_THAT(items(page.List1), ElementsAre("pills"));
  EXPECT_THAT(items(page.List3), ElementsAre("offer", "invoice"));
  page.Text1.user_type(" offer ");
  page.Command1.user_click();
  EXPECT_THAT(activity(), ElementsAre("add_to_swords offer", "DELETE FROM subjectwhite where entry='offer'",
                                      "DELETE FROM subjectwhite where entry=''",
                                      "DELETE FROM subjectwhite where entry=NULL"));
  EXPECT_THAT(items(page.List1), ElementsAre("pills", "offer"));
  EXPECT_THAT(rows("subjectwhite", "entry"), ElementsAre("invoice"));

  forget_activity();
  page.Command7.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("DELETE FROM subjectwhite where entry='offer'",
                          "INSERT INTO subjectwhite (entry) VALUES ('offer')",
                          "DELETE FROM swords where entry='offer'", "DELETE FROM swords where entry=''",
                          "DELETE FROM swords where entry=NULL"));
  EXPECT_THAT(items(page.List3), ElementsAre("invoice", "offer"));
  EXPECT_THAT(rows("swords", "entry"), ElementsAre("pills"));

  forget_activity();
  page.Command2.user_click();
  EXPECT_THAT(activity(), ElementsAre("add_to_words offer"));
  EXPECT_THAT(items(page.List2), ElementsAre("offer"));
}

TEST_F(KeywordPageTest, AddedTextIsEscapedAndStaysInTheField) {
  insert("words", "entry", {"one", "two"});
  KeywordPage& page = shown();
  page.List2.user_choose(1);
  const struct {
    Button& add;
    Literal table;
  } cases[] = {{page.Command1, "swords"}, {page.Command2, "words"}, {page.Command7, "subjectwhite"}};
  for (const auto& [add, table] : cases) {
    page.Text1.user_type(" it's \"free\"");
    add.user_click();
    EXPECT_EQ(page.Text1.text(), " it\\x27s \\x22free\\x22");
    EXPECT_EQ(rows(table, "entry").back(), "it\\x27s \\x22free\\x22") << table.text();
  }
  EXPECT_EQ(page.List2.index(), 1);
}

// Nothing empty is stored. The lists are read again, but for the first button with an empty field.
TEST_F(KeywordPageTest, AnEmptyTextIsRefused) {
  KeywordPage& page = shown();
  page.Command1.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  insert("words", "entry", {"one"});
  page.Command2.user_click();
  EXPECT_THAT(items(page.List2), ElementsAre("one"));
  insert("swords", "entry", {"two"});
  page.Command7.user_click();
  EXPECT_THAT(items(page.List1), ElementsAre("two"));
  page.Text1.user_type("   ");
  for (Button* add : {&page.Command1, &page.Command2, &page.Command7}) add->user_click();
  EXPECT_EQ(console.activity().failures(), 5u);
  EXPECT_THAT(rows("swords", "entry"), ElementsAre("two"));
  EXPECT_THAT(rows("words", "entry"), ElementsAre("one"));
  EXPECT_THAT(rows("subjectwhite", "entry"), IsEmpty());
}

TEST_F(KeywordPageTest, RemovingPurgesEmptyRowsAndTakesTheTextAsItStands) {
  KeywordPage& page = shown();
  const struct {
    Button& remove;
    Literal table;
    const char* from;
  } cases[] = {{page.Command3, "swords", "DELETE FROM swords where entry="},
               {page.Command4, "words", "DELETE FROM words where entry="},
               {page.Command8, "subjectwhite", "DELETE FROM subjectwhite where entry="}};
  for (const auto& [remove, table, from] : cases) {
    insert(table, "entry", {"", "free", "kept"});
    forget_activity();
    page.Text1.user_type(" free ");
    remove.user_click();
    page.Text1.user_type("it's");
    remove.user_click();
    const std::string statement(from);
    EXPECT_THAT(activity(),
                ElementsAre(statement + "'free'", statement + "''", statement + "NULL",
                            "failed: " + statement + "'it's'", statement + "''", statement + "NULL"));
    EXPECT_THAT(rows(table, "entry"), ElementsAre("kept"));
  }
}

TEST_F(KeywordPageTest, EachSwitchHasItsKey) {
  const struct {
    const char* box;
    const char* key;
  } cases[] = {{"Check3", "enablesubjectwhite"},
               {"Check1", "checksubject"},
               {"Check2", "checkbody"},
               {"checklongsubject", "checklongsubject"},
               {"checkshortsubject", "checkshortsubject"}};
  for (const auto& [name, key] : cases) set_option(key, 1);
  KeywordPage& page = shown();
  for (const auto& [name, key] : cases) {
    EXPECT_TRUE(box(page, name).checked()) << name;
    box(page, name).user_click();
    EXPECT_EQ(option(key), "0") << key;
  }
}

TEST_F(KeywordPageTest, TheSubjectWhiteListFollowsTheSubjectCheck) {
  set_option("enablesubjectwhite", 1);
  KeywordPage& page = shown();
  EXPECT_TRUE(page.Check3.checked() && page.Check3.enabled());
  page.Check1.user_click();
  EXPECT_FALSE(page.Check3.checked() || page.Check3.enabled());
  EXPECT_THAT(activity(), ElementsAre("set_option checksubject=0", "set_option enablesubjectwhite=0"));
  page.Check1.user_click();
  EXPECT_FALSE(page.Check3.checked());
  EXPECT_TRUE(page.Check3.enabled());

  set_option("checksubject", 0);
  set_option("enablesubjectwhite", 1);
  EXPECT_FALSE(shown().Check3.checked());
  EXPECT_EQ(option("enablesubjectwhite"), "0");
}

TEST_F(KeywordPageTest, ManyBlanksAreANumber) {
  for (const auto& [stored, ticked] : {std::pair{0, false}, {2, false}, {3, true}, {4, true}, {-1, false}}) {
    set_option("subjectspace", stored);
    KeywordPage& page = shown();
    EXPECT_EQ(page.subjectspace.checked(), ticked) << stored;
    page.subjectspace.user_click();
    EXPECT_EQ(option("subjectspace"), ticked ? "0" : "5") << stored;
  }
}

TEST_F(KeywordPageTest, TheHeaderCheckIsARegistryStringAndFollowsTheBodyCheckWhenListsAreRead) {
  const std::string path = console.settings().path_of("modules\\HeaderWordCheck\\enabled");
  KeywordPage* page = &shown();
  EXPECT_FALSE(page->checkheader.enabled() || page->checkheader.checked());
  page->Check2.user_click();
  EXPECT_FALSE(page->checkheader.enabled());
  page->Text1.user_type("pills");
  page->Command2.user_click();
  page->checkheader.user_click();
  sqlite::Engine store(folder.path() / "registry.db", {});
  sqlite::Query stored(store, "SELECT kind, value FROM registry WHERE path=?1");
  ASSERT_TRUE(stored.bind(1, path).step());
  EXPECT_EQ(stored.text(0), "REG_SZ");
  EXPECT_EQ(stored.text(1), "1");
  EXPECT_TRUE(shown().checkheader.checked());
  for (const char* other : {"0", "", "yes", "70000"}) {
    console.settings().regwrite_string(path, other);
    EXPECT_FALSE(shown().checkheader.checked()) << other;
  }
}

TEST_F(KeywordPageTest, AnUpdateTakesTheWordsOfEachSubjectListOffTheOther) {
  put_download("addsubject.txt", "pills\n");
  put_download("addsubjectwhite.txt", "invoice\n");
  insert("swords", "entry", {"invoice"});
  insert("subjectwhite", "entry", {"pills"});
  KeywordPage& page = shown();
  console.components().remove(Downloader::program_id);
  page.remote.user_click();
  EXPECT_THAT(items(page.List1), ElementsAre("pills"));
  EXPECT_THAT(items(page.List3), ElementsAre("invoice"));
  const auto file = [&](const char* name) { return (folder.path() / "download" / name).string(); };
  const std::vector<std::string> steps = activity();
  ASSERT_EQ(steps.size(), 9U);
  EXPECT_EQ(steps[7], "delete entry swords " + file("addsubjectwhite.txt"));
  EXPECT_EQ(steps[8], "failed: delete entry subjectwhite " + file("delsubjectwhite.txt"));
}

TEST_F(KeywordPageTest, EachListHasItsDialog) {
  KeywordPage& page = shown();
  EXPECT_EQ(dialog_of(page.Command5), "Subject Keywords: swords.txt");
  EXPECT_EQ(dialog_of(page.Command6), "Body Keywords: words.txt");
  EXPECT_EQ(dialog_of(page.Command9), "Subject Whitelist: subjectwhite.txt");
  EXPECT_THAT(activity(), IsEmpty());
}

}  // namespace
}  // namespace zrl
