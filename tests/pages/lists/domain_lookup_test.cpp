// The domain page's look-ups, with a DNS server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pages/lists/domain_page.h"
#include "support/dns_environment.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

class DomainLookupTest : public testing::Test {
 protected:
  DomainLookupTest() {
    dns.server.add("example.com MX 20 backup.example.com");
    dns.server.add("example.com MX 10 mail.example.com");
    dns.server.add("mail.example.com A 192.0.2.1");
    dns.server.add("example.net MX 10 nowhere.example.net");
  }

  test::DnsEnvironment dns;
  test::ShownPage<DomainPage> installed;
};

TEST_F(DomainLookupTest, FindsTheAddressOfTheExchanger) {
  struct Case {
    const char* typed;
    const char* left;
    const char* found;
  };
  const Case cases[] = {
      {"example.com", "example.com", "192.0.2.1"},
      {"www.sub.example.com", "example.com", "192.0.2.1"},  // by its last two labels
      {"example.net", "example.net", ""},                   // an exchanger without an address
      {"example", "example", ""},
      {"", "", ""},
  };
  DomainPage& page = installed.shown();
  for (const Case& one : cases) {
    page.mxip.set_text("old");
    page.Text1.user_type(one.typed);
    page.findmx.user_click();
    EXPECT_EQ(page.Text1.text(), one.left);
    EXPECT_EQ(page.mxip.text(), one.found) << one.typed;
    EXPECT_TRUE(page.findmx.enabled());
  }
}

TEST_F(DomainLookupTest, AsksForEachNameOnce) {
  DomainPage& page = installed.shown();
  for (const char* name : {"missing.test", "www.absent.test", "onelabel"}) {
    page.Text1.user_type(name);
    page.findmx.user_click();
  }
  EXPECT_THAT(dns.server.queries(),
              testing::ElementsAre("MX missing.test", "MX www.absent.test", "MX absent.test", "MX onelabel"));
}

TEST_F(DomainLookupTest, ShowsTheLastExchangerOrLeavesTheField) {
  DomainPage& page = installed.shown();
  page.Text1.user_type("example.com");
  page.Command6.user_click();
  EXPECT_EQ(page.mxip.text(), "backup.example.com.");
  page.Text1.user_type("missing.example.com");
  page.Command6.user_click();
  EXPECT_EQ(page.mxip.text(), "backup.example.com.");
  EXPECT_THAT(installed.activity(), testing::ElementsAre("failed: lookup_mx missing.example.com"));
}

TEST_F(DomainLookupTest, TheButtonIsOutWhileTheLookUpRuns) {
  DomainPage& page = installed.shown();
  page.Text1.user_type("example.com");
  bool enabled = false;
  installed.host.on_wait = [&] { enabled = enabled || page.findmx.enabled(); };
  page.findmx.user_click();
  EXPECT_GE(installed.host.waits, 2);
  EXPECT_FALSE(enabled);
}

}  // namespace
}  // namespace zrl
