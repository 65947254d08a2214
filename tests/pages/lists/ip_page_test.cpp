#include "pages/lists/ip_page.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/error.h"
#include "support/fake_components.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view refused = "Not a valid IP. Please enter only IP Numbers";

class FakeDns : public test::FakeDnsClient {
 public:
  using Lookup = std::function<std::string(std::string_view)>;
  explicit FakeDns(Lookup lookup) : lookup_(std::move(lookup)) {}
  std::string PTR_Query(std::string_view address) override { return lookup_(address); }

 private:
  Lookup lookup_;
};

class IpPageTest : public testing::Test, public test::ShownPage<IpPage> {
 protected:
  IpPageTest() {
    console.components().add<DnsClient>([this] { return std::make_shared<FakeDns>(lookup); });
  }

  FakeDns::Lookup lookup = [](std::string_view address) {
    return "host-" + std::string(address) + ".example";
  };
};

TEST_F(IpPageTest, TheComponentMovesNumbersAndNoFlagIsRaised) {
  insert("Blackhost", "IPNumber", {"192.0.2.1", "192.0.2.2"});
  IpPage& page = shown();
  page.blackl.user_choose(0);
  EXPECT_EQ(page.ip.text(), "192.0.2.1");
  page.Command1.user_click();
  EXPECT_THAT(items(page.whitel), ElementsAre("192.0.2.1"));
  EXPECT_THAT(items(page.blackl), ElementsAre("192.0.2.2"));
  EXPECT_EQ(page.blackl.index(), 0);
  page.Command3.user_click();
  EXPECT_THAT(items(page.whitel), IsEmpty());
  EXPECT_THAT(items(page.blackl), ElementsAre("192.0.2.2", "192.0.2.1"));
  page.Command2.user_click();
  page.Command2.user_click();
  EXPECT_THAT(items(page.blackl), ElementsAre("192.0.2.2"));
  EXPECT_THAT(activity(), ElementsAre("add_to_whitehost 192.0.2.1", "add_to_blackhost 192.0.2.1",
                                      "remove_from_iplist 192.0.2.1", "remove_from_iplist 192.0.2.1"));
}

TEST_F(IpPageTest, OtherTextIsRefusedInTheFieldAndTheListsAreRefilled) {
  IpPage& page = shown();
  for (const char* text : {"", "mail.example", "1.2.3.256", "1.2.3", " 1.2.3.4"}) {
    for (Button* button : {&page.Command1, &page.Command2, &page.Command3}) {
      insert("Whitehost", "IPNumber", {"192.0.2.9"});
      page.ip.user_type(text);
      button->user_click();
      EXPECT_EQ(page.ip.text(), refused) << text;
      EXPECT_EQ(items(page.whitel), rows("Whitehost", "IPNumber"));
    }
  }
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(IpPageTest, EachSwitchHasItsKeyAndLoadingWritesNothing) {
  expect_switches({{"Check1", "ip_checking"},
                   {"bcheck", "checkbodyip"},
                   {"hcheck", "checkheaderip"},
                   {"autobl", "autoBLheader"},
                   {"acreject", "activereject"},
                   {"checkempty", "checkreverse"},
                   {"blr", "checkreverseblacklist"},
                   {"wlr", "checkreversewhitelist"}});
  set_option("ip_checking", 1);
  set_option("autoBLheader", 1);
  set_option("blockndr", 1);
  forget_activity();
  IpPage page(console);
  page.initialise();
  page.refrall.user_click();
  EXPECT_THAT(activity(), IsEmpty());
  EXPECT_EQ(option("blockndr"), "1");
}

TEST_F(IpPageTest, BlackListingSwitchesTheBlockingOfReportsOffButNeverOn) {
  set_option("blockndr", 1);
  IpPage& page = shown();
  page.autobl.user_click();
  page.autobl.user_click();
  EXPECT_THAT(activity(),
              ElementsAre("set_option autoBLheader=1", "set_option blockndr=0", "set_option autoBLheader=0"));
}

TEST_F(IpPageTest, ALookUpFillsTheDomainAndOneThatFailsLeavesIt) {
  IpPage* page = &shown();
  const auto look_up = [&](const char* address) {
    page->domain.user_type("typed.example");
    page->ip.user_type(address);
    page->rlookup.user_click();
    return page->domain.text();
  };
  EXPECT_EQ(look_up("mail.example"), "typed.example");
  EXPECT_EQ(look_up("192.0.2.1"), "host-192.0.2.1.example");
  EXPECT_THAT(activity(), IsEmpty());

  lookup = [](std::string_view) -> std::string { throw Error(5, "no answer"); };
  page = &shown();
  EXPECT_EQ(look_up("192.0.2.1"), "typed.example");
  EXPECT_TRUE(page->rlookup.enabled());
  console.components().remove(DnsClient::program_id);
  page->initialise();
  EXPECT_EQ(look_up("192.0.2.2"), "typed.example");
  EXPECT_THAT(activity(), ElementsAre("failed: PTR_Query 192.0.2.1", "failed: create spf_dns.DNSClass",
                                      "failed: PTR_Query 192.0.2.2"));
}

TEST_F(IpPageTest, ThePageMayBeLeftWhileALookUpWaits) {
  IpPage* page = nullptr;
  lookup = [&](std::string_view) {
    page->terminate();
    return std::string("late.example");
  };
  page = &shown();
  page->ip.user_type("192.0.2.1");
  page->rlookup.user_click();
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(IpPageTest, TheDomainMovesBetweenTheDomainListsWithoutAFlag) {
  insert("whitelist", "entry", {"spam.example", "@*spam.example", "other.example"});
  IpPage& page = shown();
  page.domain.user_type("localhost");
  page.adbl.user_click();
  EXPECT_EQ(page.domain.text(), "localhost");
  page.domain.user_type(" spam.example ");
  page.adbl.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM blacklist where entry='spam.example'",
                                      "DELETE FROM blacklist where entry='@*spam.example'",
                                      "DELETE FROM whitelist where entry='spam.example'",
                                      "DELETE FROM whitelist where entry='@*spam.example'",
                                      "INSERT INTO blacklist (entry) VALUES ('spam.example')"));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("other.example"));
  EXPECT_EQ(page.domain.text(), "");

  page.domain.user_type("spam.example");
  page.adwl.user_click();
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("other.example", "spam.example"));
  EXPECT_THAT(rows("blacklist", "entry"), IsEmpty());
}

TEST_F(IpPageTest, WholeListsAreMovedWithoutAFlag) {
  IpPage& page = shown();
  EXPECT_THAT(transfer(page.imleft),
              ElementsAre("IP Whitelist", "failed: import IPNumber Whitehost /none/x.txt"));
  EXPECT_THAT(transfer(page.imright),
              ElementsAre("IP Blacklist", "failed: import IPNumber Blackhost /none/x.txt"));

  std::filesystem::create_directories(folder.path() / "download");
  std::ofstream(folder.path() / "download/delblackip.txt") << "192.0.2.1\n";
  std::ofstream(folder.path() / "download/addblackip.txt") << "192.0.2.1\n192.0.2.2\n";
  console.components().remove(Downloader::program_id);
  page.remote.user_click();
  EXPECT_THAT(items(page.blackl), ElementsAre("192.0.2.1", "192.0.2.2"));
  for (const char* flag : {"reloadblack", "reloadwhite", "reloadauto"}) EXPECT_EQ(registry(flag), "");
}

}  // namespace
}  // namespace zrl
