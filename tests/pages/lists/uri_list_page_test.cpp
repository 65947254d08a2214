#include "pages/lists/uri_list_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dns_environment.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UriListPageTest : public testing::Test, public test::ShownPage<UriListPage> {
 protected:
  std::string result_of(UriListPage& page, std::string_view text) {
    page.Text2.user_type(text);
    page.testit.user_click();
    EXPECT_TRUE(page.testit.enabled());
    return page.uriresult.caption();
  }
};

TEST_F(UriListPageTest, AnEntryStandsOnce) {
  insert("surblserver", "entry", {"a.test", "b.test", "b.test"});
  UriListPage& page = shown();
  page.List1.user_choose(1);
  page.adduri.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM surblserver where entry='b.test'",
                                      "INSERT INTO surblserver (entry) VALUES ('b.test')"));
  EXPECT_THAT(items(page.List1), ElementsAre("a.test", "b.test"));
  forget_activity();
  page.Text1.user_type(" a.test ");
  page.removeuri.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM surblserver where entry='a.test'"));
  EXPECT_EQ(page.Text1.text(), "a.test");
  EXPECT_THAT(rows("surblserver", "entry"), ElementsAre("b.test"));
  expect_switches({{"enablesurbl", "enablesurbl"}});
  EXPECT_EQ(dialog_of(shown().Command3), "URI Realtime Blocklists : surblserver.txt");
}

TEST_F(UriListPageTest, TheTestTellsWhichDomainsAreListed) {
  test::DnsEnvironment dns;
  dns.server.add("spam.test.uri.test A 127.0.0.2");
  insert("surblserver", "entry", {"uri.test"});
  dns.server.set_manner({.delay = std::chrono::milliseconds(300)});
  UriListPage& page = shown();
  EXPECT_EQ(result_of(page, "<a href=\"http://www.spam.test/\">x</a>"), "spam.test is listed in uri.test");
  host.on_wait = [&] {
    EXPECT_FALSE(page.testit.enabled());
    EXPECT_EQ(page.uriresult.caption(), "");
  };
  EXPECT_EQ(result_of(page, "http://www.ham.test/"), "");
  EXPECT_GE(host.waits, 2);
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(UriListPageTest, AMissingOrUnusableCheckAnswersNothing) {
  {
    test::DnsEnvironment dns;
    dns.server.add("spam.test.uri.test A 127.0.0.2");
    insert("surblserver", "entry", {"uri.test"});
    EXPECT_NE(result_of(shown(), "spam.test"), "");
  }
  console.components().remove(checks::surbl);
  UriListPage& page = shown();
  EXPECT_EQ(result_of(page, "spam.test"), "");
  EXPECT_THAT(activity(), ElementsAre("failed: send to surbl.plugin"));
}

}  // namespace
}  // namespace zrl
