#include "pages/settings/spf_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dns_environment.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* policy = "<ep xmlns='http://ms.net/1'><out><m><a>192.0.2.1</a></m></out></ep>";

class SpfPageTest : public testing::Test {
 protected:
  SpfPageTest() {
    dns.server.add("example.com TXT v=spf1 ip4:192.0.2.1 -all");
    dns.server.add(std::string("_ep.example.com TXT ") + policy);
    dns.server.add("example.net TXT v=spf1 REDIRECT=r1.example.net");
    dns.server.add("r1.example.net TXT v=spf1 redirect=r2.example.net");
    dns.server.add("r2.example.net TXT v=spf1 redirect=r3.example.net");
    dns.server.add("r3.example.net TXT v=spf1 redirect=r4.example.net");
    dns.server.add("r4.example.net TXT v=spf1 +all");
    dns.server.add("lost.example TXT v=spf1 redirect=none.example");
  }

  test::DnsEnvironment dns;
  test::ShownPage<SpfPage> installed;
};

TEST_F(SpfPageTest, SwitchesAndRecordsAreReadAndWritten) {
  installed.set_string("default_spf", "v=spf1 a -all");
  installed.set_string("default_cid", policy);
  installed.expect_switches({{"check_spf", "check_spf"},
                             {"use_default_spf", "use_default_spf"},
                             {"whitel_spf", "whitel_spf"},
                             {"check_cid", "check_cid"},
                             {"use_default_cid", "use_default_cid"}});
  SpfPage& page = installed.shown();
  EXPECT_EQ(page.default_spf.text(), "v=spf1 a -all");
  EXPECT_EQ(page.default_cid.text(), policy);
  page.default_spf.user_type("v=spf1 mx -all");
  page.default_cid.user_type("<ep/>");
  EXPECT_THAT(installed.activity(), IsEmpty());
  page.updatespf.user_click();
  page.updatecid.user_click();
  EXPECT_THAT(installed.activity(),
              ElementsAre("set_string default_spf=v=spf1 mx -all", "set_string default_cid=<ep/>"));
}

TEST_F(SpfPageTest, FetchesTheRecordAndFollowsThreeRedirects) {
  SpfPage& page = installed.shown();
  page.getspf.user_click();
  EXPECT_THAT(dns.server.queries(), IsEmpty());
  page.spfdom.user_type("example.com");
  page.spfresult.set_caption("authenticated");
  bool disabled = false;
  dns.server.set_manner({.delay = std::chrono::milliseconds(20)});
  installed.host.on_wait = [&] { disabled |= !page.getspf.enabled(); };
  page.getspf.user_click();
  EXPECT_TRUE(disabled);
  EXPECT_TRUE(page.getspf.enabled());
  EXPECT_EQ(page.spfrec.text(), "v=spf1 ip4:192.0.2.1 -all");
  EXPECT_EQ(page.spfresult.caption(), "");
  EXPECT_EQ(page.ciddom.text(), "example.com");

  const std::pair<const char*, const char*> cases[] = {
      {"example.net", "v=spf1 redirect=r4.example.net"},
      {"r1.example.net", "v=spf1 +all"},
      {"lost.example", "v=spf1 redirect=none.example"},
      {"none.example", ""},
  };
  for (const auto& [domain, record] : cases) {
    page.spfdom.user_type(domain);
    page.getspf.user_click();
    EXPECT_EQ(page.spfrec.text(), record) << domain;
  }
  EXPECT_EQ(page.ciddom.text(), "example.com");
  EXPECT_THAT(installed.activity(), ElementsAre("failed: get_redirect v=spf1 redirect=none.example"));
  page.getcid.user_click();
  EXPECT_EQ(page.cidrec.text(), policy);
}

// Else the next check would take the record of one domain for another.
TEST_F(SpfPageTest, ARecordThatCannotBeFetchedLeavesNone) {
  dns.server.add("broken.example ERROR 2");
  dns.server.add("_ep.broken.example ERROR 2");
  SpfPage& page = installed.shown();
  page.spfdom.user_type("example.com");
  page.getspf.user_click();
  page.getcid.user_click();
  EXPECT_EQ(page.spfrec.text(), "v=spf1 ip4:192.0.2.1 -all");
  EXPECT_EQ(page.cidrec.text(), policy);
  page.spfdom.user_type("broken.example");
  page.ciddom.user_type("broken.example");
  page.getspf.user_click();
  page.getcid.user_click();
  EXPECT_EQ(page.spfrec.text() + page.cidrec.text(), "");
  EXPECT_THAT(installed.activity(), ElementsAre("failed: get_spf_records broken.example",
                                                "failed: get_cid_records broken.example"));
  page.spfip.user_type("192.0.2.1");
  page.cidip.user_type("192.0.2.1");
  page.checkspf.user_click();
  page.checkcid.user_click();
  EXPECT_EQ(page.spfresult.caption(), "NOT authenticated");
  EXPECT_EQ(page.cidresult.caption(), "NOT authenticated");
}

TEST_F(SpfPageTest, TestsAnAddressAndTellsWhy) {
  SpfPage& page = installed.shown();
  page.checkspf.user_click();
  page.checkcid.user_click();
  EXPECT_EQ(page.spfresult.caption() + page.cidresult.caption(), "");

  page.spfdom.user_type("example.com");
  page.spfip.user_type("192.0.2.1");
  page.getspf.user_click();
  page.checkspf.user_click();
  EXPECT_EQ(page.spfresult.caption(), "authenticated");
  EXPECT_EQ(page.cidip.text(), "192.0.2.1");
  page.spfip.user_type("192.0.2.2");
  page.checkspf.user_click();
  EXPECT_EQ(page.spfresult.caption(), "NOT authenticated");
  EXPECT_EQ(page.cidip.text(), "192.0.2.1");
  page.spfip.user_type("nobody");
  page.checkspf.user_click();
  EXPECT_EQ(page.spfresult.caption(), "NOT authenticated");
  const std::string arguments = " example.com v=spf1 ip4:192.0.2.1 -all postmaster@example.com";
  EXPECT_THAT(
      installed.activity(),
      ElementsAre("check_spf 192.0.2.1" + arguments + ": pass: ip4:192.0.2.1 in the record of example.com",
                  "check_spf 192.0.2.2" + arguments + ": fail: -all in the record of example.com",
                  "failed: check_spf nobody" + arguments));
}

TEST_F(SpfPageTest, AnEmptyRecordIsReplacedByTheBestGuess) {
  SpfPage& page = installed.shown();
  page.default_cid.user_type(policy);
  page.default_spf.user_type("v=spf1 exists:%{l}.%{o} -all");
  dns.server.add("postmaster.example.com A 127.0.0.2");
  page.ciddom.user_type("example.com");
  page.cidip.user_type("192.0.2.1");
  page.checkcid.user_click();
  EXPECT_EQ(page.cidrec.text(), policy);
  EXPECT_EQ(page.cidresult.caption(), "authenticated");
  EXPECT_EQ(page.spfip.text(), "192.0.2.1");
  page.spfdom.user_type("example.com");
  page.checkspf.user_click();
  EXPECT_EQ(page.spfrec.text(), "v=spf1 exists:%{l}.%{o} -all");
  EXPECT_EQ(page.spfresult.caption(), "authenticated");
  EXPECT_THAT(installed.activity(), Contains(testing::EndsWith("(assumed: local part \"postmaster\")")));
  EXPECT_EQ(page.spfdom.text(), "example.com");
}

TEST_F(SpfPageTest, WithoutTheComponentATestIsAFailedStep) {
  installed.console.components().remove(DnsClient::program_id);
  SpfPage& page = installed.shown();
  page.spfdom.user_type("example.com");
  page.spfip.user_type("192.0.2.1");
  page.getspf.user_click();
  page.checkspf.user_click();
  EXPECT_EQ(page.spfresult.caption(), "NOT authenticated");
  EXPECT_EQ(page.cidip.text(), "192.0.2.1");
  EXPECT_THAT(installed.activity(), Contains("failed: get_spf_records example.com"));
}

}  // namespace
}  // namespace zrl
