#include "pages/logs/monitor_page.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/files.h"
#include "core/text/paths.h"
#include "pages/tools/composer_dialog.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MonitorPageTest : public testing::Test, public test::ShownPage<MonitorPage> {
 protected:
  void archive(std::string_view mid, std::string_view time, std::string_view source,
               std::string_view subject = "Offer") {
    const auto database = console.components().create<Database>();
    ConnectionHandle conn = database->open_database("sqlite:proxy.db");
    conn->execute(
        "INSERT INTO marchive (mid,servertime,subject,sender,sdom,sip,returnaddr,mailheader) VALUES ('','" +
        value(time) + "','" + value(subject) +
        "','ann@spam.example','spam.example','192.0.2.1','bounce.example','From: ann')");
    const auto record = conn->open(Statement("SELECT * from marchive where mid='' order by ID desc"),
                                   Connection::Access::updatable);
    record->set_text("mid", mid);
    record->set_bytes("email", source);
    record->update();
  }
  std::vector<std::string> mids() { return rows("marchive", "mid"); }
};

constexpr std::string_view text_mail =
    "From: Ann <ann@spam.example>\r\nTo: me@here.example\r\nSubject: Hi\r\n\r\nFirst\r\nSecond\r\n";
constexpr std::string_view html_mail =
    "From: bob@b.example\r\nContent-Type: text/html\r\n\r\n<p>Buy "
    "<b>now</b></p><script>alert(1)</script>\r\n";

TEST_F(MonitorPageTest, AnEmptyArchiveShowsNothing) {
  MonitorPage& page = shown();
  EXPECT_EQ(page.HScroll1.max(), 0);
  EXPECT_EQ(page.mid.text(), "");
  page.savemail.user_click();
  page.Command5.user_click();
  page.Command6.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  EXPECT_THAT(host.boxes, IsEmpty());
}

// Without a mail, and for a mail without a sender, nothing empty reaches a list.
TEST_F(MonitorPageTest, NothingEmptyIsListed) {
  set_option("checkmail", 1);  // else two of the buttons are disabled
  MonitorPage& page = shown();
  Button* const adds[] = {&page.Command2, &page.Command3, &page.Command8,        &page.Command4,
                          &page.Command9, &page.Command7, &page.blacklistsender, &page.Command10};
  for (Button* add : adds) {
    forget_activity();
    add->user_click();
    EXPECT_EQ(console.activity().failures(), 1u) << add->name();
  }
  for (const ListTable& each :
       {list::subject_keywords, list::black_addresses, list::white_addresses, list::black_domains,
        list::white_domains, list::black_mails, list::white_mails}) {
    EXPECT_THAT(rows(each.table, each.column), IsEmpty()) << each.name;
  }
}

TEST_F(MonitorPageTest, WalksFromTheNewestAndShowsTheBodyAsText) {
  archive("<old@x>", "20051104120001", html_mail);
  archive("<new@x>", "20051104120002", text_mail, "caf\xE9 =?utf-8?B?R3LDvMOfZQ==?=");
  archive("<none@x>", "20051104120000", "");
  MonitorPage& page = shown();
  EXPECT_EQ(page.HScroll1.max(), 2);
  EXPECT_EQ(page.mid.text(), "<new@x>");
  EXPECT_EQ(page.msubject.text(),
            "caf\xc3\xa9 Gr\xc3\xbc\xc3\x9f"
            "e");
  EXPECT_THAT(page.mailheader.text(), HasSubstr("First"));
  EXPECT_EQ(page.Label7.caption(), "Textbody");
  EXPECT_EQ(page.mail.text(), text_mail);
  page.HScroll1.user_scroll(1);
  EXPECT_THAT(page.mailheader.text(), testing::StartsWith("Buy now"));
  EXPECT_THAT(page.mailheader.text(), testing::Not(HasSubstr("alert")));
  EXPECT_EQ(page.Label7.caption(), "HTMLbody");
  page.HScroll1.user_scroll(2);
  EXPECT_EQ(page.mailheader.text(), "From: ann");
  EXPECT_EQ(page.Label7.caption(), "Message Header");
  EXPECT_EQ(page.mail.text(), "");
}

TEST_F(MonitorPageTest, AQueryLeadsToAMail) {
  archive("<old@x>", "20051104120001", text_mail);
  archive("<new@x>", "20051104120002", text_mail);
  MonitorPage& page = shown();
  page.show_query("1");
  EXPECT_EQ(page.mid.text(), "<old@x>");
  EXPECT_EQ(page.HScroll1.value(), 1);
  for (const char* nothing : {"3", "x", "-1"}) page.show_query(nothing);
  EXPECT_EQ(page.mid.text(), "<old@x>");
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(MonitorPageTest, AMailThatIsShownIsNotLoadedAgain) {
  archive("<a@x>", "20051104120001", text_mail);
  archive("<b@x>", "20051104120002", text_mail);
  MonitorPage& page = shown();
  page.HScroll1.user_scroll(1);
  page.msubject.user_type("kept");
  page.Check1.user_click();
  page.Command1.user_click();
  EXPECT_EQ(page.msubject.text(), "kept");
  // A new mail moves the others; with the box ticked the page follows its position.
  archive("<c@x>", "20051104120003", text_mail);
  page.Timer1.user_tick();
  EXPECT_EQ(page.mid.text(), "<b@x>");
  EXPECT_EQ(page.HScroll1.max(), 2);
}

TEST_F(MonitorPageTest, AMailIsExportedOnceByteForByte) {
  const std::string source = "Subject: caf\xE9\r\n\r\nGr\xC3\xBC\xC3\x9F" + std::string("e\0\n", 3);
  archive("<a@x>", "20051104120001", source);
  MonitorPage& page = shown();
  page.savemail.user_click();
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].title, "Email Export");
  const std::string path = rows("marchive", "mpath").at(0);
  EXPECT_EQ(host.boxes[0].text, "Your Email got exported to " + path);
  EXPECT_THAT(path, testing::MatchesRegex(".*archive.1[0-9]{5}\\.[0-9]{14}\\.eml"));
  EXPECT_EQ(read_file(to_file_path(path)), source);
  EXPECT_THAT(activity(), ElementsAre(to_file_path(path).string(), "update marchive ID 1 mpath " + path));
  page.savemail.user_click();
  EXPECT_EQ(host.boxes.size(), 1u);
}

TEST_F(MonitorPageTest, MailsAreToldApartWhateverTheirMessageId) {
  const char* const ids[] = {"<same@x>", "<same@x>", "", "", "<o'hara@x>"};
  for (int i = 0; i < 5; ++i) {
    archive(ids[i], "2005110412000" + std::to_string(5 - i), "Subject: x\r\n\r\nmail " + std::to_string(i));
  }
  MonitorPage& page = shown();
  for (int i = 0; i < 5; ++i) {
    if (i > 0) page.HScroll1.user_scroll(i);
    EXPECT_EQ(page.mid.text(), ids[i]);
    EXPECT_THAT(page.mail.text(), testing::EndsWith("mail " + std::to_string(i)));
    page.savemail.user_click();
    ASSERT_EQ(host.offered.size(), static_cast<std::size_t>(i) + 1);
    EXPECT_EQ(read_file(host.offered.back()), page.mail.text());
    EXPECT_EQ(to_file_path(rows("marchive", "mpath").at(static_cast<std::size_t>(i))), host.offered.back());
  }
  page.Command5.user_click();
  EXPECT_THAT(mids(), ElementsAre("<same@x>", "<same@x>", "", ""));
}

TEST_F(MonitorPageTest, DeletingTakesTheMailThatIsShownAndShowsTheNext) {
  for (const char* digit : {"1", "2", "3"}) {
    archive("<" + std::string(digit) + "@x>", "2005110412000" + std::string(digit), text_mail);
  }
  MonitorPage& page = shown();
  page.HScroll1.user_scroll(1);
  archive("<4@x>", "20051104120004", text_mail);
  page.Timer1.user_tick();
  ASSERT_EQ(page.mid.text(), "<2@x>");
  page.Command5.user_click();
  EXPECT_THAT(mids(), ElementsAre("<1@x>", "<3@x>", "<4@x>"));
  EXPECT_EQ(page.mid.text(), "<3@x>") << "which stands at the position now";
  page.HScroll1.user_scroll(2);
  page.Command5.user_click();
  EXPECT_EQ(page.mid.text(), "<3@x>") << "the last";
  EXPECT_EQ(page.HScroll1.max(), 1);
  page.Command5.user_click();
  page.Command5.user_click();
  EXPECT_THAT(mids(), IsEmpty());
  EXPECT_EQ(page.mid.text(), "");
  EXPECT_EQ(page.mail.text(), "");
  EXPECT_EQ(page.HScroll1.max(), 0);
  EXPECT_THAT(host.boxes, IsEmpty());
  page.Command5.user_click();
  EXPECT_THAT(host.boxes, IsEmpty());
}

TEST_F(MonitorPageTest, AMailThatSomebodyElseDeletedIsNotShown) {
  archive("<a@x>", "20051104120001", text_mail);
  archive("<b@x>", "20051104120002", text_mail);
  MonitorPage& page = shown();
  page.Check1.user_click();
  execute("DELETE FROM marchive where mid='<a@x>'");
  page.HScroll1.user_scroll(1);
  EXPECT_EQ(page.mid.text(), "");
  page.HScroll1.user_scroll(0);
  EXPECT_EQ(page.mid.text(), "<b@x>");
  execute("DELETE FROM marchive");
  page.Command5.user_click();
  ASSERT_EQ(host.boxes.size(), 1u);
  EXPECT_EQ(host.boxes[0].text, "it was deleted meanwhile");
  page.Timer1.user_tick();
  EXPECT_EQ(page.mid.text(), "");
  EXPECT_EQ(page.HScroll1.max(), 0);
}

TEST_F(MonitorPageTest, ATextPartOfBlanksDoesNotHideTheHtmlPart) {
  archive(
      "<a@x>", "20051104120001",
      "From: bob@b.example\r\nContent-Type: multipart/alternative; boundary=B\r\n\r\n--B\r\n\r\n \xC2\xA0\r\n"
      "--B\r\nContent-Type: text/html\r\n\r\n<p>Buy <b>now</b></p>\r\n--B--\r\n");
  archive("<b@x>", "20051104120000", "From: bob@b.example\r\n\r\n \r\n");
  MonitorPage& page = shown();
  EXPECT_THAT(page.mailheader.text(), testing::StartsWith("Buy now"));
  EXPECT_EQ(page.Label7.caption(), "HTMLbody");
  std::string quoted;
  host.on_show = [&](Form& dialog) {
    quoted = std::get<std::string_view>(dialog.find("textbody")->get(Property::text));
  };
  page.Command11.user_click();
  EXPECT_THAT(quoted, HasSubstr("> Buy now"));
  page.HScroll1.user_scroll(1);
  EXPECT_EQ(page.mailheader.text(), "From: ann");
}

TEST_F(MonitorPageTest, AnActionShowsTheListThatItTouched) {
  const struct {
    const char* button;
    const char* write;
    const char* removal;
    const char* second;
  } cases[] = {
      {"Command2", "add_to_swords Offer", "DELETE FROM swords where entry='w'",
       "DELETE FROM swords where entry='*@w'"},
      {"Command3", "add_to_blackhost 192.0.2.1", "DELETE FROM Blackhost where IPNumber='w'",
       "DELETE FROM Blackhost where IPNumber='*@w'"},
      {"Command8", "add_to_whitehost 192.0.2.1", "DELETE FROM Whitehost where IPNumber='w'",
       "DELETE FROM Whitehost where IPNumber='*@w'"},
      {"Command4", "add_to_blackdomain spam.example", "DELETE FROM blacklist where entry='w'",
       "DELETE FROM blacklist where entry='*@w'"},
      {"Command9", "add_to_blackdomain bounce.example", "DELETE FROM blacklist where entry='w'",
       "DELETE FROM blacklist where entry='*@w'"},
      {"Command7", "add_to_whitedomain spam.example", "DELETE FROM whitelist where entry='w'",
       "DELETE FROM whitelist where entry='*@w'"},
  };
  archive("<a@x>", "20051104120001", text_mail);
  set_option("checkmail", 1);
  MonitorPage& page = shown();
  for (const auto& [button, write, removal, second] : cases) {
    forget_activity();
    page.find(button)->user_click();
    EXPECT_FALSE(page.List1.items().empty()) << button;
    page.wert.user_type("w");
    page.Command6.user_click();
    EXPECT_THAT(activity(), ElementsAre(write, removal, second));
  }
  forget_activity();
  page.blacklistsender.user_click();
  EXPECT_THAT(items(page.List1), ElementsAre("ann@spam.example"));
  page.Command10.user_click();
  page.List1.user_choose(0);
  EXPECT_EQ(page.wert.text(), "ann@spam.example");
  page.Command6.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM whitemail where entry='ann@spam.example'",
                                      "INSERT INTO blackmail (entry) VALUES ('ann@spam.example')",
                                      "DELETE FROM blackmail where entry='ann@spam.example'",
                                      "INSERT INTO whitemail (entry) VALUES ('ann@spam.example')",
                                      "DELETE FROM whitemail where entry='ann@spam.example'"));
}

TEST_F(MonitorPageTest, DomainListsShowEntriesWithoutTheirMark) {
  insert("blacklist", "entry", {"*@marked.example", "@single.example", "", "plain.example"});
  archive("<a@x>", "20051104120001", text_mail);
  MonitorPage& page = shown();
  page.Command4.user_click();
  EXPECT_THAT(items(page.List1),
              ElementsAre("marked.example", "@single.example", "plain.example", "spam.example"));
}

TEST_F(MonitorPageTest, ShowingReadsItsOptionsAndPreparesTheDatabaseOnce) {
  set_option("consolerefresh", 5000);
  set_string("addbytes", "123456789012");
  console.settings().regwrite_string(console.settings().path_of("prepdb"), "1");
  MonitorPage& page = shown();
  EXPECT_EQ(page.Timer1.interval(), 5000);
  EXPECT_EQ(registry("prepdb"), "0");
  EXPECT_FALSE(page.blacklistsender.enabled());
  EXPECT_FALSE(page.Command10.enabled());
  EXPECT_EQ(page.Label12.caption(), "123456789012");
}

TEST_F(MonitorPageTest, TheIntervalMayBeAsLongAsThatOfATimer) {
  const std::pair<const char*, std::int64_t> cases[] = {
      {"40000", 40'000}, {"65535", 65'535}, {"100000", 65'535}, {"0", 0}, {"", 0}};
  for (const auto& [stored, interval] : cases) {
    set_string("consolerefresh", stored);
    EXPECT_EQ(shown().Timer1.interval(), interval) << stored;
  }
  for (const char* stored : {"-1", "3000000000", "soon"}) {
    set_string("consolerefresh", stored);
    const std::uint64_t failures = console.activity().failures();
    MonitorPage page(console);
    page.initialise();
    EXPECT_EQ(page.Timer1.interval(), 0) << stored;
    EXPECT_EQ(console.activity().failures(), failures + 1) << stored;
  }
}

TEST_F(MonitorPageTest, AReplyQuotesTheMailAndMarksTheSubjectOnce) {
  archive("<a@x>", "20051104120001", text_mail);
  set_string("forwardaddress", "mail.here.example");
  MonitorPage& page = shown();
  std::vector<std::string> fields;
  host.on_show = [&](Form& dialog) {
    for (const char* name : {"recipient", "subject", "textbody", "server"}) {
      fields.emplace_back(std::get<std::string_view>(dialog.find(name)->get(Property::text)));
    }
  };
  page.Command11.user_click();
  EXPECT_THAT(fields, ElementsAre(HasSubstr("ann@spam.example"), "Re: Hi", HasSubstr("> First\n> Second"),
                                  "mail.here.example"));
}

}  // namespace
}  // namespace zrl
