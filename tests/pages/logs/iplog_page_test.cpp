#include "pages/logs/iplog_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/log_rows.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class IplogPageTest : public testing::Test, public test::ShownPage<IplogPage> {
 protected:
  IplogPageTest() {
    console.components().add<DnsClient>([] { return std::make_shared<test::FakeDns>(); });
    log("192.0.2.2", "2", "20051104120002");
    log("192.0.2.1", "0", "20051104120001");
    log("192.0.2.3", "1", "20051104120003");
    log("192.0.2.1", "0", "20051104120004");
  }

  void log(std::string_view address, std::string_view status, std::string_view time) {
    execute(test::logged("iplog", address, status, time));
    execute(test::logged("predatalog", address, status, time));
  }
};

TEST_F(IplogPageTest, RowsStandInTheOrderOfTheirTimeAndCountsCoverTheTable) {
  IplogPage& page = shown();
  EXPECT_THAT(items(page.iplist), ElementsAre("192.0.2.1", "192.0.2.2", "192.0.2.3", "192.0.2.1"));
  EXPECT_EQ(page.iplist.index(), 3);
  EXPECT_EQ(page.IPNumber.text(), "");
  page.ipblack.user_click();
  EXPECT_THAT(items(page.iplist), ElementsAre("192.0.2.2"));
  EXPECT_EQ(page.iplist.index(), 0);
  EXPECT_EQ(page.Label5.caption(), "2");
  EXPECT_EQ(page.Label6.caption(), "1");
  EXPECT_EQ(page.Label7.caption(), "1");
  EXPECT_EQ(page.Label8.caption(), "4");
}

TEST_F(IplogPageTest, AStatusGoesToTheListsAndToTheIpLogBeforeThePreDataLog) {
  const struct {
    const char* button;
    const char* operation;
    const char* digit;
  } cases[] = {{"Command1", "remove_from_iplist", "0"},
               {"Command2", "add_to_blackhost", "2"},
               {"Command3", "add_to_whitehost", "1"}};
  IplogPage& page = shown();
  for (const auto& [button, operation, digit] : cases) {
    forget_activity();
    page.IPNumber.user_type(" 192.0.2.1 ");
    page.find(button)->user_click();
    const std::string set = std::string(" set status=") + digit + " where IPNumber='192.0.2.1'";
    EXPECT_THAT(activity(), ElementsAre(std::string(operation) + " 192.0.2.1", "UPDATE iplog" + set,
                                        "UPDATE predatalog" + set));
    EXPECT_EQ(page.IPNumber.text(), "192.0.2.1");
  }
  EXPECT_THAT(rows("iplog", "status"), ElementsAre("2", "1", "1", "1"));
  EXPECT_THAT(rows("predatalog", "status"), ElementsAre("2", "1", "1", "1"));
}

TEST_F(IplogPageTest, WhatIsNoAddressChangesNothingButTheField) {
  IplogPage& page = shown();
  page.IPNumber.user_type("10.0.0.300");
  page.Command2.user_click();
  EXPECT_EQ(page.IPNumber.text(), "Not a valid IP. Please enter only IP Numbers");
  page.Command2.user_click();
  EXPECT_EQ(page.IPNumber.text(), "Not a valid IP. Please enter only IP Numbers");
  page.IPNumber.user_type("  ");
  page.Command3.user_click();
  EXPECT_EQ(page.IPNumber.text(), "");
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(IplogPageTest, ClearingKeepsToTheViewAndToThisLog) {
  IplogPage& page = shown();
  page.ipwhite.user_click();
  page.Command9.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM iplog where status=1"));
  EXPECT_EQ(rows("iplog", "IPNumber").size(), 3u);
  forget_activity();
  page.ipall.user_click();
  page.Command9.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM iplog", "failed: DELETE * FROM iplog"));
  EXPECT_THAT(rows("iplog", "IPNumber"), IsEmpty());
  EXPECT_EQ(rows("predatalog", "IPNumber").size(), 4u);
  EXPECT_EQ(page.Label8.caption(), "0");
}

TEST_F(IplogPageTest, DeletingAnAddressEmptiesAllLogsOfItAndLeavesTheLists) {
  insert("Blackhost", "IPNumber", {"192.0.2.1"});
  IplogPage& page = shown();
  page.iplist.user_choose(1);
  page.iplist.user_choose(0);
  page.delefrom.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM iplog where IPNumber='192.0.2.1'",
                                      "DELETE FROM predatalog where IPNumber='192.0.2.1'",
                                      "DELETE FROM subjectlog where IPNumber='192.0.2.1'",
                                      "DELETE FROM bodylog where IPNumber='192.0.2.1'",
                                      "DELETE FROM avlog where IPNumber='192.0.2.1'"));
  EXPECT_THAT(items(page.iplist), ElementsAre("192.0.2.2", "192.0.2.3"));
  EXPECT_EQ(page.iplist.index(), 0);
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1"));
}

TEST_F(IplogPageTest, TheReverseLookUpTakesTheChosenItem) {
  log("192.0.2.9", "0", "20051104120009");
  IplogPage& page = shown();
  page.iplist.user_choose(1);
  page.IPNumber.user_type("198.51.100.1");
  page.reverse.user_click();
  EXPECT_EQ(page.domain.text(), "host-192.0.2.2.example");
  page.iplist.user_choose(4);
  EXPECT_EQ(page.domain.text(), "");
  page.domain.user_type("kept");
  page.reverse.user_click();
  EXPECT_EQ(page.domain.text(), "kept");
  EXPECT_THAT(activity(), ElementsAre("failed: PTR_Query 192.0.2.9"));
}

TEST_F(IplogPageTest, DomainButtonsWriteTheListsWithoutFlags) {
  const struct {
    const char* button;
    const char* first;
    const char* second;
  } cases[] = {{"Command4", "DELETE FROM whitelist where entry='d.example'",
                "DELETE FROM blacklist where entry='d.example'"},
               {"Command5", "DELETE FROM whitelist where entry='d.example'",
                "INSERT INTO blacklist (entry) VALUES ('d.example')"},
               {"Command6", "DELETE FROM blacklist where entry='d.example'",
                "INSERT INTO whitelist (entry) VALUES ('d.example')"}};
  IplogPage& page = shown();
  for (const auto& [button, first, second] : cases) {
    forget_activity();
    page.domain.user_type(" d.example ");
    page.find(button)->user_click();
    EXPECT_THAT(activity(), ElementsAre(first, second));
    page.domain.user_type("  ");
    page.find(button)->user_click();
  }
  EXPECT_EQ(activity().size(), 2u);
}

TEST_F(IplogPageTest, TelnetTakesTheFieldAsItStands) {
  IplogPage& page = shown();
  page.IPNumber.user_type(" 192.0.2.1");
  page.Command7.user_click();
  page.domain.user_type("mx.example");
  page.Command8.user_click();
  ASSERT_EQ(host.programs.size(), 2u);
  EXPECT_EQ(host.programs[0].command_line(), "telnet.exe  192.0.2.1 25");
  EXPECT_EQ(host.programs[1].command_line(), "telnet.exe mx.example 25");
}

}  // namespace
}  // namespace zrl
