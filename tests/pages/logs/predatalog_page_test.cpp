#include "pages/logs/predatalog_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/log_rows.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PredatalogPageTest : public testing::Test, public test::ShownPage<PredatalogPage> {
 protected:
  PredatalogPageTest() {
    console.components().add<DnsClient>([] { return std::make_shared<test::FakeDns>(); });
    log("192.0.2.1", "2", "20051104120001", "blacklisted HELO");
    log("192.0.2.2", "2", "20051104120002", "no mail exchanger");
    log("192.0.2.3", "1", "20051104120003", "known sender");
    log("192.0.2.4", "2", "20051104120004", "blacklisted HELO");
    log("not an address", "2", "20051104120005", "blacklisted HELO");
    log("192.0.2.5", "0", "20051104120006", "");
    execute(test::logged("iplog", "192.0.2.1", "2", "20051104120001"));
  }

  void log(std::string_view address, std::string_view status, std::string_view time, std::string_view why) {
    execute(test::logged("predatalog", address, status, time, why));
  }
  // The page in a view, nothing in the record, with the reason clicked.
  PredatalogPage& viewed(const char* option, const char* why) {
    PredatalogPage& page = shown();
    page.find(option)->user_click();
    page.reason.user_choose(static_cast<std::int64_t>(page.reason.items().find(why)));
    forget_activity();
    return page;
  }
};

TEST_F(PredatalogPageTest, ShowsEachReasonOnceAtItsLatestTime) {
  PredatalogPage& page = shown();
  EXPECT_THAT(items(page.reason), ElementsAre("no mail exchanger", "known sender", "blacklisted HELO"));
  EXPECT_EQ(page.reason.index(), 2);
  EXPECT_EQ(page.rtext.text(), "");
  EXPECT_FALSE(page.cchange.enabled());
  EXPECT_THAT(items(page.ip), IsEmpty());
  EXPECT_EQ(page.cchange.caption(), "Neutral IP's below");
  EXPECT_EQ(page.Label4.caption(), "1");
  EXPECT_EQ(page.Label5.caption(), "4");
  EXPECT_EQ(page.Label6.caption(), "1");
}

TEST_F(PredatalogPageTest, AViewChoosesItsLastReasonAndItsCaptions) {
  PredatalogPage& page = shown();
  page.blacklist.user_click();
  EXPECT_THAT(items(page.reason), ElementsAre("no mail exchanger", "blacklisted HELO"));
  EXPECT_EQ(page.rtext.text(), "blacklisted HELO");
  EXPECT_THAT(items(page.ip), ElementsAre("192.0.2.1", "192.0.2.4"));
  EXPECT_EQ(page.ipcount.caption(), "2 listed");
  EXPECT_EQ(page.cchange.caption(), "Whitelist IP's below");
  EXPECT_EQ(page.ipaction.caption(), "Whitelist");
  EXPECT_FALSE(page.ipaction.enabled());
  page.ip.user_choose(1);
  EXPECT_EQ(page.IPNumber.text(), "192.0.2.4");
  EXPECT_TRUE(page.ipaction.enabled());
  page.whitelist.user_click();
  EXPECT_EQ(page.cchange.caption(), "Blacklist IP's below");
  EXPECT_THAT(items(page.ip), ElementsAre("192.0.2.3"));
}

TEST_F(PredatalogPageTest, ChangingAllWritesTheReasonThenEachAddressInThePreDataLogFirst) {
  PredatalogPage& page = viewed("blacklist", "blacklisted HELO");
  page.cchange.user_click();
  EXPECT_THAT(
      activity(),
      ElementsAre("UPDATE predatalog set status=1 where reason='blacklisted HELO'",
                  "UPDATE predatalog set status=1 where IPNumber='192.0.2.1'",
                  "UPDATE iplog set status=1 where IPNumber='192.0.2.1'", "add_to_whitehost 192.0.2.1",
                  "UPDATE predatalog set status=1 where IPNumber='192.0.2.4'",
                  "UPDATE iplog set status=1 where IPNumber='192.0.2.4'", "add_to_whitehost 192.0.2.4"));
  EXPECT_THAT(rows("iplog", "status"), ElementsAre("1"));
  EXPECT_TRUE(page.cchange.enabled());
  EXPECT_GE(host.progress_reports, 2);
  // The reason was consumed, so the addresses are not listed again before the next click.
  EXPECT_THAT(items(page.ip), IsEmpty());
  EXPECT_EQ(page.ipcount.caption(), "0 listed");
}

TEST_F(PredatalogPageTest, TheReasonThatIsMarkedIsTheOneThatIsActedOn) {
  log("192.0.2.6", "2", "20051104120003", "unknown recipient");
  PredatalogPage& page = viewed("blacklist", "no mail exchanger");
  // Later rows move the reason down; a change takes it out of the view.
  log("192.0.2.7", "2", "20051104120007", "no mail exchanger");
  page.ip.user_choose(0);
  page.delip.user_click();
  EXPECT_THAT(items(page.reason), ElementsAre("unknown recipient", "blacklisted HELO", "no mail exchanger"));
  EXPECT_EQ(page.reason.index(), 2);
  EXPECT_EQ(page.rtext.text(), "no mail exchanger");
  page.cchange.user_click();
  EXPECT_THAT(items(page.reason), ElementsAre("unknown recipient", "blacklisted HELO"));
  EXPECT_EQ(page.reason.index(), -1);
  page.initialise();
  EXPECT_EQ(page.reason.index(), -1) << "shown again";
}

TEST_F(PredatalogPageTest, OneAddressGoesToTheOppositeListInTwoViews) {
  const struct {
    const char* view;
    const char* reason;
    const char* operation;
    const char* digit;
  } cases[] = {{"blacklist", "no mail exchanger", "add_to_blackhost", "1"},
               {"whitelist", "known sender", "add_to_whitehost", "2"},
               {"showall", "blacklisted HELO", "remove_from_iplist", "0"}};
  for (const auto& [option, why, operation, digit] : cases) {
    PredatalogPage& page = viewed(option, why);
    page.ip.user_choose(0);
    const std::string address = page.IPNumber.text();
    page.ipaction.user_click();
    const std::string set = std::string(" set status=") + digit + " where IPNumber='" + address + "'";
    EXPECT_THAT(activity(),
                ElementsAre(operation + (" " + address), "UPDATE iplog" + set, "UPDATE predatalog" + set));
  }
  PredatalogPage& page = viewed("showall", "blacklisted HELO");
  page.IPNumber.user_type("1.2.3.999");
  page.ipaction.user_click();
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(PredatalogPageTest, DeletingKeepsToTheViewTheListOrTheAddress) {
  PredatalogPage& page = viewed("blacklist", "blacklisted HELO");
  page.ip.user_choose(0);
  page.delip.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM iplog where IPNumber='192.0.2.1'",
                                      "DELETE FROM predatalog where IPNumber='192.0.2.1'",
                                      "DELETE FROM subjectlog where IPNumber='192.0.2.1'",
                                      "DELETE FROM bodylog where IPNumber='192.0.2.1'",
                                      "DELETE FROM avlog where IPNumber='192.0.2.1'"));

  PredatalogPage& again = viewed("blacklist", "blacklisted HELO");
  again.Command2.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM predatalog where IPNumber='192.0.2.4'",
                                      "DELETE FROM avlog where IPNumber='192.0.2.4'",
                                      "DELETE FROM iplog where IPNumber='192.0.2.4'",
                                      "DELETE FROM subjectlog where IPNumber='192.0.2.4'",
                                      "DELETE FROM bodylog where IPNumber='192.0.2.4'",
                                      "DELETE FROM predatalog where reason='blacklisted HELO'"));
  EXPECT_THAT(rows("predatalog", "IPNumber"), ElementsAre("192.0.2.2", "192.0.2.3", "192.0.2.5"));

  for (const auto& [option, statement] : {std::pair{"whitelist", "DELETE FROM predatalog where status=1"},
                                          std::pair{"blacklist", "DELETE FROM predatalog where status=2"},
                                          std::pair{"showall", "DELETE FROM predatalog"}}) {
    PredatalogPage& view = shown();
    view.find(option)->user_click();
    forget_activity();
    view.Command1.user_click();
    EXPECT_THAT(activity(), ElementsAre(statement));
  }
}

TEST_F(PredatalogPageTest, AReasonWithAnApostropheFindsNothingAndChangesNothing) {
  StringList reasons;
  PredatalogPage& page = shown();
  page.reason.add_item("it's hostile'; DROP TABLE iplog; --");
  page.reason.user_choose(static_cast<std::int64_t>(page.reason.items().size()) - 1);
  EXPECT_THAT(items(page.ip), IsEmpty());
  EXPECT_TRUE(page.cchange.enabled());
  page.cchange.user_click();
  EXPECT_THAT(activity().back(),
              "failed: UPDATE predatalog set status=0 where reason='it's hostile'; DROP TABLE iplog; --'");
  EXPECT_EQ(rows("predatalog", "IPNumber").size(), 6u);
}

TEST_F(PredatalogPageTest, AClickWhileTheListIsBuiltLeavesOnlyItsOwnAddresses) {
  PredatalogPage& page = shown();
  page.blacklist.user_click();
  bool clicked = false;
  host.on_process_events = [&] {
    if (clicked || page.ip.items().empty()) return;
    clicked = true;
    page.reason.user_choose(0);
  };
  page.reason.user_choose(1);
  EXPECT_TRUE(clicked);
  EXPECT_EQ(page.rtext.text(), "no mail exchanger");
  EXPECT_THAT(items(page.ip), ElementsAre("192.0.2.2"));
}

TEST_F(PredatalogPageTest, LookingUpAndConnecting) {
  PredatalogPage& page = shown();
  page.IPNumber.user_type("192.0.2.4");
  page.Command3.user_click();
  EXPECT_EQ(page.reversedom.text(), "host-192.0.2.4.example");
  page.Command7.user_click();
  page.IPNumber.user_type("nonsense");
  page.Command3.user_click();
  EXPECT_EQ(page.IPNumber.text(), "");
  EXPECT_EQ(page.reversedom.text(), "");
  page.Command7.user_click();
  page.reversedom.user_type("mx.example");
  page.Command7.user_click();
  ASSERT_EQ(host.programs.size(), 2u);
  EXPECT_EQ(host.programs[0].command_line(), "telnet.exe 192.0.2.4 25");
  EXPECT_EQ(host.programs[1].command_line(), "telnet.exe mx.example 25");
}

}  // namespace
}  // namespace zrl
