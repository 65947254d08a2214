#include "pages/traffic/list_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue/catalogue.h"
#include "core/entry_notes.h"
#include "pages/traffic/subject_log.h"
#include "pages/traffic/verdict.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

struct Client final : DatabaseClient {
  using DatabaseClient::DatabaseClient;
};

class ListSearchTest : public testing::Test, public test::InstalledConsole {
 protected:
  ListSearchTest() {
    client.connect_database();
    for (const KnownList& list : known_lists()) {
      for (const ListSwitch& one : list.switches) set_option(one.option, 1);
    }
    forget_activity();
  }

  void put(std::string_view list, std::initializer_list<std::string_view> entries) {
    const ListTable& table = find_list(list)->table;
    for (const std::string_view entry : entries) execute(insert_into(table, entry));
  }
  // "domains.black example.net".
  std::vector<std::string> found(std::string_view what) {
    std::vector<std::string> texts;
    for (const ListFinding& one : search_lists(client, console, subject_of(what)).entries)
      texts.push_back(std::string(one.list->table.name) + " " + one.entry);
    return texts;
  }
  std::string verdict(std::string_view what) {
    const Subject subject = subject_of(what);
    return verdict_on(console, subject, search_lists(client, console, subject)).sentence;
  }

  Client client{console};
};

// People who are told of a switch look for it on the list's page.
TEST_F(ListSearchTest, SwitchesOfListsAreCheckBoxesOfTheirPages) {
  for (const KnownList& list : known_lists()) {
    for (const ListSwitch& one : list.switches) {
      SCOPED_TRACE(one.option);
      for (const ListSwitch& each : list.switches) set_option(each.option, 1);
      const std::unique_ptr<Page> page = find_page(page_catalogue(), list.page)->make(console);
      page->initialise();
      CheckBox* box = nullptr;
      for (Control* control : page->controls()) {
        if (control->kind() != ControlKind::check_box) continue;
        auto* candidate = static_cast<CheckBox*>(control);
        if (candidate->caption() == one.caption) box = candidate;
      }
      ASSERT_NE(box, nullptr) << one.caption << " on " << list.page;
      EXPECT_TRUE(box->checked());
      box->user_click();
      EXPECT_EQ(option(one.option), "0");
      page->terminate();
    }
  }
}

TEST_F(ListSearchTest, EveryEntryThatTouchesItIsFoundOnce) {
  put("domains.black", {"Example.NET", "example.net", "@*sub.example.net", "example.ne", "net.example.net"});
  put("domains.local", {"net"});
  put("mails.white", {"ann@sub.example.net", "ann@example.net"});
  put("files", {"sub.example.net"});
  put("zones.black", {"sub.example.net"});
  put("keywords.body", {"example", "exampl\\x27", "REGEX[s.b\\.]", "REGEX[(]", "other"});
  EXPECT_THAT(
      found("sub.example.net"),
      UnorderedElementsAre("domains.black Example.NET", "domains.black @*sub.example.net",
                           "domains.local net", "files sub.example.net", "zones.black sub.example.net",
                           "keywords.body example", "keywords.body REGEX[s.b\\.]"));
  EXPECT_THAT(found("ann@sub.example.net"), testing::Contains("mails.white ann@sub.example.net"));
  // Quotes are stored escaped, and nothing that a person types becomes a statement.
  put("keywords.subject", {"o\\x27neil"});
  EXPECT_THAT(found("dear O'Neil"), ElementsAre("keywords.subject o\\x27neil"));
  EXPECT_THAT(found("'; drop table blacklist; --"), IsEmpty());
  EXPECT_THAT(found(std::string("a\0b", 3)), IsEmpty());
  EXPECT_EQ(rows("blacklist", "entry").size(), 5U);
}

TEST_F(ListSearchTest, NetworksAreFoundHoweverTheirAddressIsWritten) {
  put("subnets.black", {"198.51.100.0/24", "198.51.100.99/25", "198.51.99.1/16", "198.51.100.128/25",
                        "0.0.0.0/1", "198.0.0.0/8", "not a network"});
  put("ips.white", {"198.51.100.7", "198.51.100.70"});
  EXPECT_THAT(found("198.51.100.7"),
              UnorderedElementsAre("subnets.black 198.51.100.0/24", "subnets.black 198.51.100.99/25",
                                   "subnets.black 198.51.99.1/16", "subnets.black 198.0.0.0/8",
                                   "ips.white 198.51.100.7"));
  EXPECT_THAT(found("198.51.100.0/25"),
              UnorderedElementsAre("subnets.black 198.51.100.0/24", "subnets.black 198.51.100.99/25",
                                   "subnets.black 198.51.99.1/16", "subnets.black 198.0.0.0/8"));
}

TEST_F(ListSearchTest, TheSentenceSaysOnlyWhatIsKnown) {
  put("domains.black", {"spam.example"});
  EXPECT_EQ(verdict("other.example"), "Not listed: no entry of any list touches \"other.example\".");
  EXPECT_EQ(verdict("spam.example"), "Rejected: \"spam.example\" is on the domain black list.");
  EXPECT_EQ(verdict("mail.spam.example"),
            "Listed: \"spam.example\", a domain above \"mail.spam.example\", is on the domain black list.");

  save_note(client, list::black_domains, "spam.example", {"it's a phishing wave", "2030-01-31"});
  put("subnets.black", {"192.0.2.0/24"});
  EXPECT_EQ(
      verdict("spam.example"),
      "Rejected: \"spam.example\" is on the domain black list until 2030-01-31 (it's a phishing wave).");
  EXPECT_EQ(verdict("192.0.2.9"),
            "Rejected: \"192.0.2.0/24\", which holds \"192.0.2.9\", is on the subnet black list.");
  put("ips.white", {"192.0.2.9"});
  EXPECT_EQ(verdict("192.0.2.9"),
            "Listed: \"192.0.2.0/24\", which holds \"192.0.2.9\", is on the subnet black list, but "
            "\"192.0.2.9\" is "
            "on the IP white list. Which of them counts is the proxy's own rule.");
  set_option("subnetcheck", 0);
  EXPECT_EQ(verdict("192.0.2.9"),
            "Allowed: \"192.0.2.9\" is on the IP white list. One more entry touches it.");
  EXPECT_EQ(verdict("192.0.2.8"),
            "Listed, but not in effect: \"192.0.2.0/24\", which holds \"192.0.2.8\", is on the subnet black "
            "list, and "
            "\"Use the subnet lists\" is switched off.");

  // What is listed as something else decides nothing.
  put("extensions", {"com"});
  put("keywords.body", {"evil"});
  EXPECT_EQ(verdict("evil.com"),
            "No list of its kind has it, but \"evil\", which occurs in \"evil.com\", is a body keyword.");
  put("domains.white", {"evil.com"});
  EXPECT_EQ(verdict("evil.com"),
            "Allowed: \"evil.com\" is on the domain white list. 2 more entries touch it.");

  // An exemption is not known to win, a white subject is.
  put("domains.except", {"spam.example"});
  EXPECT_THAT(verdict("spam.example"), StartsWith("Listed: "));
  put("keywords.subject", {"pills"});
  EXPECT_THAT(verdict("cheap pills"), StartsWith("Rejected: \"pills\", which occurs in \"cheap pills\","));
  put("keywords.subject-white", {"cheap"});
  EXPECT_THAT(verdict("cheap pills"), StartsWith("Allowed: "));
  set_option("checksubject", 0);
  EXPECT_THAT(verdict("cheap pills"), StartsWith("Listed, but not in effect: "));
}

TEST_F(ListSearchTest, WhatCannotBeReadIsDoubted) {
  client.drop_database();
  EXPECT_THAT(verdict("spam.example"), HasSubstr("Not all lists could be read"));
  EXPECT_GT(console.activity().failures(), 0U);
}

TEST_F(ListSearchTest, TheLogsTellWhatTheyKnowOfAClientAndASender) {
  execute(
      "INSERT INTO iplog (IPNumber, status, servertime) VALUES ('192.0.2.1', 2, datetime('now', "
      "'localtime'))");
  execute(
      "INSERT INTO iplog (IPNumber, status, servertime) VALUES "
      "('192.0.2.1', 1, datetime('now', 'localtime', '-3 days'))");
  execute(
      "INSERT INTO predatalog (IPNumber, mailfrom, reason, servertime) VALUES "
      "('192.0.2.1', 'Bob@x.example', 'x', datetime('now', 'localtime', '-20 days'))");
  execute(
      "INSERT INTO subjectlog (IPNumber, mailfrom, mailto, keyword, servertime) VALUES "
      "('192.0.2.2', 'bob@x.example', 'me@here.example', 'pills', 'no time')");
  const SubjectLog client_log = log_of(client, console, subject_of("192.0.2.1"));
  ASSERT_EQ(client_log.rows.size(), 3U);
  EXPECT_EQ(client_log.rows[0].verdict, "rejected");
  EXPECT_EQ(client_log.rows[2].reason, "x");
  EXPECT_EQ(client_log.counts[SubjectLog::day].rejected, 1U);
  EXPECT_EQ(client_log.counts[SubjectLog::week].allowed, 1U);
  EXPECT_EQ(client_log.counts[SubjectLog::month].neutral, 1U);
  EXPECT_TRUE(client_log.complete);

  const SubjectLog sender_log = log_of(client, console, subject_of("bob@X.example"));
  ASSERT_EQ(sender_log.rows.size(), 2U);
  EXPECT_EQ(sender_log.rows[0].recipient, "me@here.example");
  EXPECT_EQ(log_of(client, console, subject_of("x.example")).rows.size(), 0U);

  EXPECT_EQ(hits_of(client, console, *find_list("ips.black"), "192.0.2.1"), 2U);
  EXPECT_EQ(hits_of(client, console, *find_list("domains.black"), "x.example"), std::nullopt);
  execute("DROP TABLE bodylog");
  EXPECT_FALSE(log_of(client, console, subject_of("192.0.2.1")).complete);
}

TEST(EntryNotes, TheLastDayIsADateOrANumberOfDays) {
  const std::pair<const char*, std::optional<std::string>> cases[] = {
      {" ", ""},
      {"0d", "2026-12-30"},
      {"30d", "2027-01-29"},
      {" 2d ", "2027-01-01"},
      {"2027-01-31", "2027-01-31"},
      {"2028-02-29", "2028-02-29"},
      {"2027-02-29", {}},
      {"2026-12-29", {}},
      {"2027-1-31", {}},
      {"-1d", {}},
      {"d", {}},
      {"1000000d", {}},
      {"tomorrow", {}},
      {"20270131", {}},
      {"2027-01-31x", {}},
  };
  for (const auto& [typed, day] : cases) EXPECT_EQ(last_day(typed, "20261230221000"), day) << typed;
  EXPECT_EQ(last_day("1d", ""), std::nullopt);
}

}  // namespace
}  // namespace zrl
