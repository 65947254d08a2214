#include "pages/lists/block_list_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/text.h"
#include "pages/tools/composer_dialog.h"
#include "support/dns_environment.h"
#include "support/log_rows.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Keeps what it was asked.
class RecordingLists : public BlockLists {
 public:
  bool initmodule(const MessageContext& context) override {
    asked = context;
    return true;
  }
  void Value(std::string_view position, Listing& listing, std::string&) override {
    asked_at = position;
    listing = Listing::none;
  }

  MessageContext asked;
  std::string asked_at;
};

class BlockListPageTest : public testing::Test, public test::ShownPage<BlockListPage> {
 protected:
  std::string result_of(BlockListPage& page, std::string_view text) {
    page.Text2.user_type(text);
    page.Command1.user_click();
    EXPECT_TRUE(page.Command1.enabled());
    return page.Label3.caption();
  }
};

TEST_F(BlockListPageTest, AnEntryStandsOnceInItsListAndTheOtherIsLeftAlone) {
  insert("wblserver", "entry", {"a.test", "bl.test"});
  insert("rblserver", "entry", {"b.test", "bl.test", "bl.test"});
  BlockListPage& page = shown();
  page.List2.user_choose(1);
  EXPECT_EQ(page.Text1.text(), "bl.test");
  page.Text1.user_type(" bl.test ");
  page.rbladd.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM rblserver where entry='bl.test'",
                                      "INSERT INTO rblserver (entry) VALUES ('bl.test')"));
  EXPECT_EQ(page.Text1.text(), "bl.test");
  EXPECT_THAT(items(page.List2), ElementsAre("b.test", "bl.test"));
  EXPECT_EQ(page.List2.index(), 1);
  forget_activity();
  page.wblremove.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM wblserver where entry='bl.test'"));
  page.Text1.user_type("c.test");
  forget_activity();
  page.wbladd.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM wblserver where entry='c.test'",
                                      "INSERT INTO wblserver (entry) VALUES ('c.test')"));
  EXPECT_THAT(items(page.List1), ElementsAre("a.test", "c.test"));
  page.Text1.user_type("b.test");
  forget_activity();
  page.rblremove.user_click();
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM rblserver where entry='b.test'"));
  EXPECT_THAT(rows("rblserver", "entry"), ElementsAre("bl.test"));
}

TEST_F(BlockListPageTest, SwitchAndDialogsBelongToTheirKeysAndTables) {
  expect_switches({{"RBLcheck1", "RBLcheck"}});
  BlockListPage& page = shown();
  EXPECT_EQ(dialog_of(page.oben), "Remote Whitelist: wblserver.txt");
  EXPECT_EQ(dialog_of(page.unten), "Remote Blacklist: rblserver.txt");
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(BlockListPageTest, AnAddressIsAClientAndAnyOtherTextASendersDomain) {
  const auto lists = std::make_shared<RecordingLists>();
  console.components().add<BlockLists>([&] { return lists; });
  BlockListPage& page = shown();
  const struct {
    const char* text;
    const char* position;
    const char* address;
    const char* command;
  } cases[] = {
      {"192.0.2.1", "connect", "192.0.2.1", ""},
      {"spam.test", "envelope", "", "mail from: adsf@spam.test"},
      {"192.0.2", "envelope", "", "mail from: adsf@192.0.2"},
      {" 192.0.2.1\t", "connect", "192.0.2.1", ""},
      {"", "envelope", "", "mail from: adsf@"},
  };
  for (const auto& [text, position, address, command] : cases) {
    EXPECT_EQ(result_of(page, text),
              std::string(trim(text)) + " is NOT listed in one of your configured RBL/RWL Server");
    EXPECT_EQ(lists->asked_at, position) << text;
    EXPECT_EQ(lists->asked.client_address, address) << text;
    EXPECT_EQ(lists->asked.sender_command, command) << text;
  }
}

TEST_F(BlockListPageTest, TheTestTellsTheZoneThatListsIt) {
  test::DnsEnvironment dns;
  dns.server.add("1.2.0.192.bl.test A 127.0.0.2");
  dns.server.add("friend.test.wl.test A 127.0.0.2");
  dns.server.add("friend.test.bl.test A 127.0.0.2");
  dns.server.add("2.2.0.192.bl.test A 192.0.2.80");
  insert("wblserver", "entry", {"wl.test", "no zone"});
  insert("rblserver", "entry", {"bl.test"});
  BlockListPage& page = shown();
  EXPECT_EQ(result_of(page, "192.0.2.1"), "192.0.2.1 is BLACKLISTED in bl.test");
  EXPECT_EQ(result_of(page, "friend.test"), "friend.test is WHITELISTED in wl.test");
  forget_activity();
  EXPECT_EQ(result_of(page, "192.0.2.2"), "192.0.2.2 is NOT listed in one of your configured RBL/RWL Server");
  EXPECT_THAT(activity(), ElementsAre("failed: block list wblserver", "failed: block list bl.test"));
  forget_activity();
  EXPECT_EQ(result_of(page, "o'neil"), "o'neil is neither an IP number nor a domain");
  EXPECT_THAT(activity(), ElementsAre("failed: look up o'neil"));
}

TEST_F(BlockListPageTest, WithoutAnAnswerNothingIsSaidOfTheLists) {
  insert("rblserver", "entry", {"bl.test"});
  {
    test::DnsEnvironment dns;
    dns.server.add("1.2.0.192.bl.test ERROR 2");
    EXPECT_EQ(result_of(shown(), "192.0.2.1"),
              "192.0.2.1 could not be looked up: no RBL/RWL Server answered");
    EXPECT_THAT(activity(), ElementsAre("failed: block list bl.test", "failed: look up 192.0.2.1"));
  }
}

TEST_F(BlockListPageTest, NothingEmptyIsStored) {
  BlockListPage& page = shown();
  for (Button* add : {&page.wbladd, &page.rbladd}) {
    page.Text1.user_type(" ");
    add->user_click();
  }
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM wblserver where entry=''",
                                      "failed: INSERT INTO wblserver (entry) VALUES ('')",
                                      "DELETE FROM rblserver where entry=''",
                                      "failed: INSERT INTO rblserver (entry) VALUES ('')"));
  EXPECT_THAT(rows("wblserver", "entry"), IsEmpty());
  EXPECT_THAT(rows("rblserver", "entry"), IsEmpty());
}

TEST_F(BlockListPageTest, TheButtonIsDisabledMeanwhileAndTheTextMayChange) {
  test::DnsEnvironment dns;
  dns.server.add("1.2.0.192.bl.test A 127.0.0.2");
  dns.server.set_manner({.delay = std::chrono::milliseconds(20)});
  insert("rblserver", "entry", {"bl.test"});
  BlockListPage& page = shown();
  host.on_wait = [&] {
    EXPECT_FALSE(page.Command1.enabled());
    page.Text2.user_type("other.test");
  };
  EXPECT_EQ(result_of(page, "192.0.2.1"), "192.0.2.1 is BLACKLISTED in bl.test");
  EXPECT_GE(host.waits, 1);
}

TEST_F(BlockListPageTest, AMissingComponentIsNoListing) {
  console.components().remove(BlockLists::program_id);
  BlockListPage& page = shown();
  EXPECT_EQ(result_of(page, "192.0.2.1"), "192.0.2.1 is NOT listed in one of your configured RBL/RWL Server");
  EXPECT_THAT(activity(), ElementsAre("failed: look up 192.0.2.1"));
}

TEST_F(BlockListPageTest, TheReportHasTheBlackListedClientsOfTheLog) {
  execute(test::logged("iplog", "192.0.2.1", "2", "20051104120001"));
  execute(test::logged("iplog", "192.0.2.2", "1", "20051104120002"));
  execute(test::logged("iplog", "192.0.2.3", "0", "20051104120003"));
  execute(test::logged("iplog", "192.0.2.4", "2", "20051104120004"));
  set_string("forwardaddress", "mail.test");
  BlockListPage& page = shown();
  std::vector<std::string> shown_mail;
  host.on_show = [&](Form& form) {
    const auto& composer = dynamic_cast<ComposerDialog&>(form);
    shown_mail = {composer.recipient.text(), composer.textbody.text(), composer.server.text()};
  };
  page.Command2.user_click();
  EXPECT_THAT(shown_mail,
              ElementsAre("relays@mirvan.example", "Relay: 192.0.2.1\r\nRelay: 192.0.2.4", "mail.test"));
  execute("DELETE FROM iplog");
  page.Command2.user_click();
  EXPECT_EQ(shown_mail.at(1), "");
  EXPECT_TRUE(page.Command2.enabled());
}

}  // namespace
}  // namespace zrl
