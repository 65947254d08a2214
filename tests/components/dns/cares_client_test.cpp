#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>

#include <ares.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/dns/dns.h"
#include "components/dns/dns_answers.h"
#include "components/dns/dns_queries.h"
#include "core/text/error.h"
#include "support/dns_environment.h"
#include "support/fake_services.h"
#include "support/installed_console.h"

namespace zrl::dns {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

class DnsClientTest : public testing::Test {
 protected:
  std::string ptr(std::string_view address) { return make(console)->PTR_Query(address); }
  std::string failure_of_ptr(std::string_view address) {
    try {
      return "found " + ptr(address);
    } catch (const Error& error) {
      return error.what();
    }
  }
  static std::string at(const test::FakeDnsServer& one) { return "127.0.0.1:" + std::to_string(one.port()); }

  DnsClientTest() { servers = {at(server)}; }

  test::FakeDnsServer server;
  test::FakeServices console;
  std::vector<std::string>& servers = console.lookup.told_servers;
  milliseconds& timeout = console.lookup.told_time_out;
};

TEST_F(DnsClientTest, FindsTheNameOfAnAddress) {
  server.add("192.0.2.1 PTR mail.example.com");
  server.add("192.0.2.1 PTR www.example.com");
  server.add("2.2.0.192.in-addr.arpa CNAME 2.customer.example.net");  // delegated (RFC 2317)
  server.add("2.customer.example.net PTR host.example.net");
  server.set_manner({.delay = milliseconds(100)});
  EXPECT_EQ(ptr("192.0.2.1"), "mail.example.com");
  EXPECT_EQ(ptr(" 192.0.2.2 "), "host.example.net");
  EXPECT_THAT(server.queries(), ElementsAre("PTR 1.2.0.192.in-addr.arpa", "PTR 2.2.0.192.in-addr.arpa"));
  EXPECT_GE(console.waits, 2);
}

TEST_F(DnsClientTest, RaisesWhatPreventsAnAnswer) {
  server.add("3.2.0.192.in-addr.arpa ERROR 2");
  server.add("192.0.2.4 TXT nothing");
  server.add("4.2.0.192.in-addr.arpa TXT nothing");
  EXPECT_EQ(failure_of_ptr("192.0.2.9"), "no host name for 192.0.2.9: Domain name not found");
  EXPECT_THAT(failure_of_ptr("192.0.2.3"), testing::StartsWith("no host name for 192.0.2.3: "));
  EXPECT_THAT(failure_of_ptr("192.0.2.4"), testing::StartsWith("no host name for 192.0.2.4: "));
  const std::size_t asked = server.queries().size();
  for (const char* text : {"", "mail.example.com", "300.1.1.1", "1.2.3", "::1"}) {
    EXPECT_THAT(failure_of_ptr(text), testing::StartsWith("not an IPv4 address")) << text;
  }
  servers.clear();
  EXPECT_EQ(failure_of_ptr("192.0.2.9"), "no DNS server is known");
  EXPECT_EQ(server.queries().size(), asked);
}

TEST_F(DnsClientTest, RepeatsAndGoesToTheNextServer) {
  server.add("192.0.2.1 PTR mail.example.com");
  timeout = milliseconds(1400);
  server.set_manner({.lost = 1});
  EXPECT_EQ(ptr("192.0.2.1"), "mail.example.com");
  EXPECT_EQ(server.queries().size(), 2U);

  auto gone = std::make_unique<test::FakeDnsServer>();
  servers = {"[fe80::1%lo]:53", at(*gone), at(server)};
  gone.reset();
  EXPECT_EQ(ptr("192.0.2.1"), "mail.example.com");
}

TEST_F(DnsClientTest, EndsWithTheTimeOutOrWhatTheWaitingRaises) {
  timeout = milliseconds(150);
  server.set_manner({.silent = true});
  EXPECT_THAT(failure_of_ptr("192.0.2.1"), testing::StartsWith("no host name for 192.0.2.1: Timeout"));
  timeout = milliseconds(60000);
  console.sleeps = false;  // as a console does that is ending
  EXPECT_THROW(ptr("192.0.2.1"), Error);
  console.sleeps = true;
  console.on_wait = [] { throw Error(91, "the console is being stopped"); };
  EXPECT_EQ(failure_of_ptr("192.0.2.1"), "the console is being stopped");
}

TEST_F(DnsClientTest, IgnoresLiesAndSurvivesMalformedAnswers) {
  server.add("192.0.2.1 PTR mail.example.com");
  server.set_manner({.delay = milliseconds(30), .lies = true});
  EXPECT_EQ(ptr("192.0.2.1"), "mail.example.com");
  timeout = milliseconds(70);
  for (const std::size_t size : {0, 5, 12, 30, 45, 60}) {
    server.set_manner({.rewrite = [size](test::DnsMessage message) {
      message.resize(size);
      return message;
    }});
    EXPECT_THAT(failure_of_ptr("192.0.2.1"), testing::StartsWith("no host name")) << size;
  }
}

TEST_F(DnsClientTest, WaitsOnForTheAnswerToItsOwnQuestion) {
  timeout = milliseconds(3000);
  server.add("own.test TXT right");
  const std::pair<const char*, std::function<void(test::DnsMessage&)>> forgeries[] = {
      {"a query", [](test::DnsMessage& message) { message[2] &= 0x7F; }},
      {"another opcode", [](test::DnsMessage& message) { message[2] |= 0x10; }},
      {"no question", [](test::DnsMessage& message) { message[5] = 0; }},
      {"another name", [](test::DnsMessage& message) { message[13] ^= 1; }},
      {"another class", [](test::DnsMessage& message) { message[25] ^= 2; }},
      {"records of another name", [](test::DnsMessage& message) { message[27] += 4; }},
  };
  for (const auto& [name, forge] : forgeries) {
    server.set_manner({.delay = milliseconds(60), .forge = [&forge = forge](test::DnsMessage message) {
                         message.back() ^= 3;
                         forge(message);
                         return message;
                       }});
    DnsQueries queries(console);
    const std::size_t query = queries.start("own.test", 16);
    queries.finish();
    std::vector<std::string> texts;
    EXPECT_EQ(read_texts(queries[query], texts), ARES_SUCCESS) << name;
    EXPECT_THAT(texts, ElementsAre("right")) << name;
  }
}

TEST_F(DnsClientTest, AsksAgainByStreamWhenAnAnswerIsTruncated) {
  timeout = milliseconds(3000);
  for (int i = 0; i < 60; ++i) server.add("big.test MX 1 mail" + std::to_string(i) + ".big.test");
  server.set_manner({.room = 512});
  DnsQueries queries(console);
  const std::size_t query = queries.start("big.test", 15);
  queries.finish();
  std::vector<std::string> exchangers;
  EXPECT_EQ(read_exchangers(queries[query], exchangers), ARES_SUCCESS);
  EXPECT_EQ(exchangers.size(), 60U);
  EXPECT_THAT(server.queries(), ElementsAre("MX big.test", "TCP MX big.test"));
}

TEST_F(DnsClientTest, QueriesOfOneCallAreUnderWayTogether) {
  timeout = milliseconds(1000);
  server.add("a.test TXT v=spf1 -all");
  server.add("b.test A 192.0.2.1");
  server.set_manner({.delay = milliseconds(100)});
  DnsQueries queries(console);
  const std::size_t text = queries.start("a.test", 16);
  const std::size_t address = queries.start("b.test", 1);
  const std::size_t missing = queries.start("c.test", 1);
  std::size_t at_first_answer = 0;
  console.on_wait = [&] {
    if (queries[text].message.empty()) at_first_answer = server.queries().size();
  };
  queries.finish();
  EXPECT_EQ(at_first_answer, 3U);
  EXPECT_EQ(queries[text].status, ARES_SUCCESS);
  EXPECT_EQ(queries[address].message.size(), 40U);
  EXPECT_EQ(queries[missing].status, ARES_ENOTFOUND);
  EXPECT_THAT(server.queries(), UnorderedElementsAre("TXT a.test", "A b.test", "A c.test"));
}

// Sending policies lead to names that are no host names.
TEST_F(DnsClientTest, AsksForNamesWithAnyCharacters) {
  timeout = milliseconds(1000);
  const char* const names[] = {"a+b.test", "a'b.test", "a\\b.test", "\xC3\xBC._x.test", "plain.test"};
  for (const char* name : names) server.add(std::string(name) + " TXT " + name);
  for (const char* name : names) {
    DnsQueries queries(console);
    const std::size_t query = queries.start(name, 16);
    const std::size_t alike = queries.start("a=b.test", 16);
    queries.finish();
    std::vector<std::string> texts;
    EXPECT_EQ(read_texts(queries[query], texts), ARES_SUCCESS) << name;
    EXPECT_THAT(texts, ElementsAre(name));
    EXPECT_EQ(queries[alike].status, ARES_ENOTFOUND) << name;
  }
}

TEST_F(DnsClientTest, AMalformedAnswerEndsItsOwnQueryAlone) {
  timeout = milliseconds(1000);
  server.add("bad.test TXT something");
  server.add("good.test TXT something");
  server.set_manner({.delay = milliseconds(20), .rewrite = [](test::DnsMessage message) {
                       if (message[13] == 'b') message.resize(message.size() - 4);
                       return message;
                     }});
  DnsQueries queries(console);
  const std::size_t bad = queries.start("bad.test", 16);
  const std::size_t good = queries.start("good.test", 16);
  queries.finish();
  std::vector<std::string> texts;
  EXPECT_EQ(read_texts(queries[bad], texts), ARES_EBADRESP);
  EXPECT_EQ(read_texts(queries[good], texts), ARES_SUCCESS);
  EXPECT_THAT(server.queries(), UnorderedElementsAre("TXT bad.test", "TXT good.test"));
}

TEST(ComposedDnsClientTest, UsesTheConsolesServersTimeOutAndWait) {
  test::DnsEnvironment dns;
  test::InstalledConsole installed;
  Console& console = installed.console;
  console.settings().regwrite_dword(console.settings().path_of("DNSTimeout"), 3000);
  dns.server.add("192.0.2.1 PTR mail.example.com");
  dns.server.set_manner({.delay = milliseconds(20)});
  const auto client = console.components().create<DnsClient>();
  EXPECT_EQ(client->PTR_Query("192.0.2.1"), "mail.example.com");
  EXPECT_EQ(console.names().time_out(), milliseconds(3000));
  EXPECT_GE(installed.host.waits, 1);
}

}  // namespace
}  // namespace zrl::dns
