#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/block_lists/zone_tables.h"

namespace zrl::block_lists {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class UriCheckTest : public testing::Test, public test::ZoneTables {
 protected:
  std::string answer(std::string_view text) {
    const auto check = make_uri_check(console);
    EXPECT_EQ(check->info(), 1);
    check->initmodule({});
    check->send("BODY", "SEND", text);
    return check->send();
  }
};

TEST_F(UriCheckTest, TellsWhichDomainIsListedWhere) {
  tables["surblserver"] = {"one.zone", "two.zone"};
  server.add("spam.test.one.zone A 127.0.0.2");
  server.add("spam.test.two.zone A 127.0.0.64");
  server.add("1.2.0.192.two.zone A 127.0.0.2");
  server.add("parked.test.two.zone A 192.0.2.80");
  EXPECT_EQ(answer("http://www.spam.test/ and http://192.0.2.1/ and http://parked.test"),
            "spam.test is listed in one.zone, two.zone; 192.0.2.1 is listed in two.zone");
  EXPECT_THAT(server.queries(), UnorderedElementsAre("A spam.test.one.zone", "A spam.test.two.zone",
                                                     "A 1.2.0.192.one.zone", "A 1.2.0.192.two.zone",
                                                     "A parked.test.one.zone", "A parked.test.two.zone"));
  EXPECT_THAT(reports, ElementsAre("block list two.zone: the answer is no listing: 192.0.2.80"));
  EXPECT_EQ(answer("nothing here, http://ham.test/"), "");
}

TEST_F(UriCheckTest, ForgetsTheLastMessageAndNeedsZonesAndServers) {
  tables["surblserver"] = {"one.zone"};
  server.add("spam.test.one.zone A 127.0.0.2");
  const auto check = make_uri_check(console);
  EXPECT_TRUE(check->initmodule({}));
  check->send("BODY", "SEND", "spam.test");
  EXPECT_EQ(check->send(), "spam.test is listed in one.zone");
  check->send("BODY", "SEND", "ham.test");
  EXPECT_EQ(check->send(), "");
  check->send("BODY", "SEND", "spam.test");
  tables["surblserver"].clear();
  EXPECT_FALSE(check->initmodule({}));
  EXPECT_EQ(check->send(), "");
  check->send("BODY", "SEND", "spam.test");
  EXPECT_EQ(check->send(), "");
  servers.clear();
  EXPECT_EQ(check->info(), 0);
}

TEST_F(UriCheckTest, LookUpsAndTheAnswerAreBounded) {
  tables["surblserver"] = {"one.zone", "two.zone", "three.zone", "four.zone", "five.zone"};
  console.lookup.told_time_out = std::chrono::seconds(60);  // none of the thousand look-ups is to be cut off
  std::string text;
  for (int i = 0; i < 1000; ++i) {
    const std::string domain = "spam" + std::to_string(i) + ".test";
    text += "http://" + domain + "/ ";
    server.add(domain + ".five.zone A 127.0.0.2");
  }
  const std::string words = answer(text);
  EXPECT_THAT(words, testing::StartsWith("spam0.test is listed in five.zone; spam1.test is"));
  EXPECT_THAT(words, testing::EndsWith(" more are listed"));
  EXPECT_LT(words.size(), 5000U);
  EXPECT_THAT(reports,
              ElementsAre("block list names in the text: only 204 are looked up, the others are left out"));
  EXPECT_GE(server.queries().size(), 5U * 204);
  EXPECT_LT(server.queries().size(), 2 * most_lookups);  // some may have been repeated
}

}  // namespace
}  // namespace zrl::block_lists
