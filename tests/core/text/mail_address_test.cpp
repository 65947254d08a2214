#include "core/text/mail_address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zrl {
namespace {

using testing::ElementsAre;

// "name|address" each; after a "!" what is wrong.
std::vector<std::string> read(std::string_view text) {
  const MailboxList list = parse_mailboxes(text);
  std::vector<std::string> result;
  for (const Mailbox& mailbox : list.mailboxes) result.push_back(mailbox.name + "|" + mailbox.address);
  if (list.wrong) result.push_back("!" + *list.wrong);
  return result;
}

TEST(Mailboxes, AreReadWithAndWithoutNames) {
  EXPECT_THAT(read(""), ElementsAre());
  EXPECT_THAT(read(" ,; "), ElementsAre());
  EXPECT_THAT(read("ann@example.com"), ElementsAre("|ann@example.com"));
  EXPECT_THAT(read("ann@example.com; bob@example.org,c@d"),
              ElementsAre("|ann@example.com", "|bob@example.org", "|c@d"));
  EXPECT_THAT(read("Ann Ex\xC3\xA4mple <ann@example.com>"),
              ElementsAre("Ann Ex\xC3\xA4mple|ann@example.com"));
  EXPECT_THAT(read(R"("Example, Ann; \"A\" \\" <ann@example.com>, <bob@example.org>)"),
              ElementsAre(R"(Example, Ann; "A" \|ann@example.com)", "|bob@example.org"));
  EXPECT_THAT(read("ann@[192.0.2.1], bob@[IPv6:2001:db8::1]"),
              ElementsAre("|ann@[192.0.2.1]", "|bob@[IPv6:2001:db8::1]"));
}

TEST(Mailboxes, EndAtWhatIsNone) {
  EXPECT_THAT(read("ann@example.com, bob, c@d"), ElementsAre("|ann@example.com", "!bob"));
  using std::string_literals::operator""s;
  for (const std::string& wrong : {"@"s,
                                   "a@"s,
                                   "@b"s,
                                   "a b@c"s,
                                   "a@b c"s,
                                   "a..b@c"s,
                                   ".a@c"s,
                                   "a@b..c"s,
                                   "a@-b"s,
                                   "a@b_-"s,
                                   "a@[1.2.3]"s,
                                   "a@[IPv6:1.2.3.4]"s,
                                   "a@[]"s,
                                   "a@]["s,
                                   "<a@b"s,
                                   "a@b>"s,
                                   "\"a@b"s,
                                   "\"a\"@b"s,
                                   "a@b\r\nBcc: c@d"s,
                                   "A\nB <a@b>"s,
                                   "A\0B <a@b>"s,
                                   "a\0@b"s,
                                   "a@b\0"s,
                                   "<a@b> <c@d> e"s,
                                   "<a@b\r\nDATA>"s,
                                   "A\xFF <a@b>"s,
                                   "\xC3\xA4@b"s,
                                   "a@\xC3\xA4.com"s,
                                   "<@x:a@b>"s,
                                   "group: a@b"s,
                                   std::string(65, 'a') + "@b",
                                   "a@" + std::string(64, 'b'),
                                   "a@" + std::string(252, 'b')}) {
    EXPECT_TRUE(parse_mailboxes(wrong).wrong) << wrong;
  }
  EXPECT_TRUE(parse_mailboxes(std::string(1'000'000, '<')).wrong);
}

TEST(MailHosts, AreNamesAndAddresses) {
  for (const char* host :
       {"localhost", "mail.example.com", "mail.example.com.", "192.0.2.1", "::1", "[2001:db8::1]"}) {
    EXPECT_TRUE(is_mail_host(host)) << host;
  }
  for (const char* host :
       {"", ".", "a b", "a/b", "a@b", "host:25", "[192.0.2.1]", "[", "http://a", "a\r\nb", "a%0d", "a#b"}) {
    EXPECT_FALSE(is_mail_host(host)) << host;
  }
}

}  // namespace
}  // namespace zrl
