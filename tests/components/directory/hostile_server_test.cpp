#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "components/directory/directory.h"
#include "core/text/error.h"
#include "support/fake_services.h"
#include "support/loopback_server.h"

// Servers that speak the protocol badly, or without end.
namespace zrl::directory {
namespace {

using std::chrono::milliseconds;
using test::ServedConnection;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

// An element of the encoding: its tag, its length, its content (X.690).
std::string element(int tag, const std::string& content) {
  std::string result(1, static_cast<char>(tag));
  result += '\x84';
  for (int shift = 24; shift >= 0; shift -= 8) result += static_cast<char>(content.size() >> shift & 0xFF);
  return result + content;
}

std::string message(int id, const std::string& operation) {
  return element(0x30, element(0x02, std::string(1, static_cast<char>(id))) + operation);
}

std::string result(int tag) {
  return element(tag, element(0x0A, std::string(1, '\0')) + element(0x04, "") + element(0x04, ""));
}

const std::string signed_in = message(1, result(0x61));

std::string entry(int id, const std::string& attribute, const std::string& value) {
  const std::string pair = element(0x30, element(0x04, attribute) + element(0x31, element(0x04, value)));
  return message(id, element(0x64, element(0x04, "cn=x") + element(0x30, pair)));
}

void keep_silent(ServedConnection& connection) {
  while (connection.pause(milliseconds(10'000))) continue;
}

class HostileServerTest : public testing::Test {
 protected:
  HostileServerTest() {
    options_.limits.connect = milliseconds(2000);
    options_.limits.answer = milliseconds(300);
    options_.limits.total = milliseconds(1500);
    options_.limits.message_bytes = 100'000;
  }

  // What the import ends with; it must end soon.
  std::string failure(const test::LoopbackServer& server, const std::string& scheme = "ldap://") {
    const auto begin = Clock::now();
    std::string text = "none";
    try {
      make_users(console_, options_)
          ->addresses(scheme + "127.0.0.1:" + std::to_string(server.port()) + "/dc=x");
    } catch (const Error& error) {
      text = error.what();
    }
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(10));
    return text;
  }

  test::FakeServices console_;
  Options options_;
};

TEST_F(HostileServerTest, AnswersThatStopOrMakeNoSenseEndTheQuestion) {
  const struct {
    const char* name;
    std::string answer;
    bool hangs_up;
  } cases[] = {
      {"silence", "", false},
      {"gone", "", true},
      {"half a message", "\x30\x84\x00", false},
      {"half a message, gone", signed_in.substr(0, 10), true},
      {"a page of the web", "HTTP/1.1 400 Bad Request\r\n\r\n", false},
      {"another question's answer", message(99, result(0x61)), false},
#ifndef ZRL_SANITIZED  // libldap 2.5 then loses the memory of the question, 4 KiB
      {"no operation", message(1, ""), false},
#endif
      {"lengths beyond the message", "\x30\x0C\x02\x01\x01\x61\x7F\x0A\x01\x00\x04\x00\x04\x00", false},
      {"length without end", "\x30\x80\x02\x01\x01", false},
      {"a length of gigabytes", signed_in + "\x30\x84\x7F\xFF\xFF\xFF\x02\x01\x02" + std::string(1000, 'x'),
       false},
      {"a long message", signed_in + entry(2, "mail", std::string(200'000, 'x')), false},
      {"signed in, then silence", signed_in, false},
      {"half an entry", signed_in + entry(2, "mail", "a@b").substr(0, 20), false},
      {"an entry without sense", signed_in + message(2, element(0x64, "\x01\x02\x03")), false},
      {"a result for an entry", signed_in + message(2, result(0x61)), false},
  };
  for (const auto& [name, answer, hangs_up] : cases) {
    const test::LoopbackServer server([&, text = answer, ends = hangs_up](ServedConnection& connection) {
      connection.send(text);
      if (!ends) keep_silent(connection);
    });
    EXPECT_THAT(failure(server), HasSubstr("the directory server ldap://127.0.0.1:")) << name;
  }
}

TEST_F(HostileServerTest, AnAnswerWithoutEndIsEnded) {
  const std::string block = [] {
    std::string entries;
    for (int i = 0; i < 100; ++i) entries += entry(2, "proxyAddresses", "smtp:a@b.example");
    return entries;
  }();
  const test::LoopbackServer server([&](ServedConnection& connection) {
    connection.send(signed_in);
    while (connection.send(block)) continue;
  });
  EXPECT_THAT(failure(server), HasSubstr("Timed out"));
  options_.limits.addresses = 1000;
  EXPECT_THAT(failure(server), HasSubstr("too many addresses"));
}

TEST_F(HostileServerTest, AnEncryptedConnectionThatIsNeverMadeIsGivenUp) {
  const test::LoopbackServer server(keep_silent);
  EXPECT_THAT(failure(server, "ldaps://"), HasSubstr("the directory server ldaps://"));
}

TEST_F(HostileServerTest, WhatServingRaisesEndsTheQuestion) {
  const test::LoopbackServer server(keep_silent);
  options_.limits.answer = options_.limits.total = milliseconds(60'000);
  console_.on_process_events = [] { throw Error(1, "the console is being stopped"); };
  EXPECT_EQ(failure(server), "the console is being stopped");
}

}  // namespace
}  // namespace zrl::directory
