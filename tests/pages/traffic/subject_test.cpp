#include "pages/traffic/subject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using Kind = Subject::Kind;

std::vector<std::string> entries(std::string_view typed, std::string_view list) {
  std::vector<std::string> texts;
  for (const Candidate& one : candidates(subject_of(typed), *find_list(list))) texts.push_back(one.entry);
  return texts;
}

TEST(Subject, IsKnownByItsForm) {
  const struct {
    const char* typed;
    Kind kind;
    const char* text;
    const char* domain = "";
  } cases[] = {
      {"  ", Kind::nothing, ""},
      {" 192.0.2.1 ", Kind::address, "192.0.2.1"},
      {"192.0.2.256", Kind::domain, "192.0.2.256", "192.0.2.256"},
      {"192.0.2.0/ 024", Kind::network, "192.0.2.0/24"},
      {"192.0.2.0/33", Kind::text, "192.0.2.0/33"},
      {"Mail.Example.NET.", Kind::domain, "Mail.Example.NET", "mail.example.net"},
      {"https://user@Shop.example:8443/a?b@c", Kind::domain, "Shop.example", "shop.example"},
      {"\u0434\u0435\u043b\u043e.example", Kind::domain, "\u0434\u0435\u043b\u043e.example",
       "\u0434\u0435\u043b\u043e.example"},
      {"Ann@Example.net", Kind::mail, "Ann@Example.net", "example.net"},
      {"a@b@example.net", Kind::mail, "a@b@example.net", "example.net"},
      {"@", Kind::mail, "@"},
      {"cheap pills. now", Kind::text, "cheap pills. now"},
      {".", Kind::text, "."},
      {"..", Kind::text, ".."},
      {"ftp://example.net", Kind::text, "ftp://example.net"},
      {"http://", Kind::text, "http://"},
  };
  for (const auto& [typed, kind, text, domain] : cases) {
    const Subject subject = subject_of(typed);
    EXPECT_EQ(subject.kind, kind) << typed;
    EXPECT_EQ(subject.text, text) << typed;
    EXPECT_EQ(subject.domain, domain) << typed;
  }
  const std::string endless(std::size_t{1} << 20, '.');
  EXPECT_EQ(subject_of(endless).text.size(), Subject::longest);
}

TEST(Subject, TouchesTheFormsInWhichListsHoldDomains) {
  EXPECT_THAT(entries("a.Example.net", "domains.black"),
              IsSupersetOf({"a.Example.net", "@*a.example.net", "*@a.example.net", "example.net",
                            "@*example.net", ".example.net", "net"}));
  EXPECT_THAT(entries("bob@example.net", "domains.white"),
              IsSupersetOf({"bob@example.net", "example.net", "@*example.net", "net"}));
  EXPECT_THAT(entries("bob@example.net", "mails.black"), IsSupersetOf({"bob@example.net", "@*example.net"}));
  EXPECT_THAT(entries("bob@example.net", "mails.black"), Not(Contains("example.net")));
  EXPECT_THAT(entries("invoice.EXE", "extensions"), ElementsAre("invoice.EXE", "EXE"));
  EXPECT_THAT(entries("bob@example.exe", "extensions"), Not(Contains("exe")));
  EXPECT_THAT(entries("cheap", "keywords.body"), IsEmpty());
  EXPECT_THAT(entries("", "domains.black"), IsEmpty());
}

TEST(Subject, LiesInNetworksOfEveryLength) {
  const std::vector<std::string> around = entries("198.51.103.255", "subnets.black");
  EXPECT_EQ(around.size(), 33U);
  EXPECT_THAT(around, IsSupersetOf({"198.51.103.255/32", "198.51.103.254/31", "198.51.100.0/22",
                                    "198.0.0.0/8", "128.0.0.0/1"}));
  EXPECT_THAT(entries("198.51.100.0/24", "subnets.black"), Not(Contains("198.51.100.0/25")));

  const Subject address = subject_of("198.51.100.77");
  for (const char* network : {"198.51.100.1/24", "198.51.100.77/32", "199.0.0.0/7", "200.1.2.3/1"})
    EXPECT_TRUE(holds(network, address)) << network;
  for (const char* network : {"198.51.101.0/24", "198.51.100.77", "x/8", "198.51.100.0/33", ""})
    EXPECT_FALSE(holds(network, address)) << network;
  EXPECT_FALSE(holds("198.51.100.0/25", subject_of("198.51.100.0/24")));
  EXPECT_FALSE(holds("198.51.100.0/24", subject_of("example.net")));
}

}  // namespace
}  // namespace zrl
