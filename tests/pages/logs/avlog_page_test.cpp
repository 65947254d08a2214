#include "pages/logs/avlog_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AvlogPageTest : public testing::Test, public test::ShownPage<AvlogPage> {
 protected:
  AvlogPageTest() {
    log("worm.exe", "192.0.2.1", "Ann@A.example", "20051104120001");
    log("Worm.exe ", "192.0.2.2", "bob@b.example", "20051104120002");
    log("virus.zip", "192.0.2.3", "ann@a.example", "20051104120003");
    log("worm.exe", "", "", "20051104120004");
  }

  void log(std::string_view reason, std::string_view address, std::string_view sender,
           std::string_view time) {
    execute("INSERT INTO avlog (reason,IPNumber,mailfrom,mailto,servertime) VALUES ('" + value(reason) +
            "','" + value(address) + "','" + value(sender) + "','me@here.example','" + value(time) + "')");
  }
};

TEST_F(AvlogPageTest, ARowLeadsToItsSendersAndASenderToItsClients) {
  AvlogPage& page = shown();
  EXPECT_EQ(items(page.control14).front(), "worm.exe, , , me@here.example");
  EXPECT_EQ(page.control14.index(), 3);
  EXPECT_THAT(items(page.from), ElementsAre("bob@b.example", "ann@a.example"));
  EXPECT_THAT(items(page.ip), IsEmpty());
  page.from.user_choose(1);
  EXPECT_EQ(page.Text1.text(), "ann@a.example");
  EXPECT_THAT(items(page.ip), ElementsAre("192.0.2.3", "192.0.2.1"));
  page.ip.user_choose(1);
  EXPECT_EQ(page.Text2.text(), "192.0.2.1");
  page.control14.user_choose(1);
  EXPECT_THAT(items(page.from), ElementsAre("ann@a.example"));
  EXPECT_EQ(page.Text1.text(), "");
}

TEST_F(AvlogPageTest, SendersAreListedOnceTheListsAreInSmallLetters) {
  insert("whitemail", "entry", {"BOB@b.example"});
  AvlogPage& page = shown();
  page.Command1.user_click();
  EXPECT_THAT(activity(), ElementsAre("lcase_table blackmail entry", "lcase_table whitemail entry",
                                      "INSERT INTO blackmail (entry) VALUES ('bob@b.example')",
                                      "DELETE FROM whitemail where entry='bob@b.example'",
                                      "INSERT INTO blackmail (entry) VALUES ('ann@a.example')",
                                      "DELETE FROM whitemail where entry='ann@a.example'"));
  EXPECT_THAT(rows("whitemail", "entry"), IsEmpty());
  forget_activity();
  page.Command5.user_click();
  EXPECT_EQ(activity().front(), "DELETE FROM blackmail where entry='bob@b.example'");
  forget_activity();
  page.from.user_choose(0);
  page.Command9.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM whitemail where entry='bob@b.example'",
                                      "DELETE FROM blackmail where entry='bob@b.example'"));
}

TEST_F(AvlogPageTest, AllAddressesAndASingleOneKeepTheirOrders) {
  AvlogPage& page = shown();
  page.from.user_choose(0);
  page.Command3.user_click();
  EXPECT_THAT(activity(), ElementsAre("UPDATE predatalog set status=2 where IPNumber='192.0.2.2'",
                                      "UPDATE iplog set status=2 where IPNumber='192.0.2.2'",
                                      "add_to_blackhost 192.0.2.2"));
  forget_activity();
  page.ip.user_choose(0);
  page.Command11.user_click();
  page.Command12.user_click();
  EXPECT_THAT(
      activity(),
      ElementsAre("add_to_whitehost 192.0.2.2", "UPDATE iplog set status=1 where IPNumber='192.0.2.2'",
                  "UPDATE predatalog set status=1 where IPNumber='192.0.2.2'", "remove_from_iplist 192.0.2.2",
                  "UPDATE iplog set status=0 where IPNumber='192.0.2.2'",
                  "UPDATE predatalog set status=0 where IPNumber='192.0.2.2'"));
}

TEST_F(AvlogPageTest, ClearingNeedsAChosenItemAndReachesItsLogs) {
  AvlogPage& page = shown();
  page.Command13.user_click();
  page.Command14.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  page.from.user_choose(0);
  page.ip.user_choose(0);
  page.Command14.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM avlog where IPNumber='192.0.2.2'",
                                      "DELETE FROM iplog where IPNumber='192.0.2.2'",
                                      "DELETE FROM predatalog where IPNumber='192.0.2.2'",
                                      "DELETE FROM subjectlog where IPNumber='192.0.2.2'",
                                      "DELETE FROM bodylog where IPNumber='192.0.2.2'"));
  forget_activity();
  page.from.user_choose(0);
  page.Command13.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM avlog where mailfrom='ann@a.example'",
                                      "DELETE FROM predatalog where mailfrom='ann@a.example'",
                                      "DELETE FROM subjectlog where mailfrom='ann@a.example'",
                                      "DELETE FROM bodylog where mailfrom='ann@a.example'"));
}

}  // namespace
}  // namespace zrl
