#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/page.h"
#include "net/name_lookup.h"
#include "support/dns_environment.h"
#include "support/fake_components.h"
#include "support/recording_host.h"

namespace zrl {
namespace {

class LookupPage : public Page {
 public:
  explicit LookupPage(Console& console) : Page(console, "lookup", "Look-ups") {}
  using Page::address_of;
  using Page::find_mail_exchanger;
  using Page::mail_exchangers;

 private:
  void load() override {}
};

class PageLookupTest : public testing::Test {
 protected:
  PageLookupTest() {
    test::add_registry(console.components(), store);
    console.components().add<NameLookup>([this] { return make_name_lookup(console); });
  }

  std::string last_failure() {
    const ActivityRecord& record = console.activity();
    if (record.total() == 0) return {};
    const ActivityRecord::Entry entry = record[record.total() - 1];
    EXPECT_FALSE(entry.ok || entry.write);
    return std::string(entry.text) + ": " + std::string(entry.error);
  }

  test::DnsEnvironment dns;
  test::TemporaryFolder folder;
  test::RecordingHost host;
  test::MemoryRegistry::Store store;
  Console console{folder.path(), host};
  LookupPage page{console};
};

TEST_F(PageLookupTest, StepsThatFindSomethingAreNotRecorded) {
  dns.server.add("example.com MX 20 backup.example.com");
  dns.server.add("example.com MX 10 mail.example.com");
  dns.server.add("mail.example.com A 192.0.2.1");
  EXPECT_EQ(page.find_mail_exchanger("example.com"), "mail.example.com.");
  const StringList all = page.mail_exchangers("example.com");
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1], "backup.example.com.");
  EXPECT_EQ(page.address_of("mail.example.com."), "192.0.2.1");
  EXPECT_EQ(console.activity().total(), 0U);
  EXPECT_GE(host.waits, 3);  // the event loop was served
}

TEST_F(PageLookupTest, FailuresAreRecordedWithTheirReasons) {
  EXPECT_EQ(page.find_mail_exchanger("missing.example.com"), "");
  EXPECT_EQ(last_failure(), "lookup_mx missing.example.com: there is no such name");
  EXPECT_EQ(page.mail_exchangers("a.de").size(), 0U);
  EXPECT_EQ(last_failure(), "lookup_mx a.de: the name is shorter than 5 characters");
  EXPECT_EQ(page.address_of("missing.example.com"), "");
  EXPECT_EQ(last_failure(),
            "host_address missing.example.com: Windows Sockets error 1 has occurred. Unable to successfully "
            "get Host Name. there is no such name");
}

TEST_F(PageLookupTest, TheTimeOutIsTheSettings) {
  store.values["hklm\\software\\mirvan\\dnstimeout"] = "120";
  dns.server.set_manner({.silent = true});
  EXPECT_EQ(page.find_mail_exchanger("example.com"), "");
  EXPECT_EQ(console.names().time_out().count(), 120);
  EXPECT_THAT(last_failure(), testing::EndsWith("gave no answer within 120 ms"));
}

}  // namespace
}  // namespace zrl
