#include "pages/logs/stati_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/log_rows.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

class StatiPageTest : public testing::Test, public test::ShownPage<StatiPage> {
 protected:
  void log(Literal table, const char* status, int count) {
    for (int i = 0; i < count; ++i) execute(test::logged(table, "192.0.2.1", status, "20051104120001"));
  }
  void hit(Literal statement, int count) {
    for (int i = 0; i < count; ++i) execute(statement);
  }
};

TEST_F(StatiPageTest, TheReportIsAsPeopleKnowIt) {
  log("iplog", "2", 40);
  log("iplog", "1", 10);
  log("iplog", "0", 150);
  log("predatalog", "2", 20);
  log("predatalog", "1", 5);
  hit("INSERT INTO subjectlog (keyword) VALUES ('x')", 3);
  hit("INSERT INTO bodylog (keyword) VALUES ('x')", 7);
  hit("INSERT INTO avlog (reason) VALUES ('x')", 1);
  EXPECT_EQ(shown().Text1.text(),
            "200 total incoming connections\r\n\r\n"
            "40 where blacklisted in IP checking\r\n"
            "10 where whitelisted in IP checking\r\n\r\n"
            "20 where blacklisted in header checking\r\n"
            "5 where whitelisted in header checking\r\n\r\n"
            "3 where blacklisted in subject checking\r\n"
            "7 where blacklisted in body checking\r\n"
            "1 where blacklisted in attachment checking\r\n\r\n"
            "71 were rejected\r\n"
            "129 reached destination mailbox\r\n\r\n"
            "35% is your personal SPAM Quota\r\n");
}

TEST_F(StatiPageTest, TheQuotaIsCutAndEmptyWithoutMail) {
  StatiPage& page = shown();
  EXPECT_THAT(page.Text1.text(), testing::StartsWith("0 total"));
  EXPECT_THAT(page.Text1.text(), testing::HasSubstr("\r\n\r\n% is your"));
  const struct {
    int rejected;
    int passed;
    const char* quota;
  } cases[] = {{29, 71, "29%"}, {0, 1, "0%"}, {2, 1, "66%"}, {5, 0, "100%"}, {199, 1, "99%"}};
  for (const auto& [rejected, passed, quota] : cases) {
    execute("DELETE FROM iplog");
    log("iplog", "2", rejected);
    log("iplog", "0", passed);
    page.Command1.user_click();
    EXPECT_THAT(page.Text1.text(), testing::HasSubstr("\r\n\r\n" + std::string(quota) + " is your"));
  }
}

}  // namespace
}  // namespace zrl
