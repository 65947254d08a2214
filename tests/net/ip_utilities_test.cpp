#include "net/ip_utilities.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "net/machine_sockets.h"
#include "support/dns_environment.h"

namespace zrl {
namespace {

class FakePlatform : public SocketPlatform {
 public:
  std::optional<StartUp> started = StartUp{1, 1, 100};
  bool clean = true;
  std::optional<std::string> own_name = "box.example.com";
  std::optional<std::vector<std::uint8_t>> address = std::vector<std::uint8_t>{192, 0, 2, 1};
  std::vector<std::string> calls;

  std::optional<StartUp> start_up(int, int) override { return started; }
  bool clean_up() override {
    calls.emplace_back("clean_up");
    return clean;
  }
  int last_error() const override { return 11001; }
  std::optional<std::string> own_host_name() override { return own_name; }
  std::optional<std::vector<std::uint8_t>> host_by_name(const std::string& name) override {
    calls.push_back("resolve " + name);
    return address;
  }
};

constexpr const char* name_error =
    "Windows Sockets error 11001 has occurred. Unable to successfully get Host Name.\r\n";

TEST(SocketTextsTest, ToldWhyThereAreNoSockets) {
  struct Case {
    std::optional<SocketPlatform::StartUp> started;
    const char* error;
  };
  const Case cases[] = {
      {std::nullopt, "The 32-bit Windows Socket is not responding."},
      {{{1, 1, 0}}, "This application requires a minimum of 1 supported sockets."},
      {{{1, 0, 100}}, "Sockets version 1.0 is not supported by 32-bit Windows Sockets."},
      {{{0, 9, 100}}, "Sockets version 0.9 is not supported by 32-bit Windows Sockets."},
      {{{1, 1, 1}}, ""},
      {{{2, 0, 100}}, ""},
  };
  for (const Case& one : cases) {
    FakePlatform platform;
    platform.started = one.started;
    std::string error;
    const bool expected = *one.error == '\0';
    EXPECT_EQ(start_sockets(platform, error), expected);
    EXPECT_EQ(error, one.error);
    EXPECT_EQ(host_address(platform, "mail.example.com", error), expected ? "192.0.2.1" : "");
    EXPECT_EQ(error, one.error);
    EXPECT_EQ(platform.calls.empty(), !expected);
  }
}

TEST(HostAddressTest, ResolvesTheNameOrThatOfTheMachine) {
  FakePlatform platform;
  std::string error;
  for (const char* name : {"  mail.example.com ", "", " \t"}) {
    EXPECT_EQ(host_address(platform, name, error), "192.0.2.1");
  }
  EXPECT_THAT(platform.calls,
              testing::ElementsAre("resolve mail.example.com", "clean_up", "resolve box.example.com",
                                   "clean_up", "resolve box.example.com", "clean_up"));
  platform.calls.clear();
  EXPECT_EQ(host_address(platform, " 10.1.2.255 ", error), "10.1.2.255");
  EXPECT_THAT(platform.calls, testing::ElementsAre("clean_up"));
  EXPECT_EQ(error, "");
}

TEST(HostAddressTest, FailuresHaveTheirTextsAndStopTheSockets) {
  FakePlatform platform;
  std::string error = "old";
  platform.address.reset();
  EXPECT_EQ(host_address(platform, "missing.example.com", error), "");
  EXPECT_EQ(error, name_error);
  platform.own_name.reset();
  EXPECT_EQ(host_address(platform, "", error), "");
  EXPECT_EQ(error, name_error);
  platform.clean = false;
  host_address(platform, "", error);
  EXPECT_EQ(error, name_error);  // the first failure is the one that matters
  EXPECT_EQ(host_address(platform, "10.0.0.1", error), "10.0.0.1");
  EXPECT_EQ(error, "Socket error occurred in Cleanup.");
}

TEST(TextUtilitiesTest, TellsDottedAddresses) {
  for (const char* text : {"192.168.1.1", "0.0.0.0", "255.255.255.255", "010.001.000.1"}) {
    EXPECT_TRUE(is_dotted_address(text)) << text;
  }
  for (const char* text : {"", "192.168.1", "300.1.1.1", "1.2.3.4.5", "1.2.3.", ".1.2.3", "1..2.3",
                           "1.2.3.4 ", "+1.2.3.4", "0001.2.3.4", "a.b.c.d"}) {
    EXPECT_FALSE(is_dotted_address(text)) << text;
  }
  EXPECT_EQ(text_up_to_zero(std::string_view("host\0rest", 9)), "host");
  EXPECT_EQ(text_up_to_zero("host"), "host");
}

class MachineSocketsTest : public testing::Test {
 protected:
  void write_hosts(std::string_view text) { std::ofstream(hosts) << text; }

  test::DnsEnvironment dns;
  test::TemporaryFolder folder;
  std::filesystem::path hosts = folder.path() / "hosts";
  Resolver resolver{{[] { return std::string("5000"); }, [](std::chrono::milliseconds) {}}};
};

TEST_F(MachineSocketsTest, TheHostsFileComesBeforeTheServers) {
  write_hosts(
      "# hosts\n2001:db8::1 mail.example.com\n192.0.2.7\tother MAIL.example.com. # 192.0.2.8\n192.0.2.9 "
      "mail.example.com");
  MachineSockets sockets(resolver, hosts);
  std::string error;
  EXPECT_EQ(host_address(sockets, "mail.example.com.", error), "192.0.2.7");
  EXPECT_EQ(host_address(sockets, "LocalHost", error), "127.0.0.1");
  EXPECT_THAT(dns.server.queries(), testing::IsEmpty());
}

TEST_F(MachineSocketsTest, AResolverFileOfOnesOwnPutsTheHostsFileAside) {
  EXPECT_EQ(hosts_file_path(), "");
  ::unsetenv("ZRL_RESOLV_CONF");
  EXPECT_EQ(hosts_file_path(), "/etc/hosts");
  EXPECT_EQ(resolver_file_path(), "/etc/resolv.conf");
}

TEST_F(MachineSocketsTest, FailuresBearTheNumberOfTheLookUp) {
  dns.server.add("six.example.com AAAA 2001:db8::1");
  dns.server.add("broken.example.com ERROR 2");
  Resolver patient({[] { return std::string("5000"); },
                    [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); }});
  MachineSockets sockets(patient);
  const std::pair<const char*, int> cases[] = {
      {"missing.example.com", 1}, {"a..b", 1}, {"broken.example.com", 3}, {"six.example.com", 4}};
  for (const auto& [name, number] : cases) {
    std::string error;
    EXPECT_EQ(host_address(sockets, name, error), "");
    EXPECT_EQ(error, "Windows Sockets error " + std::to_string(number) +
                         " has occurred. Unable to successfully get Host Name.\r\n");
  }
}

}  // namespace
}  // namespace zrl
