#include "pages/logs/log_page.h"

#include <gtest/gtest.h>

#include "pages/logs/iplog_page.h"
#include "pages/logs/keywordlog_page.h"
#include "pages/logs/predatalog_page.h"
#include "support/installed_console.h"
#include "support/log_rows.h"

namespace zrl {
namespace {

class LookUpTest : public testing::Test, public test::InstalledConsole {
 protected:
  LookUpTest() {
    console.components().add<DnsClient>([this] { return std::make_shared<test::FakeDns>(meanwhile); });
    for (const char* address : {"192.0.2.1", "192.0.2.2"}) {
      const std::string time = std::string("2005110412000") + address[8];
      execute(test::logged("iplog", address, "0", time));
      execute(test::logged("predatalog", address, "2", time, "no mail exchanger"));
      execute("INSERT INTO subjectlog (keyword,IPNumber,servertime) VALUES ('pills','" + value(address) +
              "','" + value(time) + "')");
    }
  }

  // What the field holds after a look-up of the first row, without and with a click on the second meanwhile.
  static std::string answer(ListBox& rows, Button& look_up, const TextField& field) {
    rows.user_choose(0);
    look_up.user_click();
    return field.text();
  }
  std::string answer_of_another_row(ListBox& rows, Button& look_up, const TextField& field) {
    rows.user_choose(0);
    meanwhile = [&] { rows.user_choose(1); };
    look_up.user_click();
    meanwhile = {};
    return field.text();
  }

  std::function<void()> meanwhile;
};

TEST_F(LookUpTest, TheAnswerBelongsToTheRowThatAsked) {
  IplogPage iplog(console);
  iplog.initialise();
  EXPECT_EQ(answer(iplog.iplist, iplog.reverse, iplog.domain), "host-192.0.2.1.example");
  EXPECT_EQ(answer_of_another_row(iplog.iplist, iplog.reverse, iplog.domain), "");

  PredatalogPage predatalog(console);
  predatalog.initialise();
  predatalog.reason.user_choose(0);
  EXPECT_EQ(answer(predatalog.ip, predatalog.Command3, predatalog.reversedom), "host-192.0.2.1.example");
  EXPECT_EQ(answer_of_another_row(predatalog.ip, predatalog.Command3, predatalog.reversedom), "");

  KeywordlogPage keywordlog(console);
  keywordlog.initialise();
  EXPECT_EQ(answer(keywordlog.logs, keywordlog.Command8, keywordlog.shost), "host-192.0.2.2.example");
  EXPECT_EQ(answer_of_another_row(keywordlog.logs, keywordlog.Command8, keywordlog.shost), "");
  meanwhile = [&] { keywordlog.ip.user_type("192.0.2.77"); };
  EXPECT_EQ(answer(keywordlog.logs, keywordlog.Command8, keywordlog.shost), "");
}

}  // namespace
}  // namespace zrl
