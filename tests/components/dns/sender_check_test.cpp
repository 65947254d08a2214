// The checks of senders, with a DNS server.
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/dns/dns.h"
#include "core/text/error.h"
#include "support/dns_server.h"
#include "support/fake_services.h"

namespace zrl::dns {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::StartsWith;

class SenderCheckTest : public testing::Test {
 protected:
  std::string spf(std::string_view address, std::string_view domain, std::string_view record) {
    return client->check_spf(address, domain, record, "postmaster@" + std::string(domain)).reason;
  }
  std::string redirect(std::string_view record) {
    try {
      return client->get_redirect(record);
    } catch (const Error& error) {
      return std::string("failed: ") + error.what();
    }
  }

  SenderCheckTest() {
    console.lookup.told_servers = {"127.0.0.1:" + std::to_string(server.port())};
    timeout = milliseconds(2000);
  }

  test::FakeDnsServer server;
  test::FakeServices console;
  milliseconds& timeout = console.lookup.told_time_out;
  std::shared_ptr<DnsClient> client = make(console);
};

TEST_F(SenderCheckTest, FindsThePublishedRecords) {
  std::string longer = "v=spf1";
  for (int i = 0; i < 20; ++i) longer += " ip4:192.0.2." + std::to_string(i);  // of two strings
  server.add("example.com TXT " + longer);
  server.add("example.com TXT other");
  server.add("www.example.com CNAME example.com");
  server.add("two.example.com TXT v=spf1 -all");
  server.add("two.example.com TXT v=spf1 ~all");
  server.add("down.example.com ERROR 2");
  server.add("odd.example.com TXT v=spf1 \xFF");
  server.add("_ep.example.com TXT <ep xmlns='http://ms.net/1'/>");
  EXPECT_EQ(client->get_spf_records(" example.com. "), longer);
  EXPECT_EQ(client->get_spf_records("www.example.com"), longer);
  EXPECT_EQ(client->get_spf_records("odd.example.com"), "v=spf1 \xEF\xBF\xBD");
  EXPECT_EQ(client->get_spf_records("none.example.com"), "");
  EXPECT_EQ(client->get_cid_records("example.com"), "<ep xmlns='http://ms.net/1'/>");
  EXPECT_EQ(client->get_cid_records("www.example.com"), "");
  for (const char* domain : {"two.example.com", "down.example.com", "", "a..b", "."}) {
    EXPECT_THROW(client->get_spf_records(domain), Error) << domain;
  }
  EXPECT_THROW(client->get_cid_records(""), Error);
}

TEST_F(SenderCheckTest, ChecksByTheDns) {
  server.add("example.com A 192.0.2.1");
  server.add("example.com AAAA 2001:db8::1");
  server.add("example.com MX 10 mail.example.com");
  server.add("mail.example.com A 192.0.2.2");
  server.add("none.example.com MX 0 .");
  server.add("192.0.2.3 PTR host.example.com");
  server.add("host.example.com A 192.0.2.3");
  server.add("p\\m.example.com A 127.0.0.2");
  server.add("down.example.com ERROR 2");
  const struct {
    const char* address;
    const char* record;
    const char* reason;
  } cases[] = {
      {"192.0.2.1", "v=spf1 a -all", "pass: a in"},
      {" 2001:DB8::1 ", " v=spf1 a -all ", "pass: a in"},
      {"192.0.2.2", "v=spf1 mx -all", "pass: mx in"},
      {"192.0.2.2", "v=spf1 mx:none.example.com -all", "fail"},
      {"192.0.2.3", "v=spf1 ptr -all", "pass: ptr in"},
      {"192.0.2.4", "v=spf1 exists:p\\m.%{d} -all", "pass: exists"},
      {"192.0.2.4", "v=spf1 a:down.example.com -all", "temperror"},
  };
  for (const auto& [address, record, reason] : cases) {
    EXPECT_THAT(spf(address, "example.com", record), StartsWith(reason)) << record;
  }
  for (const char* address : {"", "192.0.2", "mail.example.com"}) {
    EXPECT_THROW(spf(address, "example.com", "v=spf1 +all"), Error) << address;
  }
  const SenderCheck found = client->check_cid("192.0.2.2", "example.com",
                                              "<ep xmlns='http://ms.net/1'><out><m><mx/></m></out></ep>", "");
  EXPECT_TRUE(found.authorised);
  EXPECT_LE(spf("192.0.2.1", "example.com", "v=spf1 +ip4:1.2.3.4" + std::string(60000, 'x')).size(), 1000U);
}

// A record that redirects led to belongs to the domain where it stands.
TEST_F(SenderCheckTest, RemembersWhereARedirectLed) {
  server.add("example.com TXT v=spf1 redirect=_spf.%{d}");
  server.add("_spf.example.com TXT v=spf1 a -all");
  server.add("_spf.example.com A 192.0.2.1");
  EXPECT_EQ(redirect(client->get_spf_records("example.com")), "v=spf1 a -all");
  EXPECT_EQ(spf("192.0.2.1", "Example.com", "v=spf1 a -all"), "pass: a in the record of _spf.example.com");
  EXPECT_THAT(spf("192.0.2.1", "example.net", "v=spf1 a -all"), StartsWith("fail"));
  EXPECT_THAT(spf("192.0.2.1", "example.com", "v=spf1 a ~all"), StartsWith("softfail"));

  EXPECT_THAT(redirect("v=spf1 redirect=_spf.%{d}"), StartsWith("failed: where redirect=_spf.%{d} leads"));
  for (const std::string letter : {"i", "l", "s", "h", "p"}) {
    const std::string domain = letter + ".example.com";
    server.add(domain + " TXT v=spf1 redirect=%{" + letter + "}.example.com");
    EXPECT_THAT(redirect(client->get_spf_records(domain)), StartsWith("failed: where redirect=")) << letter;
  }
  EXPECT_EQ(redirect("v=spf1 redirect=_spf.example.com"), "v=spf1 a -all");
  EXPECT_EQ(redirect("v=spf1 redirect=none.example.com"), "failed: none.example.com has no SPF record");
  for (const char* record :
       {"v=spf1 -all redirect=_spf.example.com", "v=spf1 -all", "", "redirect=_spf.example.com"}) {
    EXPECT_THAT(redirect(record), StartsWith("failed: ")) << record;
  }
}

TEST_F(SenderCheckTest, SurvivesAServerThatIsSilentOrTalksNonsense) {
  timeout = milliseconds(50);
  server.add("example.com A 192.0.2.1");
  server.add("example.com MX 10 mail.example.com");
  server.add("example.com TXT v=spf1 -all");
  server.add("192.0.2.3 PTR host.example.com");
  const char* record = "v=spf1 ptr ?a ?mx -all";
  for (std::size_t size = 0; size < 44; size += 3) {
    server.set_manner({.rewrite = [size](test::DnsMessage message) {
      message.resize(std::min(size, message.size()));
      return message;
    }});
    EXPECT_THAT(spf("192.0.2.3", "example.com", record), StartsWith("temperror")) << size;
    EXPECT_THROW(client->get_spf_records("example.com"), Error);
  }
  server.set_manner({.silent = true});
  EXPECT_EQ(spf("192.0.2.3", "example.com", record), "temperror: no answer from the DNS for example.com");
  EXPECT_THROW(client->get_cid_records("example.com"), Error);
}

}  // namespace
}  // namespace zrl::dns
