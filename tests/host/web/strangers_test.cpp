#include <chrono>
#include <fstream>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sodium.h>

#include "core/text/files.h"
#include "host/web/client_network.h"
#include "host/web/connection_slots.h"
#include "host/web/counted_notes.h"
#include "host/web/device_cookies.h"
#include "host/web/login_throttle.h"
#include "host/web/password_rules.h"
#include "support/temporary_folder.h"

// What keeps strangers from guessing, and from keeping others out.
namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using Slots = web::ConnectionSlots;

TEST(ClientNetwork, IsAnAddressOrTheNetworkThatAClientHas) {
  EXPECT_EQ(web::network_of("192.0.2.1"), "192.0.2.1");
  EXPECT_EQ(web::network_of("::ffff:192.0.2.1"), "192.0.2.1");
  EXPECT_EQ(web::network_of("2001:db8:0:1::99"), web::network_of("2001:db8:0:1:ffff::1"));
  EXPECT_NE(web::network_of("2001:db8:0:1::99"), web::network_of("2001:db8:0:2::99"));
  EXPECT_EQ(web::network_of("fe80::1%eth0"), web::network_of("fe80::2"));
}

class LoginThrottleTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_GE(::sodium_init(), 0); }

  std::chrono::seconds stranger(const std::string& address, const std::string& account = "admin") {
    return throttle_.begin_try({address, account, {}}, now_);
  }
  // A new address each time.
  std::string next_address() {
    ++addresses_;
    return "10." + std::to_string(addresses_ / 62500) + "." + std::to_string(addresses_ / 250 % 250) + "." +
           std::to_string(addresses_ % 250);
  }

  web::LoginThrottle throttle_;
  web::LoginThrottle::Clock::time_point now_ = web::LoginThrottle::Clock::now();
  int addresses_ = 0;
};

TEST_F(LoginThrottleTest, EachFurtherTryWaitsLonger) {
  for (int i = 0; i < 5; ++i) EXPECT_EQ(stranger("192.0.2.1", ""), 0s);
  EXPECT_EQ(stranger("192.0.2.1", ""), 1s);
  EXPECT_EQ(stranger("192.0.2.2", ""), 0s);
  now_ += 1s;
  EXPECT_EQ(stranger("192.0.2.1", ""), 0s);
  EXPECT_EQ(stranger("192.0.2.1", ""), 2s);
  for (int i = 0; i < 30; ++i) {
    const auto wait = stranger("192.0.2.1", "");
    EXPECT_LE(wait, 900s);
    now_ += wait;
  }
  EXPECT_GT(stranger("192.0.2.1", ""), 500s);
  throttle_.succeeded({"192.0.2.1", "", {}});
  EXPECT_EQ(stranger("192.0.2.1", ""), 0s);
  // Another name does not help.
  for (int i = 0; i < 5; ++i) stranger("2001:db8:0:1::" + std::to_string(i), "name " + std::to_string(i));
  EXPECT_GT(stranger("2001:db8:0:1::99"), 0s);
}

// Two minutes of guessing from ever new addresses, a thousand a second, and somebody who signs in now and
// then.
TEST_F(LoginThrottleTest, RotatingAddressesNeitherHelpNorLockOutWhoIsKnown) {
  int verified = 0;
  int signed_in = 0;
  for (int second = 0; second < 120; ++second, now_ += 1s) {
    for (int i = 0; i < 1000; ++i) verified += stranger(next_address()) == 0s ? 1 : 0;
    if (second % 3 != 0) continue;
    const web::LoginThrottle::Try known{"192.0.2.7", "admin", "device"};
    if (throttle_.begin_try(known, now_) != 0s) continue;
    ++signed_in;
    throttle_.succeeded(known);
  }
  EXPECT_EQ(verified, 12);
  EXPECT_EQ(signed_in, 40);
  // Nor has one who is known more tries than an address.
  int guesses = 0;
  for (; throttle_.begin_try({next_address(), "admin", "device"}, now_) == 0s; ++guesses) {
  }
  EXPECT_EQ(guesses, 5);
}

TEST_F(LoginThrottleTest, NamesTakeNoRoomAndAreSlowedDownTogether) {
  int verified = 0;
  for (int i = 0; i < 20'000; ++i) {
    verified += stranger(next_address(), "name " + std::to_string(i)) == 0s ? 1 : 0;
  }
  EXPECT_LE(verified, 5 * static_cast<int>(web::LoginThrottle::account_lanes));
  EXPECT_LE(throttle_.remembered(), 2 * web::LoginThrottle::most_remembered);
}

TEST(DeviceCookies, ProveAnAccountOfThisHostForATime) {
  ASSERT_GE(::sodium_init(), 0);
  TemporaryFolder folder;
  const auto now = web::DeviceCookies::Clock::now();
  std::string cookie;
  std::string device;
  {
    const web::DeviceCookies devices(folder.path() / "device.key");
    EXPECT_EQ(std::filesystem::status(folder.path() / "device.key").permissions(),
              std::filesystem::perms(0600));
    cookie = devices.issue("admin", {}, now);
    device = devices.device_of(cookie, "admin", now);
    EXPECT_EQ(device.size(), 32u);
    EXPECT_EQ(devices.device_of(devices.issue("admin", device, now), "admin", now), device);
    EXPECT_NE(devices.device_of(devices.issue("admin", {}, now), "admin", now), device);
  }
  const web::DeviceCookies devices(folder.path() / "device.key");
  EXPECT_EQ(devices.device_of(cookie, "admin", now), device);
  EXPECT_EQ(devices.device_of(cookie, "other", now), "");
  EXPECT_EQ(devices.device_of(cookie, "admin", now + web::DeviceCookies::valid_for), "");
  std::string forged = cookie;
  forged[0] = forged[0] == '0' ? '1' : '0';
  for (const std::string& wrong : {forged, std::string(), std::string("."), std::string(".."),
                                   cookie.substr(0, cookie.size() - 1), cookie.substr(33), cookie + "0"}) {
    EXPECT_EQ(devices.device_of(wrong, "admin", now), "") << wrong;
  }
  // A cookie of the account "12.admin", whose first part is moved into the signed text.
  std::string moved = devices.issue("12.admin", {}, now);
  moved.insert(moved.rfind('.'), ".12");
  EXPECT_EQ(devices.device_of(moved, "admin", now), "");
  const web::DeviceCookies others(folder.path() / "another.key");
  EXPECT_EQ(others.device_of(cookie, "admin", now), "");
  std::ofstream(folder.path() / "device.key") << "short";
  EXPECT_THROW(web::DeviceCookies(folder.path() / "device.key"), std::runtime_error);
}

TEST(PasswordRules, CommonAndShortOnesAreRefused) {
  for (const char* weak : {"", "short", "äöüäöüäöüäö", "elevenchars"}) {
    EXPECT_EQ(web::password_fault(weak, "admin"), "weak_password") << weak;
  }
  EXPECT_EQ(web::password_fault(std::string(1025, 'a'), "admin"), "weak_password");
  for (const char* common :
       {"123456789012", "password1234", "Password2024!", "P4ssw0rd2024", "passwordpassword", "qwertyuiop12",
        "1q2w3e4r5t6y", "1qaz2wsx3edc", "administrator", "Administrator1", "aaaaaaaaaaaa", "abcabcabcabc",
        "letmein123456", "iloveyou1234", "welcome12345", "jmueller2024", "relleum-reteP", "PeterMueller1",
        "qwertzuiop123", "abcdefghijkl", "987654321098", "sunshine1234!", "changeme1234", "zxcvbnm12345",
        // The rest of those among the 10,000 commonest that are long enough.
        "123qweasdzxc", "mailcreated5240", "qazwsxedcrfv", "123456qwerty", "qwerty123456", "polniypizdec0211",
        "sojdlg123aljg", "LeaveMeAlone", "motherfucker", "123456654321", "gfhjkmgfhjkm", "qazwsxedc123",
        "ghjcnjgfhjkm", "zxcasdqwe123", "sonyericsson", "ghhh47hj7649", "123456789qwe", "1qazxsw23edc",
        "masterbating", "qwerasdfzxcv", "qweasdzxc123", "flvbybcnhfnjh"}) {
    EXPECT_EQ(web::password_fault(common, "peter.mueller"), "common_password") << common;
  }
  EXPECT_EQ(web::password_fault("jmueller2024", "jmueller"), "common_password");
  for (const char* good :
       {"correct horse", "correct horse battery", "staple battery", "äöüßäüéèñçøå", "k8#vQz!2mLpw",
        "Rindfleischetikett", "wolken ziehen west", "test of a long phrase"}) {
    EXPECT_EQ(web::password_fault(good, "admin"), "") << good;
  }
}

class ManualTime : public web::IoLoop {
 public:
  void post(std::function<void()> task) override { task(); }
  void after(std::chrono::milliseconds, std::function<void()> task) override {
    tasks.push_back(std::move(task));
  }
  void pass() {
    for (const auto& task : std::exchange(tasks, {})) task();
  }
  std::vector<std::function<void()>> tasks;
};

TEST(CountedNotes, ManyBecomeTwoLines) {
  ManualTime time;
  std::vector<std::string> lines;
  web::CountedNotes notes(
      time, [&](std::string_view what, std::string_view where, std::string_view why, std::uint64_t times) {
        lines.push_back(std::string(what) + "|" + std::string(where) + "|" + std::string(why) + "|" +
                        std::to_string(times));
      });
  for (int i = 1; i <= 500; ++i) notes.happened("sign in", std::to_string(i), "too many tries");
  notes.happened("set up", "a", "wrong secret");
  EXPECT_THAT(lines, ElementsAre("sign in|1|too many tries|1", "set up|a|wrong secret|1"));
  time.pass();
  EXPECT_EQ(lines.back(), "sign in|500|too many tries|499");
  EXPECT_EQ(lines.size(), 3u);
  notes.happened("sign in", "b", "too many tries");
  EXPECT_EQ(lines.size(), 3u);
  notes.flush();
  EXPECT_EQ(lines.back(), "sign in|b|too many tries|1");
}

struct SlotsTest : ::testing::Test {
  // A connection that knows whether it has been cut.
  struct Client {
    std::unique_ptr<Slots::Slot> slot;
    std::unique_ptr<bool> cut = std::make_unique<bool>(false);
    bool is_in() const { return slot && !*cut; }
  };
  Client enter(const std::string& network) {
    Client client;
    client.slot = slots.enter(network, now);
    if (client.slot) client.slot->on_cut([cut = client.cut.get()] { *cut = true; });
    now += 1ms;
    return client;
  }

  Slots slots{{.slots = 4, .slots_a_network = 2}};
  Slots::Clock::time_point now = Slots::Clock::now();
};

TEST_F(SlotsTest, WhoSendsNothingGivesWayToTheNewest) {
  Client working = enter("working");
  working.slot->use(Slots::Use::answering, now);
  std::vector<Client> silent;
  for (int i = 0; i < 20; ++i) silent.push_back(enter("silent " + std::to_string(i)));
  EXPECT_TRUE(working.is_in());
  for (std::size_t i = 0; i < silent.size(); ++i) EXPECT_EQ(silent[i].is_in(), i >= 17) << i;
  EXPECT_EQ(slots.taken(), 4u);
  // One that had a request answered comes behind those that are still silent.
  silent[17].slot->use(Slots::Use::answering, now);
  silent[17].slot->use(Slots::Use::waiting, now);
  const Client next = enter("next");
  EXPECT_TRUE(silent[17].is_in());
  EXPECT_FALSE(silent[18].is_in());
  silent.clear();
  EXPECT_EQ(slots.taken(), 2u);
}

TEST_F(SlotsTest, ANetworkHasItsShare) {
  const Client other = enter("other");
  const Client first = enter("one");
  const Client second = enter("one");
  const Client third = enter("one");
  EXPECT_FALSE(first.is_in());
  EXPECT_TRUE(second.is_in() && third.is_in() && other.is_in());
  second.slot->use(Slots::Use::open, now);
  third.slot->use(Slots::Use::receiving, now);
  EXPECT_FALSE(enter("one").is_in());
  EXPECT_TRUE(enter("two").is_in());
}

TEST_F(SlotsTest, WhoDoesNotTakeAnAnswerGivesWayAfterAWhile) {
  std::vector<Client> clients;
  for (const Slots::Use use :
       {Slots::Use::sending, Slots::Use::answering, Slots::Use::open, Slots::Use::sending}) {
    clients.push_back(enter(std::to_string(clients.size())));
    clients.back().slot->use(use, now);
  }
  EXPECT_FALSE(enter("early").is_in());
  now += 2s;
  clients[0].slot->use(Slots::Use::sending, now);  // it has taken a piece
  EXPECT_TRUE(enter("late").is_in());
  EXPECT_TRUE(clients[0].is_in());
  EXPECT_FALSE(clients[3].is_in());
}

TEST_F(SlotsTest, TimeOutsShrinkAsSlotsFill) {
  EXPECT_EQ(slots.shortened(30s, 2s), 30s);
  const Client clients[] = {enter("a"), enter("b"), enter("c")};
  EXPECT_LT(slots.shortened(30s, 2s), 20s);
  const Client last = enter("d");
  EXPECT_EQ(slots.shortened(30s, 2s), 3s);
  EXPECT_EQ(slots.shortened(10s, 2s), 2s);
  EXPECT_EQ(slots.shortened(300ms, 2s), 300ms);
}

}  // namespace

}  // namespace zrl::test
