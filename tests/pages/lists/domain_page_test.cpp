#include "pages/lists/domain_page.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DomainPageTest : public testing::Test, public test::ShownPage<DomainPage> {
 protected:
  std::string version() { return "set_string version=" + registry("ProductVersion"); }
};

TEST_F(DomainPageTest, AddingLeavesOneRowAndClearsBothFormsFromTheOtherList) {
  insert("blacklist", "entry", {"bad.example", "spam.example", "@*spam.example"});
  insert("whitelist", "entry", {"spam.example"});
  DomainPage& page = shown();
  page.Text1.user_type("  spam.example ");
  page.Command1.user_click();
  EXPECT_THAT(activity(),
              ElementsAre(raised("reloadwhite"), "DELETE FROM whitelist where entry='spam.example'",
                          "DELETE FROM blacklist where entry='spam.example'",
                          "INSERT INTO whitelist (entry) VALUES ('spam.example')", raised("reloadblack"),
                          "DELETE FROM blacklist where entry='spam.example'",
                          "DELETE FROM blacklist where entry='@*spam.example'", version()));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("spam.example"));
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("bad.example"));
  EXPECT_THAT(items(page.List1), ElementsAre("spam.example"));
  EXPECT_THAT(items(page.List2), ElementsAre("bad.example"));
  EXPECT_EQ(page.Text1.text(), "spam.example");
  EXPECT_EQ(registry("reloadwhite"), "1");
  EXPECT_EQ(registry("reloadblack"), "1");

  forget_activity();
  page.Command3.user_click();
  EXPECT_EQ(activity().front(), raised("reloadblack"));
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("bad.example", "spam.example"));
  EXPECT_THAT(rows("whitelist", "entry"), IsEmpty());
}

TEST_F(DomainPageTest, AddedTextIsEscapedAndShownSoRemovedTextIsNot) {
  DomainPage& page = shown();
  page.Text1.user_type("O'Neil \"x\"");
  page.Command3.user_click();
  EXPECT_EQ(page.Text1.text(), "O\\x27Neil \\x22x\\x22");
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("O\\x27Neil \\x22x\\x22"));

  page.Text1.user_type("O'Neil");
  forget_activity();
  page.Command4.user_click();
  EXPECT_THAT(activity(),
              ElementsAre(raised("reloadblack"), "failed: DELETE FROM blacklist where entry='O'Neil'",
                          "failed: DELETE FROM blacklist where entry='@*O'Neil'", version()));
}

// The place is a 16-bit number. What is clicked beyond is taken, but the place stays.
TEST_F(DomainPageTest, APlaceBeyond32767IsNotKept) {
  put_download("many.txt", [] {
    std::string lines;
    for (int i = 0; i < 40'000; ++i) lines += "host" + std::to_string(i) + ".example\n";
    return lines;
  }());
  console.components().create<Database>()->import_(list::black_domains,
                                                   (folder.path() / "download" / "many.txt").string());
  DomainPage& page = shown();
  const auto index_after_a_refill = [&] {
    page.Text1.user_type("other.example");
    page.Command1.user_click();
    return page.List2.index();
  };
  page.List2.user_choose(32'767);
  EXPECT_EQ(index_after_a_refill(), 32'767);
  for (const std::int64_t beyond : {32'768, 39'999}) {
    page.List2.user_choose(beyond);
    EXPECT_EQ(page.Text1.text(), "host" + std::to_string(beyond) + ".example");
    EXPECT_EQ(index_after_a_refill(), 32'767);
  }
  EXPECT_EQ(console.activity().failures(), 0u);
}

TEST_F(DomainPageTest, NothingEmptyIsStored) {
  insert("blacklist", "entry", {"@*"});
  DomainPage& page = shown();
  page.Text1.user_type("   ");
  page.Command1.user_click();
  EXPECT_THAT(rows("whitelist", "entry"), testing::IsEmpty());
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("@*"));
  EXPECT_THAT(activity(), ElementsAre("failed: INSERT INTO whitelist (entry) VALUES ('')", version()));
}

TEST_F(DomainPageTest, EntriesAreTextWhateverTheyHold) {
  const std::string hostile[] = {
      "x'); DROP TABLE blacklist; --",
      "<script>alert(1)</script>",
      "line\r\nbreak",
      "\xff\xfe",
      "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d.example",
      std::string(100'000, 'x'),
  };
  DomainPage& page = shown();
  std::vector<std::string> expected;
  for (const std::string& entry : hostile) {
    page.Text1.user_type(entry);
    page.Command3.user_click();
    expected.push_back(page.Text1.text());
  }
  EXPECT_EQ(rows("blacklist", "entry"), expected);
  EXPECT_EQ(items(page.List2), expected);
  // A zero byte would end the statement's text, so it never becomes one.
  page.Text1.user_type(std::string("a\0b", 3));
  page.Command3.user_click();
  EXPECT_EQ(rows("blacklist", "entry"), expected);
}

TEST_F(DomainPageTest, AddressesInTheTablesAreNotShownAndAClickedPlaceIsKept) {
  insert("blacklist", "entry", {"a.example", "@*a.example", "me@b.example", "b.example", "c.example"});
  DomainPage& page = shown();
  EXPECT_THAT(items(page.List2), ElementsAre("a.example", "b.example", "c.example"));
  EXPECT_EQ(page.List2.index(), -1);

  page.List2.user_choose(1);
  EXPECT_EQ(page.Text1.text(), "b.example");
  page.refrall.user_click();
  EXPECT_EQ(page.List2.index(), 1);
  page.List2.user_choose(2);
  page.Command4.user_click();
  EXPECT_THAT(items(page.List2), ElementsAre("a.example", "b.example"));
  EXPECT_EQ(page.List2.index(), -1);
}

TEST_F(DomainPageTest, EachSwitchHasItsKey) {
  expect_switches({{"RetunPath", "ReturnPath"},
                   {"dcheck", "checkbodydom"},
                   {"hcheck", "checkheaderdom"},
                   {"checkbw", "checkbw"},
                   {"checkblhelo", "checkblhelo"}});
}

TEST_F(DomainPageTest, TheTransferDialogMovesTheListAndRaisesOneFlag) {
  insert("blacklist", "entry", {"a.example"});
  DomainPage& page = shown();
  host.on_show = [this](Form& dialog) {
    EXPECT_EQ(dialog.name(), "transfer");
    EXPECT_EQ(dialog.caption(), "Domain Blacklist");
    std::ofstream(folder.path() / "lists" / "more.txt") << "b.example\r\na.example\n\n c.example \n";
    dialog.find("source")->user_type((folder.path() / "lists" / "more.txt").string());
    dialog.find("import")->user_click();
    dialog.find("action")->user_click();
  };
  page.imexblack.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("import entry blacklist " + (folder.path() / "lists" / "more.txt").string(),
                          raised("reloadblack"), version()));
  EXPECT_THAT(items(page.List2), ElementsAre("a.example", "b.example", "c.example"));
  EXPECT_EQ(registry("reloadwhite"), "");
}

TEST_F(DomainPageTest, AnUpdateDeletesBeforeItAddsAndRaisesBothFlags) {
  std::filesystem::create_directories(folder.path() / "download");
  std::ofstream(folder.path() / "download/delblack.txt") << "both.example\nold.example\n";
  std::ofstream(folder.path() / "download/addblack.txt") << "both.example\n";
  insert("blacklist", "entry", {"old.example"});
  DomainPage& page = shown();
  console.components().remove(Downloader::program_id);
  page.remote.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("both.example"));
  const auto file = [&](const char* name) { return (folder.path() / "download" / name).string(); };
  EXPECT_THAT(activity(), ElementsAre("failed: create zrlautoupdate.downloader",
                                      "delete entry blacklist " + file("delblack.txt"),
                                      "failed: delete entry whitelist " + file("delwhite.txt"),
                                      "import entry blacklist " + file("addblack.txt"),
                                      "failed: import entry whitelist " + file("addwhite.txt"), version(),
                                      raised("reloadblack"), raised("reloadwhite")));
  EXPECT_TRUE(page.remote.enabled());
}

TEST_F(DomainPageTest, OnlyAnAddressGoesToTheAddressLists) {
  DomainPage& page = shown();
  for (const char* text : {"", "mx.example.com", "1.2.3", "1.2.3.256", " 1.2.3.4"}) {
    page.mxip.user_type(text);
    page.blip.user_click();
    EXPECT_EQ(page.mxip.text(), "Not a valid IP. Please enter only IP Numbers") << text;
  }
  EXPECT_THAT(activity(), IsEmpty());
  page.mxip.user_type("192.0.2.1");
  page.blip.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1"));
  page.wlip.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), IsEmpty());
  EXPECT_THAT(activity(), ElementsAre("add_to_blackhost 192.0.2.1", "add_to_whitehost 192.0.2.1"));
}

TEST_F(DomainPageTest, TelnetTakesTheAddressOrElseTheDomainAsOneOperand) {
  DomainPage& page = shown();
  page.Command5.user_click();
  EXPECT_FALSE(page.Command5.enabled());
  page.Text1.user_type("mail.example");
  EXPECT_TRUE(page.Command5.enabled());
  page.mxip.user_type("mx.example.");
  page.Command5.user_click();
  page.mxip.user_type("192.0.2.7");
  page.Command5.user_click();
  page.mxip.user_type("");
  page.Text1.user_type("a; rm -rf / $(id)");
  page.Command5.user_click();
  ASSERT_EQ(host.programs.size(), 3u);
  EXPECT_EQ(host.programs[0].command_line(), "telnet.exe mail.example 25");
  EXPECT_EQ(host.programs[1].command_line(), "telnet.exe 192.0.2.7 25");
  EXPECT_THAT(host.programs[2].operands, ElementsAre("a; rm -rf / $(id)", "25"));

  forget_activity();
  page.Text1.user_type("-n/tmp/trace");
  page.Command5.user_click();
  EXPECT_EQ(host.programs.size(), 3u);
  EXPECT_THAT(activity(), ElementsAre("failed: telnet.exe -n/tmp/trace 25"));
}

}  // namespace
}  // namespace zrl
