#include "net/resolver.h"

#include <cerrno>
#include <fstream>
#include <functional>
#include <limits>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dns_server.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

using std::chrono::milliseconds;
using test::DnsMessage;
using testing::ElementsAre;
using testing::IsEmpty;
using Outcome = Resolver::Outcome;

class ResolverTest : public testing::Test {
 protected:
  ResolverTest() { write_resolver_file(""); }

  void write_resolver_file(const std::string& more) {
    std::ofstream(resolver_file) << server.resolver_file() << more;
  }

  Resolver::Surroundings surroundings() {
    return {[this] { return timeout; },
            [this](milliseconds time) {
              ++waits;
              if (on_wait) on_wait();
              std::this_thread::sleep_for(time);
            },
            [this] { return resolver_file; }};
  }

  test::FakeDnsServer server;
  test::TemporaryFolder folder;
  std::filesystem::path resolver_file = folder.path() / "resolv.conf";
  std::string timeout = "5000";
  std::function<void()> on_wait;
  int waits = 0;
  Resolver resolver{surroundings()};
};

TEST_F(ResolverTest, FindsTheExchangersOfADomain) {
  server.add("example.com MX 20 backup.example.com");
  server.add("example.com MX 10 mail.example.com");
  for (const char* name : {"example.com", "example.com."}) {
    EXPECT_EQ(resolver.lookup_mx(name), "mail.example.com.");
    EXPECT_EQ(resolver.outcome(), Outcome::found);
    EXPECT_EQ(resolver.problem(), "");
    ASSERT_EQ(resolver.mx_count(), 2U);
    EXPECT_EQ(resolver.mx_list()[1].exchange, "backup.example.com.");
    EXPECT_EQ(resolver.mx_list()[1].preference, 20);
  }
  EXPECT_EQ(resolver.lookup_mx("missing.example.com"), "");
  EXPECT_EQ(resolver.outcome(), Outcome::no_such_name);
  EXPECT_EQ(resolver.mx_count(), 0U);
}

TEST_F(ResolverTest, FindsTheAddressesOfAHost) {
  server.add("www.example.com CNAME mail.example.com");
  server.add("mail.example.com A 192.0.2.1");
  server.add("mail.example.com A 192.0.2.2");
  server.add("six.example.com AAAA 2001:db8::1");
  EXPECT_THAT(resolver.lookup_a("www.example.com."), ElementsAre("192.0.2.1", "192.0.2.2"));
  EXPECT_THAT(resolver.lookup_a("six.example.com"), IsEmpty());
  EXPECT_EQ(resolver.outcome(), Outcome::no_records);
}

TEST_F(ResolverTest, FallsBackToParentNamesInsideTheLocalDomain) {
  write_resolver_file("search corp.example.com\n");
  server.add("a.b.example.com A 192.0.2.1");
  EXPECT_EQ(resolver.lookup_mx("a.b.example.com"), "");
  EXPECT_EQ(resolver.local_domain(), "corp.example.com");
  EXPECT_EQ(resolver.local_parent_domain(), "example.com");
  EXPECT_THAT(server.queries(), ElementsAre("MX a.b.example.com", "MX b.example.com", "MX example.com"));

  server.add("example.com MX 10 mail.example.com");
  EXPECT_EQ(resolver.lookup_mx("a.b.Example.com"), "mail.example.com.");
  EXPECT_EQ(resolver.current_query_name(), "Example.com");
  // An alias is an answer, though none that helps.
  server.add("alias.example.com CNAME example.com");
  EXPECT_EQ(resolver.lookup_mx("alias.example.com"), "");
}

TEST_F(ResolverTest, DoesNotFallBackElsewhere) {
  resolver.lookup_mx("a.b.example.com");  // without a local domain
  EXPECT_THAT(server.queries(), ElementsAre("MX a.b.example.com"));

  write_resolver_file("domain corp\n");
  Resolver local(surroundings());
  local.lookup_mx("a.example.org");
  EXPECT_EQ(server.queries().size(), 2U);
  local.lookup_mx("mycorp");  // has the local domain in it, and no parent
  EXPECT_EQ(server.queries().size(), 3U);
  EXPECT_EQ(local.local_parent_domain(), "corp");
}

TEST_F(ResolverTest, NeverAsksForWhatIsTooShortOrNoName) {
  for (const char* name : {"", "a.de", "....", "a..example.com", "example.com.."}) {
    EXPECT_EQ(resolver.lookup_mx(name), "") << name;
    EXPECT_EQ(resolver.outcome(), Outcome::not_asked) << name;
  }
  EXPECT_THAT(resolver.lookup_a(""), IsEmpty());
  EXPECT_THAT(server.queries(), IsEmpty());
  resolver.lookup_mx("aa.de");
  EXPECT_THAT(server.queries(), ElementsAre("MX aa.de"));
}

TEST_F(ResolverTest, TheTimeOutIsBoundedAndReadOnce) {
  const std::pair<const char*, int> cases[] = {
      {"", 10000}, {"0", 10000}, {"soon", 10000}, {"50", 100},
      {"-1", 100}, {"100", 100}, {"2500", 2500},  {"4294967295", std::numeric_limits<std::int32_t>::max()}};
  for (const auto& [setting, expected] : cases) {
    timeout = setting;
    Resolver one(surroundings());
    one.discover_dns_servers();
    EXPECT_EQ(one.dns_timeout().count(), expected) << setting;
    timeout = "7777";
    one.discover_dns_servers();
    EXPECT_EQ(one.dns_timeout().count(), expected) << setting;
  }
}

TEST_F(ResolverTest, GivesUpAfterTheTimeOut) {
  timeout = "200";
  server.set_manner({.silent = true});
  Resolver::Surroundings hasty = surroundings();
  hasty.wait = [this](milliseconds time) { waits += time == milliseconds(10) ? 1 : 1000; };
  Resolver impatient(hasty);
  EXPECT_EQ(impatient.lookup_mx("example.com"), "");
  EXPECT_EQ(impatient.outcome(), Outcome::timed_out);
  EXPECT_EQ(waits, 21);  // the first pass of which the time is over

  // A busy console makes passes longer; the clock ends the look-up then.
  waits = 0;
  on_wait = [] { std::this_thread::sleep_for(milliseconds(60)); };
  EXPECT_EQ(Resolver(surroundings()).lookup_mx("example.com"), "");
  EXPECT_LE(waits, 5);
  EXPECT_EQ(server.queries().size(), 2U);  // sent once each
}

TEST_F(ResolverTest, WaitsOnWhenItIsLiedTo) {
  server.add("mail.example.com A 192.0.2.1");
  server.set_manner({.delay = milliseconds(50), .lies = true});
  EXPECT_THAT(resolver.lookup_a("mail.example.com"), ElementsAre("192.0.2.1"));

  timeout = "150";
  server.set_manner({.rewrite = [](DnsMessage message) {
    message[1] ^= 1;
    return message;
  }});
  Resolver lied_to(surroundings());
  EXPECT_THAT(lied_to.lookup_a("mail.example.com"), IsEmpty());
  EXPECT_EQ(lied_to.outcome(), Outcome::timed_out);
}

// What an answer is changed into so that it is none to the query: each is sent before the true one.
const std::pair<const char*, std::function<DnsMessage(DnsMessage)>> no_answers[] = {
    {"a query", [](DnsMessage message) { return message[2] &= 0x7F, message; }},
    {"another opcode", [](DnsMessage message) { return message[2] |= 0x10, message; }},
    {"no question", [](DnsMessage message) { return message[5] = 0, message; }},
    {"two questions", [](DnsMessage message) { return message[5] = 2, message; }},
    {"another name", [](DnsMessage message) { return message[13] ^= 1, message; }},
    {"another type", [](DnsMessage message) { return message[30] ^= 1, message; }},
    {"another class", [](DnsMessage message) { return message[32] ^= 2, message; }},
    {"records of no name", [](DnsMessage message) { return message[34] += 5, message; }},
    {"records of another name", [](DnsMessage message) { return message[35] += 5, message; }},
};

TEST_F(ResolverTest, WaitsOnForTheAnswerToItsOwnQuestion) {
  timeout = "2000";
  server.add("mail.example.com A 192.0.2.1");
  server.add("mail.example.com MX 10 mx.mail.example.com");
  for (const auto& [name, change] : no_answers) {
    const auto forge = [&change = change](DnsMessage message) {
      message.back() ^= 3;
      return change(std::move(message));
    };
    server.set_manner({.delay = milliseconds(60), .forge = forge});
    EXPECT_THAT(resolver.lookup_a("Mail.Example.com"), ElementsAre("192.0.2.1")) << name;
    server.set_manner({.delay = milliseconds(60), .forge = change});
    const int before = waits;
    EXPECT_EQ(resolver.lookup_mx("mail.example.com"), "mx.mail.example.com.") << name;
    EXPECT_GE(waits, before + 3) << name;
  }
  timeout = "150";
  Resolver lied_to(surroundings());
  server.set_manner({.rewrite = no_answers[8].second});
  EXPECT_THAT(lied_to.lookup_a("mail.example.com"), IsEmpty());
  EXPECT_EQ(lied_to.outcome(), Outcome::timed_out);
}

TEST_F(ResolverTest, AsksAgainByStreamWhenAnAnswerIsTruncated) {
  for (int i = 0; i < 200; ++i) {
    server.add("big.test MX 1 mail" + std::to_string(i) + ".big.test");
    server.add("big.test A 192.0.2." + std::to_string(i));
  }
  server.set_manner({.room = 512});
  EXPECT_EQ(resolver.lookup_a("big.test").size(), 200U);
  EXPECT_EQ(resolver.lookup_mx("big.test"), "mail0.big.test.");
  EXPECT_EQ(resolver.mx_count(), 200U);
  EXPECT_THAT(server.queries(),
              ElementsAre("A big.test", "TCP A big.test", "MX big.test", "TCP MX big.test"));

  // Where the stream fails, the part that came counts.
  server.set_manner({.room = 512, .closes_streams = true});
  EXPECT_GT(resolver.lookup_a("big.test").size(), 20U);
  EXPECT_EQ(resolver.outcome(), Outcome::found);
  server.set_manner({.room = 26, .closes_streams = true});
  EXPECT_THAT(resolver.lookup_a("big.test"), IsEmpty());
  EXPECT_EQ(resolver.outcome(), Outcome::server_failed);
  EXPECT_THAT(resolver.problem(), testing::HasSubstr("a part of the answer only"));
}

TEST_F(ResolverTest, SurvivesAnswersOfAnyLength) {
  for (int i = 0; i < 200; ++i)
    server.add("big.test MX " + std::to_string(i) + " mail" + std::to_string(i) + ".big.test");
  EXPECT_EQ(resolver.lookup_mx("big.test"), "mail0.big.test.");  // cut at the size of the buffer
  EXPECT_GT(resolver.mx_count(), 50U);
  EXPECT_LT(resolver.mx_count(), 200U);
  timeout = "100";
  Resolver hasty(surroundings());
  for (const std::size_t size : {0, 1, 11, 12, 13, 20, 30}) {
    server.set_manner({.rewrite = [size](DnsMessage message) {
      message.resize(size);
      return message;
    }});
    EXPECT_EQ(hasty.lookup_mx("big.test"), "") << size;
    EXPECT_EQ(hasty.mx_count(), 0U) << size;
    EXPECT_NE(hasty.problem(), "") << size;
  }
}

TEST_F(ResolverTest, TellsWhatIsWrongWithTheServer) {
  server.add("broken.example.com ERROR 2");
  EXPECT_EQ(resolver.lookup_mx("broken.example.com"), "");
  EXPECT_EQ(resolver.outcome(), Outcome::server_failed);
  EXPECT_THAT(resolver.problem(), testing::HasSubstr("error 2"));

  auto gone = std::make_unique<test::FakeDnsServer>();
  std::ofstream(resolver_file) << gone->resolver_file();
  gone.reset();
  Resolver refused(surroundings());
  EXPECT_EQ(refused.lookup_mx("example.com"), "");
  EXPECT_EQ(refused.outcome(), Outcome::socket_failed);
  EXPECT_EQ(refused.last_dns_error(), ECONNREFUSED);
}

TEST_F(ResolverTest, LooksForServersUntilItKnowsOne) {
  std::filesystem::remove(resolver_file);
  server.add("mail.example.com A 192.0.2.1");
  EXPECT_THAT(resolver.lookup_a("mail.example.com"), IsEmpty());
  EXPECT_EQ(resolver.outcome(), Outcome::no_servers);
  EXPECT_EQ(waits, 0);
  write_resolver_file("nameserver 127.0.0.1#1\n");
  EXPECT_THAT(resolver.lookup_a("mail.example.com"), ElementsAre("192.0.2.1"));  // of the first server
  EXPECT_EQ(resolver.dns_servers().size(), 2U);
  std::filesystem::remove(resolver_file);
  EXPECT_THAT(resolver.lookup_a("mail.example.com"), ElementsAre("192.0.2.1"));
}

TEST_F(ResolverTest, LookUpsThatMeetWhileWaitingKeepTheirAnswersApart) {
  server.add("outer.test MX 10 mail.outer.test");
  server.add("inner.test MX 10 a.inner.test");
  server.add("inner.test MX 20 b.inner.test");
  server.set_manner({.delay = milliseconds(30)});
  std::string inner;
  on_wait = [&] {
    on_wait = nullptr;
    inner = resolver.lookup_mx("inner.test");
  };
  EXPECT_EQ(resolver.lookup_mx("outer.test"), "mail.outer.test.");
  EXPECT_EQ(inner, "a.inner.test.");
  EXPECT_EQ(resolver.mx_count(), 1U);
  EXPECT_EQ(resolver.current_query_name(), "outer.test");
}

TEST_F(ResolverTest, EndsWithWhatTheWaitingRaises) {
  server.add("mail.example.com A 192.0.2.1");
  on_wait = [] { throw std::runtime_error("the console is being stopped"); };
  EXPECT_THROW(resolver.lookup_a("mail.example.com"), std::runtime_error);
  on_wait = nullptr;
  EXPECT_THAT(resolver.lookup_a("mail.example.com"), ElementsAre("192.0.2.1"));
}

}  // namespace
}  // namespace zrl
