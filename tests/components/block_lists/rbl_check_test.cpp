#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/block_lists/zone_tables.h"
#include "core/text/error.h"

namespace zrl::block_lists {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class RblCheckTest : public testing::Test, public test::ZoneTables {
 protected:
  // "2 bl.test": what a test answers.
  std::string value(const MessageContext& context, std::string_view position) {
    const auto lists = make(console);
    if (!lists->initmodule(context)) return "nothing to test";
    auto listing = BlockLists::Listing::black;
    std::string zone = "of the last test";
    lists->Value(position, listing, zone);
    return std::to_string(static_cast<int>(listing)) + (zone.empty() ? "" : " " + zone);
  }
  std::string of_address(const std::string& address) { return value({address, ""}, "connect"); }
  std::string of_sender(const std::string& command) { return value({"", command}, "envelope"); }
};

TEST_F(RblCheckTest, AddressesAreReversedUnderEveryZone) {
  tables["rblserver"] = {"bl.test"};
  server.add("1.2.0.192.bl.test A 127.0.0.2");
  const std::string ipv6 = "a.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.8.b.d.0.1.0.0.2.bl.test";
  server.add(ipv6 + " A 127.0.0.10");
  EXPECT_EQ(of_address("192.0.2.1"), "2 bl.test");
  EXPECT_EQ(of_address(" 2001:db8::A "), "2 bl.test");
  EXPECT_EQ(of_address("::ffff:192.0.2.2"), "0");
  EXPECT_THAT(server.queries(), ElementsAre("A 1.2.0.192.bl.test", "A " + ipv6, "A 2.2.0.192.bl.test"));
  EXPECT_THAT(reports, IsEmpty());
}

TEST_F(RblCheckTest, TheSendersDomainIsTakenFromItsCommand) {
  tables["rblserver"] = {"bl.test"};
  server.add("spam.test.bl.test A 127.0.0.2");
  for (const char* command : {"mail from: adsf@spam.test", "MAIL FROM:<me@Spam.Test.> SIZE=100 BODY=8BITMIME",
                              "mail from:<\"a>b@c\"@spam.test>", "mail from: me@spam.test SIZE=100",
                              "mail from: adsf@me@spam.test", "mail from: <me@spam.test"}) {
    EXPECT_EQ(of_sender(command), "2 bl.test") << command;
  }
  const std::size_t asked = server.queries().size();
  for (const std::string& command :
       {std::string("mail from: <>"), std::string(), std::string("mail from: adsf@"),
        std::string("mail from: <me@[192.0.2.1]>"), std::string("mail from: me@a..b"),
        std::string("mail from: me@b\xC3\xBC"
                    "cher.test"),
        "mail from: me@" + std::string(64, 'x') + ".test", std::string("mail from: me@a\\.test"),
        std::string("mail from: me@a\0b", 17)}) {
    EXPECT_EQ(of_sender(command), "nothing to test") << command;
  }
  EXPECT_EQ(server.queries().size(), asked);
  EXPECT_THROW(value({"", "mail from: me@spam.test"}, "connect"), Error);
  EXPECT_THROW(value({"192.0.2.1", ""}, "envelope"), Error);
  EXPECT_THROW(value({"192.0.2.1", ""}, "data"), Error);
}

TEST_F(RblCheckTest, WhiteZonesGoFirstAndZonesInTheirOrder) {
  tables["wblserver"] = {"first.wl.test", "second.wl.test"};
  tables["rblserver"] = {"first.bl.test", "second.bl.test", "Third.BL.test."};
  for (const char* listed :
       {"third.bl.test", "second.bl.test", "first.bl.test", "second.wl.test", "first.wl.test"}) {
    server.add("1.2.0.192." + std::string(listed) + " A 127.0.0.2");
    EXPECT_EQ(of_address("192.0.2.1"),
              (std::string(listed).ends_with("wl.test") ? "1 " : "2 ") + std::string(listed));
  }
}

TEST_F(RblCheckTest, OnlyAddressesOfListsAreListings) {
  const struct {
    const char* records;
    const char* value;
    const char* report;
  } cases[] = {
      {"A 127.0.0.1", "2 zone.test", ""},
      {"A 127.255.254.255", "2 zone.test", ""},
      {"TXT listed", "0", ""},
      {"A 192.0.2.80", "0", "zone.test: the answer is no listing: 192.0.2.80"},
      {"A 128.0.0.2", "0", "zone.test: the answer is no listing: 128.0.0.2"},
      {"A 127.255.255.254", "0", "zone.test: the zone refuses queries: 127.255.255.254"},
      {"ERROR 3", "0", ""},
      {"ERROR 2", "0", "zone.test: (Could not contact DNS servers|DNS server returned general failure)"},
      {"ERROR 5", "0", "zone.test: (Could not contact DNS servers|DNS server refused query)"},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    const std::string address = "192.0.2." + std::to_string(i);
    server.add(std::to_string(i) + ".2.0.192.zone.test " + cases[i].records);
    tables["rblserver"] = {"zone.test", "other.test"};
    reports.clear();
    EXPECT_EQ(of_address(address), cases[i].value) << cases[i].records;
    if (std::string(cases[i].report).empty()) {
      EXPECT_THAT(reports, IsEmpty()) << cases[i].records;
    } else {
      EXPECT_THAT(reports,
                  ElementsAre(::testing::MatchesRegex("block list " + std::string(cases[i].report))));
    }
  }
  // A parked answer beside a listing: the listing counts.
  server.add("99.2.0.192.zone.test A 192.0.2.80");
  server.add("99.2.0.192.zone.test A 127.0.0.4");
  EXPECT_EQ(of_address("192.0.2.99"), "2 zone.test");
}

// The server answers none of the queries before it has got all of them.
TEST_F(RblCheckTest, AllZonesAreAskedBeforeTheFirstAnswers) {
  std::vector<std::string> expected;
  for (int i = 0; i < 10; ++i) {
    tables[i % 2 == 0 ? "wblserver" : "rblserver"].push_back("zone" + std::to_string(i) + ".test");
    expected.push_back("A 1.2.0.192.zone" + std::to_string(i) + ".test");
  }
  server.add("1.2.0.192.zone9.test A 127.0.0.2");
  server.set_manner({.delay = milliseconds(60'000)});
  timeout = milliseconds(60'000);
  console.on_wait = [&] {
    if (server.queries().size() < expected.size()) return;
    console.on_wait = {};
    server.set_manner({});
    throw Error(1, "all were asked");
  };
  EXPECT_THROW(of_address("192.0.2.1"), Error);
  EXPECT_THAT(server.queries(), testing::UnorderedElementsAreArray(expected));
}

TEST_F(RblCheckTest, ZonesThatDoNotAnswerListNothingAndAreReported) {
  tables["wblserver"] = {"silent.test"};
  tables["rblserver"] = {"bl.test", "broken.test"};
  server.add("1.2.0.192.silent.test SILENT");
  server.add("1.2.0.192.bl.test A 127.0.0.2");
  server.add("1.2.0.192.broken.test ERROR 2");
  timeout = milliseconds(300);
  EXPECT_EQ(of_address("192.0.2.1"), "2 bl.test");
  EXPECT_GE(console.waits, 2);
  EXPECT_THAT(reports, ElementsAre("block list silent.test: Timeout while contacting DNS servers",
                                   StartsWith("block list broken.test: ")));
  tables["rblserver"] = {"broken.test"};
  EXPECT_THROW(of_address("192.0.2.1"), Error);
  tables = {};
  EXPECT_EQ(of_address("192.0.2.1"), "0");
  tables["rblserver"] = {"bl.test"};
  servers.clear();
  EXPECT_THROW(of_address("192.0.2.1"), Error);
}

TEST_F(RblCheckTest, ZonesOfAnyTextAndNumberAreBounded) {
  const std::string long_zone = "a" + std::string(62, 'b') + "." + std::string(63, 'c') + "." +
                                std::string(63, 'd') + "." + std::string(50, 'e') + ".test";
  tables["wblserver"] = {"",
                         "  ",
                         ".",
                         "a..test",
                         "white test",
                         "o'neil.test",
                         std::string(300, 'x'),
                         "\xFF.test",
                         std::string("a\0b.test", 8),
                         "wl.test",
                         " wl.test "};
  tables["rblserver"] = {long_zone};
  for (int i = 0; i < 5000; ++i) tables["rblserver"].push_back("zone" + std::to_string(i) + ".test");
  server.add("1.2.0.192.zone253.test A 127.0.0.2");
  EXPECT_EQ(of_address("192.0.2.1"), "2 zone253.test");
  EXPECT_EQ(of_address("2001:db8::a"), "0");
  EXPECT_THAT(reports,
              testing::IsSupersetOf(
                  {"block list wblserver: left out: \"\" and 8 more, no name of a zone",
                   "block list rblserver: left out: \"zone254.test\" and 4745 more, too many zones"}));
  EXPECT_TRUE(std::ranges::any_of(reports, [&](const std::string& report) {
    return report.starts_with("block list " + long_zone + ": too long for a query: ");
  }));
  const std::vector<std::string> queries = server.queries();
  EXPECT_EQ(std::ranges::count(queries, "A 1.2.0.192.wl.test"), 1);
  EXPECT_LE(queries.size(), 2 * most_zones + 20);  // some may have been repeated
}

}  // namespace
}  // namespace zrl::block_lists
