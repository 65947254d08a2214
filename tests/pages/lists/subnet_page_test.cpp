#include "pages/lists/subnet_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SubnetPageTest : public testing::Test, public test::ShownPage<SubnetPage> {};

TEST_F(SubnetPageTest, OnlyANetworkIsAdded) {
  SubnetPage& page = shown();
  const std::pair<const char*, const char*> networks[] = {
      {"192.0.2.7/32", "192.0.2.7/32"}, {"192.0.2.0/1", "192.0.2.0/1"}, {"  10.0.0.0/8 ", "10.0.0.0/8"},
      {"10.0.0.0/ 8", "10.0.0.0/8"},    {"10.0.0.0/+8", "10.0.0.0/8"},  {"10.0.0.0/08", "10.0.0.0/8"}};
  for (const auto& [text, stored] : networks) {
    forget_activity();
    page.subin.user_type(text);
    page.addwhite.user_click();
    EXPECT_EQ(page.subin.text(), stored);
    EXPECT_EQ(rows("whitesub", "subnet").back(), stored);
    EXPECT_EQ(activity().size(), 2u) << text;
  }
  EXPECT_THAT(host.boxes, IsEmpty());

  forget_activity();
  for (const char* text :
       {"10.0.0.0", "", "/8", "10.0.0.0/", "10.0.0.0/0", "10.0.0.0/33", "10.0.0.0 /8", "10.0.0.0  / 8",
        "10.0.0.256/8", "10.0.0.0/8/8", "10.0.0.0/8x", "10.0.0.0/65544"}) {
    host.boxes.clear();
    page.subin.user_type(text);
    page.addblack.user_click();
    ASSERT_EQ(host.boxes.size(), 1u) << text;
    EXPECT_EQ(host.boxes[0].title, "Incorrect Syntax");
    EXPECT_EQ(host.boxes[0].text, "Please refer to your manual");
    EXPECT_EQ(host.boxes[0].style, BoxStyle::critical);
  }
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(SubnetPageTest, AddingClearsTheOtherListButNotAnEarlierCopy) {
  insert("whitesub", "subnet", {"10.0.0.0/8", "10.0.0.0/8", "192.0.2.0/24"});
  SubnetPage& page = shown();
  page.whitesub.user_choose(1);
  page.addblack.user_click();
  page.addblack.user_click();
  EXPECT_THAT(activity().front(), "INSERT INTO blacksub (subnet) VALUES ('10.0.0.0/8')");
  EXPECT_THAT(activity().back(), "DELETE FROM whitesub where subnet='10.0.0.0/8'");
  EXPECT_THAT(items(page.blacksub), ElementsAre("10.0.0.0/8", "10.0.0.0/8"));
  EXPECT_THAT(items(page.whitesub), ElementsAre("192.0.2.0/24"));
  EXPECT_EQ(page.whitesub.index(), -1);

  page.addwhite.user_click();
  EXPECT_THAT(items(page.blacksub), IsEmpty());
  EXPECT_THAT(items(page.whitesub), ElementsAre("192.0.2.0/24", "10.0.0.0/8"));
  EXPECT_EQ(page.whitesub.index(), 1);
}

TEST_F(SubnetPageTest, RemovingTakesTheTextAsItStandsOffBothLists) {
  insert("whitesub", "subnet", {"no network", "10.0.0.0/8"});
  insert("blacksub", "subnet", {"no network"});
  SubnetPage& page = shown();
  page.subin.user_type(" no network");
  page.removeit.user_click();
  EXPECT_THAT(items(page.blacksub), ElementsAre("no network"));
  page.subin.user_type("no network");
  page.removeit.user_click();
  EXPECT_THAT(items(page.blacksub), IsEmpty());
  EXPECT_THAT(items(page.whitesub), ElementsAre("10.0.0.0/8"));
  EXPECT_EQ(activity()[0], "DELETE FROM blacksub where subnet=' no network'");
  EXPECT_THAT(host.boxes, IsEmpty());
}

TEST_F(SubnetPageTest, TheSwitchAndTheTransferHaveTheirKeys) {
  expect_switches({{"subnetcheck", "subnetcheck"}});
  SubnetPage& page = shown();
  EXPECT_THAT(transfer(page.imleft),
              ElementsAre("Subnet Whitelist", "failed: import subnet whitesub /none/x.txt"));
  EXPECT_THAT(transfer(page.imright),
              ElementsAre("Subnet Blacklist", "failed: import subnet blacksub /none/x.txt"));
}

}  // namespace
}  // namespace zrl
