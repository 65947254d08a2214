#include "net/resolver_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> servers_in(std::string_view text) {
  std::vector<std::string> result;
  for (const DnsServer& server : parse_resolver_file(text).servers) result.push_back(server.text());
  return result;
}

TEST(ResolverFileTest, ServersComeInTheirOrderWithTheirPorts) {
  EXPECT_THAT(
      servers_in("# made by hand\n"
                 "nameserver 192.0.2.1\r\n"
                 "  nameserver\t127.0.0.1#5353   # here\n"
                 "nameserver 2001:db8::1\n"
                 "nameserver ::1#54\n"
                 "nameserver fe80::1%eth0"),
      ElementsAre("192.0.2.1:53", "127.0.0.1:5353", "[2001:db8::1]:53", "[::1]:54", "[fe80::1%eth0]:53"));
}

TEST(ResolverFileTest, WhatIsNoServerIsPassedOver) {
  EXPECT_THAT(servers_in("nameserver\nnameserver dns.example.com\nnameserver 1.2.3\nnameserver 192.0.2.1#\n"
                         "nameserver 192.0.2.1#0\nnameserver 192.0.2.1#65536\nnameserver 192.0.2.1#53x\n"
                         "#nameserver 192.0.2.1\n;nameserver 192.0.2.1\nNameserver 192.0.2.1\n"),
              IsEmpty());
  EXPECT_THAT(servers_in(std::string_view("\0\n\n\nnameserver \0 192.0.2.1\n", 28)), IsEmpty());
}

TEST(ResolverFileTest, TheLastLineThatTellsTheLocalDomainCounts) {
  EXPECT_EQ(parse_resolver_file("domain one.test\nsearch two.test three.test\n").domain, "two.test");
  EXPECT_EQ(parse_resolver_file("search two.test three.test\ndomain one.test.\ndomain\n").domain, "one.test");
  EXPECT_EQ(parse_resolver_file("search .").domain, "");
}

}  // namespace
}  // namespace zrl
