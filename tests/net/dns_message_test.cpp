#include "net/dns_message.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/utf8.h"
#include "support/dns_server.h"

namespace zrl {
namespace {

using test::DnsMessage;
using testing::ElementsAre;
using testing::IsEmpty;

DnsMessage bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

// The names of a message without more than them.
std::optional<std::string> name_at(std::string_view message, std::size_t offset, std::size_t* end = nullptr) {
  const DnsMessage copy = bytes(message);
  std::optional<std::string> name = read_dns_name(copy, offset);
  if (end != nullptr) *end = offset;
  return name;
}

std::vector<std::string> exchanges(const MailExchangers& found) {
  std::vector<std::string> result;
  for (const MailExchanger& one : found.list) {
    result.push_back(std::to_string(one.preference) + " " + one.exchange);
  }
  return result;
}

TEST(DnsQueryTest, HasEveryFieldAsServersExpectIt) {
  constexpr std::string_view expected(
      "\x11\xDF\x01\x00\x00\x01\x00\x00\x00\x00\x00\x00"
      "\x04mail\x07"
      "example\x03"
      "com\x00\x00\x0F\x00\x01",
      34);
  EXPECT_EQ(make_dns_query("mail.example.com", DnsType::mx), bytes(expected));
  EXPECT_EQ(make_dns_query("mail.example.com.", DnsType::mx), bytes(expected));
  EXPECT_EQ(make_dns_query("mail.example.com", DnsType::a)[31], 1);
}

TEST(DnsQueryTest, IsNotMadeForWhatCannotBeAName) {
  const std::string label(63, 'a');
  const std::string longest = label + "." + label + "." + label + "." + std::string(61, 'a');
  for (const std::string& name : {label + ".example", longest, longest + "."}) {
    EXPECT_FALSE(make_dns_query(name, DnsType::mx).empty()) << name;
  }
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("a..b"), std::string(".example.com"),
        std::string("example.com.."), label + "a.example", longest + "a", std::string(100000, 'x')}) {
    EXPECT_TRUE(make_dns_query(name, DnsType::mx).empty()) << name;
  }
}

TEST(DnsNameTest, EndsBehindAPointerOrOnTheZeroByte) {
  constexpr std::string_view message("\x03xyz\x00\x02mx\xC0\x00\xC0\x05!", 13);
  std::size_t end = 0;
  EXPECT_EQ(name_at(message, 0, &end), "xyz.");
  EXPECT_EQ(end, 4U);
  EXPECT_EQ(name_at(message, 5, &end), "mx.xyz.");
  EXPECT_EQ(end, 10U);
  EXPECT_EQ(name_at(message, 10, &end), "mx.xyz.");  // a pointer to a name with a pointer
  EXPECT_EQ(end, 12U);
  EXPECT_EQ(name_at(message, 4, &end), "");
}

// 193 would be a pointer to an offset above 255; here it is the length of a label.
TEST(DnsNameTest, KnowsNoPointersBeyondTheFirst256Bytes) {
  const std::string label(193, 'l');
  const std::string message = "\xC1" + label + std::string(1, '\0');
  EXPECT_EQ(name_at(message, 0), label + ".");
  EXPECT_EQ(name_at("\xC1\x04", 0), std::nullopt);
}

TEST(DnsNameTest, RefusesWhatHasNoEndWithinTheMessage) {
  std::string long_name;
  for (int i = 0; i < 5; ++i) long_name += "\x3F" + std::string(63, 'a');
  long_name += '\0';
  std::string chain;  // each pointer leads to the next, the last one to a zero byte
  for (char i = 0; i < 100; ++i) chain += std::string("\xC0") + static_cast<char>(2 * i + 2);
  chain += '\0';
  EXPECT_EQ(name_at(chain, 0), "");
  const std::string_view endless[] = {"",
                                      "\x03xy",
                                      "\x03xyz",
                                      "\xC0",
                                      "\xC0\x09",
                                      {"\xC0\x00", 2},
                                      {"\x01x\xC0\x00", 4},
                                      {"\xC0\x02\xC0\x00", 4},
                                      "\xFFx",
                                      long_name};
  for (const std::string_view message : endless) EXPECT_EQ(name_at(message, 0), std::nullopt) << message;
  EXPECT_EQ(name_at("\x01x", 1000), std::nullopt);
}

class DnsAnswerTest : public testing::Test {
 protected:
  DnsMessage answer(std::string_view name, DnsType type) { return server.answer(make_dns_query(name, type)); }

  test::FakeDnsServer server;
};

TEST_F(DnsAnswerTest, MailExchangersComeByPreferenceAndThenAsTheyStand) {
  for (const char* record : {"30 c.example.com", "10 a.example.com", "20 b.example.com", "10 z.example.com",
                             "65535 last.example.com"}) {
    server.add(std::string("example.com MX ") + record);
  }
  const MailExchangers found = read_mail_exchangers(answer("example.com", DnsType::mx));
  EXPECT_THAT(exchanges(found), ElementsAre("10 a.example.com.", "10 z.example.com.", "20 b.example.com.",
                                            "30 c.example.com.", "65535 last.example.com."));
  EXPECT_EQ(found.best, "a.example.com.");
}

TEST_F(DnsAnswerTest, AnAliasEndsTheListOfExchangers) {
  server.add("alias.example.com CNAME example.com");
  server.add("example.com MX 10 mail.example.com");
  const DnsMessage message = answer("alias.example.com", DnsType::mx);
  EXPECT_EQ(dns_answer_count(message), 2U);
  EXPECT_THAT(exchanges(read_mail_exchangers(message)), IsEmpty());
}

TEST_F(DnsAnswerTest, AnExchangeThatEndsInNoPointerIsTheLastOne) {
  server.add("example.com MX 20 mail.example.com");
  server.add("example.com MX 10 mail.elsewhere.test");
  server.add("example.com MX 5 first.example.com");
  EXPECT_THAT(exchanges(read_mail_exchangers(answer("example.com", DnsType::mx))),
              ElementsAre("10 mail.elsewhere.test.", "20 mail.example.com."));
}

TEST_F(DnsAnswerTest, AnEmptyExchangeIsNone) {
  DnsMessage message = make_dns_query("example.com", DnsType::mx);
  message[7] = 1;
  const DnsMessage record = {0xC0, 12, 0, 15, 0, 1, 0, 0, 0, 9, 0, 3, 0, 0, 0};
  message.insert(message.end(), record.begin(), record.end());
  const MailExchangers found = read_mail_exchangers(message);
  EXPECT_THAT(found.list, IsEmpty());
  EXPECT_EQ(found.best, "");
}

TEST_F(DnsAnswerTest, AddressesSkipAliasesAndOtherRecords) {
  server.add("www.example.com CNAME a-name-that-is-long-enough-to-fill-the-message.example.com");
  for (int i = 0; i < 12; ++i) {
    server.add("a-name-that-is-long-enough-to-fill-the-message.example.com A 192.0.2." + std::to_string(i));
  }
  const std::vector<std::string> found = read_addresses(answer("www.example.com", DnsType::a));
  EXPECT_EQ(found.size(), 12U);
  EXPECT_EQ(found.back(), "192.0.2.11");
}

TEST_F(DnsAnswerTest, AnAddressHasFourBytesAndIsOfTheInternet) {
  server.add("example.com A 192.0.2.1");
  DnsMessage message = answer("example.com", DnsType::a);
  EXPECT_THAT(read_addresses(message), ElementsAre("192.0.2.1"));
  DnsMessage chaos = message;
  chaos[chaos.size() - 11] = 3;
  EXPECT_THAT(read_addresses(chaos), IsEmpty());
  message[message.size() - 5] = 3;
  EXPECT_THAT(read_addresses(message), IsEmpty());
}

TEST_F(DnsAnswerTest, FieldsThatLieHaveNoEffectBeyondTheMessage) {
  for (int i = 0; i < 4; ++i) {
    server.add("example.com MX 1" + std::to_string(i) + " mail" + std::to_string(i) + ".example.com");
    server.add("example.com A 192.0.2." + std::to_string(i));
  }
  for (const DnsType type : {DnsType::mx, DnsType::a}) {
    const DnsMessage whole = answer("example.com", type);
    std::size_t most = 0;
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      const DnsMessage cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      const std::size_t count = read_mail_exchangers(cut).list.size() + read_addresses(cut).size();
      EXPECT_GE(count, most) << size;
      most = count;
    }
    EXPECT_EQ(most, 4U);
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const std::uint8_t value : DnsMessage{0, 1, 12, 63, 64, 192, 193, 255}) {
        DnsMessage changed = whole;
        changed[i] = value;
        for (const MailExchanger& found : read_mail_exchangers(changed).list) {
          EXPECT_LE(found.exchange.size(), 3 * 255U);
          EXPECT_TRUE(is_valid_utf8(found.exchange));
        }
        EXPECT_LE(read_addresses(changed).size(), 4U);
      }
    }
  }
}

}  // namespace
}  // namespace zrl
