#include "pages/logs/keywordlog_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/log_rows.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class KeywordlogPageTest : public testing::Test, public test::ShownPage<KeywordlogPage> {
 protected:
  KeywordlogPageTest() {
    console.components().add<DnsClient>([] { return std::make_shared<test::FakeDns>(); });
    log("Pills", "192.0.2.1", "Ann@Spam.example", "me@here.example", "20051104120002");
    log("casino", "192.0.2.2", "b@c@d.example", "me@here.example", "20051104120003");
    execute(
        "INSERT INTO bodylog (keyword,IPNumber,servertime) VALUES ('offer','192.0.2.3','20051104120001')");
  }

  void log(std::string_view keyword, std::string_view address, std::string_view sender,
           std::string_view recipient, std::string_view time) {
    execute("INSERT INTO subjectlog (keyword,IPNumber,mailfrom,mailto,servertime) VALUES ('" +
            value(keyword) + "','" + value(address) + "','" + value(sender) + "','" + value(recipient) +
            "','" + value(time) + "')");
  }
};

TEST_F(KeywordlogPageTest, ShowsTheNewestFirstAndFillsTheFieldsFromTheOldest) {
  KeywordlogPage& page = shown();
  EXPECT_THAT(items(page.logs), ElementsAre("casino, 192.0.2.2, b@c@d.example, me@here.example",
                                            "Pills, 192.0.2.1, Ann@Spam.example, me@here.example"));
  EXPECT_EQ(page.logs.index(), 1);
  EXPECT_EQ(page.keyw.text(), "Pills");
  EXPECT_EQ(page.dfrom.text(), "Spam.example");
  page.logs.user_choose(0);
  EXPECT_EQ(page.dfrom.text(), "c@d.example");
  EXPECT_EQ(page.rto.text(), "me@here.example");

  page.body.user_click();
  EXPECT_THAT(items(page.logs), ElementsAre("offer, 192.0.2.3, , "));
  EXPECT_EQ(page.dfrom.text(), "");
  page.Command11.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM bodylog"));
  EXPECT_THAT(items(page.logs), IsEmpty());
  EXPECT_EQ(page.keyw.text(), "");
}

TEST_F(KeywordlogPageTest, AKeywordLeavesTheLogAndItsListInSmallLetters) {
  insert("swords", "entry", {"PILLS", "other"});
  KeywordlogPage& page = shown();
  page.Command1.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("lcase_table swords entry", "DELETE FROM subjectlog where keyword='pills'",
                          "DELETE FROM swords where entry='pills'"));
  EXPECT_THAT(rows("swords", "entry"), ElementsAre("other"));
  forget_activity();
  page.Command1.user_click();
  EXPECT_EQ(activity().size(), 2u) << "the list is lower-cased once";
}

TEST_F(KeywordlogPageTest, MovingASenderOrItsDomainDeletesTheSendersRows) {
  KeywordlogPage& page = shown();
  page.mfrom.user_type(" Ann@Spam.example ");
  page.Command2.user_click();
  EXPECT_EQ(page.mfrom.text(), "ann@spam.example");
  EXPECT_THAT(activity(), ElementsAre("lcase_table blackmail entry", "lcase_table whitemail entry",
                                      "INSERT INTO blackmail (entry) VALUES ('ann@spam.example')",
                                      "DELETE FROM whitemail where entry='ann@spam.example'",
                                      "DELETE FROM subjectlog where mailfrom='ann@spam.example'",
                                      "DELETE FROM bodylog where mailfrom='ann@spam.example'"));
  EXPECT_EQ(page.logs.items().size(), 2u) << "the view stays";

  forget_activity();
  page.Command5.user_click();
  EXPECT_THAT(activity(), ElementsAre("lcase_table blacklist entry", "lcase_table whitelist entry",
                                      "DELETE FROM whitelist where entry='Spam.example'",
                                      "DELETE FROM blacklist where entry='Spam.example'",
                                      "INSERT INTO whitelist (entry) VALUES ('Spam.example')",
                                      "DELETE FROM subjectlog where mailfrom='ann@spam.example'",
                                      "DELETE FROM bodylog where mailfrom='ann@spam.example'"));
}

TEST_F(KeywordlogPageTest, ARowWithoutSenderStandsForItselfAlone) {
  log("bounce", "192.0.2.4", "", "me@here.example", "20051104120001");
  log("bounce", "192.0.2.5", "", "me@here.example", "20051104120000");
  KeywordlogPage& page = shown();
  page.logs.user_choose(2);
  ASSERT_EQ(page.ip.text(), "192.0.2.4");
  page.shost.user_type("mx.example");
  page.Command9.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("mx.example"));
  EXPECT_THAT(rows("subjectlog", "IPNumber"), ElementsAre("192.0.2.1", "192.0.2.2", "192.0.2.5"));
  EXPECT_EQ(rows("bodylog", "keyword").size(), 1u);

  page.mfrom.user_type("  ");
  page.Command2.user_click();
  EXPECT_EQ(rows("subjectlog", "IPNumber").size(), 3u);
}

TEST_F(KeywordlogPageTest, AFailedLookUpLeavesNoHostToBlacklist) {
  log("bounce", "192.0.2.9", "a@b.example", "me@here.example", "20051104120000");
  KeywordlogPage& page = shown();
  ASSERT_EQ(page.ip.text(), "192.0.2.9");
  page.shost.user_type("former.example");
  page.Command8.user_click();
  EXPECT_EQ(page.shost.text(), "");
  EXPECT_TRUE(page.Command10.enabled());
  page.Command9.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), IsEmpty());
}

TEST_F(KeywordlogPageTest, AClientIsTakenAsItStands) {
  KeywordlogPage& page = shown();
  page.ip.user_type("Host.Example");
  page.Command6.user_click();
  EXPECT_THAT(activity(), ElementsAre("add_to_blackhost Host.Example",
                                      "UPDATE iplog set status=2 where IPNumber='Host.Example'",
                                      "UPDATE predatalog set status=2 where IPNumber='Host.Example'",
                                      "DELETE FROM subjectlog where IPNumber='host.example'",
                                      "DELETE FROM bodylog where IPNumber='host.example'"));
}

TEST_F(KeywordlogPageTest, WhitelistingAHostWaitsForTheNextLookUp) {
  KeywordlogPage& page = shown();
  page.Command10.user_click();
  EXPECT_TRUE(page.Command10.enabled());
  page.Command8.user_click();
  EXPECT_EQ(page.shost.text(), "host-192.0.2.1.example");
  page.Command10.user_click();
  EXPECT_FALSE(page.Command10.enabled());
  EXPECT_TRUE(page.Command9.enabled());
  page.ip.user_type("");
  page.Command8.user_click();
  EXPECT_TRUE(page.Command10.enabled());
  page.Command12.user_click();
  EXPECT_EQ(host.programs.at(0).command_line(), "telnet.exe host-192.0.2.1.example 25");
}

}  // namespace
}  // namespace zrl
