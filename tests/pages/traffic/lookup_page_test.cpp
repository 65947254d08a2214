#include "pages/traffic/lookup_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/dns_environment.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class LookupPageTest : public testing::Test, public test::ShownPage<LookupPage> {
 protected:
  LookupPageTest() {
    for (const KnownList& list : known_lists()) {
      for (const ListSwitch& one : list.switches) set_option(one.option, 1);
    }
  }

  LookupPage& asked(std::string_view what) {
    LookupPage& page = shown();
    page.show_query(what);
    return page;
  }
  // The cells of a column.
  static std::vector<std::string> cells(Table& table, std::string_view column) {
    std::vector<std::string> texts;
    const TableRows rows = table.read(0, 100);
    for (std::size_t i = 0; i < rows.size(); ++i)
      texts.emplace_back(rows.cell_at(i, table.find_column(column)));
    return texts;
  }
};

TEST_F(LookupPageTest, AQueryFillsThePageAndWritesNothing) {
  insert("blacklist", "entry", {"spam.example", "@*spam.example"});
  LookupPage& page = asked("http://spam.example/path");
  EXPECT_EQ(page.what.text(), "http://spam.example/path");
  EXPECT_EQ(page.query(), "spam.example");
  EXPECT_THAT(page.verdict.caption(), StartsWith("Rejected: \"spam.example\" is on the domain black list."));
  EXPECT_EQ(page.verdict.tone(), Label::Tone::bad);
  EXPECT_THAT(cells(page.entries, "list"), ElementsAre("domains.black", "domains.black"));
  EXPECT_THAT(cells(page.entries, "entry"), ElementsAre("spam.example", "@*spam.example"));
  EXPECT_THAT(cells(page.entries, "effective"), ElementsAre("yes", "yes"));
  for (const std::string_view hostile : {"'; DROP TABLE blacklist; --", "\xff\x01", "@@", "/", "%1 %2"}) {
    page.show_query(hostile);
    EXPECT_THAT(page.verdict.caption(), StartsWith("Not listed: ")) << hostile;
  }
  page.show_query(std::string(1'000'000, '.'));
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(LookupPageTest, AddingRemovingAndNotingWorkOnWhatWasLookedUpOrOnChosenEntries) {
  insert("whitelist", "entry", {"spam.example"});
  LookupPage& page = asked("spam.example");
  EXPECT_EQ(page.list.text(), "Domain black list");
  page.comment.user_type("it's a wave");
  page.expires.user_type("2999-01-31");
  page.add.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("spam.example"));
  EXPECT_THAT(rows("whitelist", "entry"), IsEmpty());
  EXPECT_THAT(cells(page.entries, "comment"), ElementsAre("it's a wave"));
  EXPECT_THAT(page.verdict.caption(), HasSubstr("until 2999-01-31 (it's a wave)"));

  // A list by its name, and nothing that is not there.
  page.list.user_type("ips.black");
  page.add.user_click();
  EXPECT_EQ(page.verdict.caption(), "Not added: Not a valid IP. Please enter only IP Numbers");
  page.remove.user_click();
  EXPECT_EQ(page.verdict.caption(), "Not removed: Not a valid IP. Please enter only IP Numbers");
  page.list.user_type("nonsense");
  page.add.user_click();
  EXPECT_EQ(page.verdict.caption(), "Not added: there is no list of this name");
  page.list.user_type("domains.local");
  page.remove.user_click();
  EXPECT_EQ(page.verdict.caption(), "Not removed: it is not on this list");
  page.save_note.user_click();
  EXPECT_EQ(page.verdict.caption(), "Not saved: it is not on this list");

  insert("mydomain", "entry", {"spam.example"});
  page.look.user_click();
  page.entries.user_choose(0);
  EXPECT_EQ(page.list.text(), "Domain black list");
  EXPECT_EQ(page.comment.text(), "it's a wave");
  page.comment.user_type("");
  page.expires.user_type("yesterday");
  page.save_note.user_click();
  EXPECT_THAT(page.verdict.caption(), StartsWith("Not a day to come"));
  page.expires.user_type("");
  page.save_note.user_click();
  EXPECT_THAT(cells(page.entries, "comment"), ElementsAre("", ""));
  EXPECT_THAT(rows("entry_notes", "entry"), IsEmpty());

  StringList both;
  const TableRows shown_rows = page.entries.read(0, 10);
  for (std::size_t i = 0; i < shown_rows.size(); ++i) both.push_back(shown_rows.key(i));
  page.entries.user_choose_keys(both);
  page.remove.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), IsEmpty());
  EXPECT_THAT(rows("mydomain", "entry"), IsEmpty());
  EXPECT_THAT(page.verdict.caption(), StartsWith("Not listed"));
}

TEST_F(LookupPageTest, ANoteGoesToItsOwnEntryAlone) {
  insert("blacklist", "entry", {"first.example"});
  LookupPage& page = asked("first.example");
  page.comment.user_type("a wave");
  page.expires.user_type("2999-01-31");
  page.save_note.user_click();
  page.comment.user_type("");
  page.expires.user_type("");
  page.entries.user_choose(0);
  EXPECT_EQ(page.comment.text(), "a wave");
  page.what.user_type("second.example");
  page.add.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("first.example", "second.example"));
  EXPECT_THAT(cells(page.entries, "comment"), ElementsAre(""));

  // What was typed over it is meant.
  page.what.user_type("first.example");
  page.look.user_click();
  page.entries.user_choose(0);
  page.comment.user_type("the same wave");
  page.what.user_type("third.example");
  page.look.user_click();
  page.add.user_click();
  EXPECT_THAT(cells(page.entries, "comment"), ElementsAre("the same wave"));
}

TEST_F(LookupPageTest, AListThatIsSwitchedOffIsToldWithItsSwitch) {
  insert("Blackhost", "IPNumber", {"192.0.2.1"});
  set_option("ip_checking", 0);
  LookupPage& page = asked("192.0.2.1");
  EXPECT_EQ(page.verdict.caption(),
            "Listed, but not in effect: \"192.0.2.1\" is on the IP black list, and \"Use the IP lists\" is "
            "switched off.");
  EXPECT_THAT(cells(page.entries, "effective"), ElementsAre("no, \"Use the IP lists\" is off"));
}

TEST_F(LookupPageTest, TheLogsOfAClientAreShownWithTheirCounts) {
  execute(
      "INSERT INTO predatalog (IPNumber, mailfrom, reason, status, servertime) VALUES "
      "('192.0.2.1', 'bob@x.example', 'greylisted', 2, '2026-11-20 10:00:00')");
  execute("INSERT INTO iplog (IPNumber, status, servertime) VALUES ('192.0.2.1', 1, 'whenever')");
  LookupPage& page = asked("192.0.2.1");
  EXPECT_THAT(cells(page.log, "time"), ElementsAre("whenever", "20261120100000"));
  EXPECT_THAT(cells(page.log, "verdict"), ElementsAre("allowed", "rejected"));
  EXPECT_THAT(cells(page.log, "reason"), ElementsAre("", "greylisted"));
  EXPECT_EQ(cells(page.counts, "period").size(), 3U);
}

// A zero beside a domain that sent mail an hour ago would be a lie.
TEST_F(LookupPageTest, WhatTheLogsAreNotSearchedForHasNoCountsButALinkToItsRows) {
  execute(
      "INSERT INTO predatalog (IPNumber, mailfrom, reason, status, servertime) VALUES "
      "('192.0.2.1', 'bob@x.example', 'greylisted', 2, '2026-11-20 10:00:00')");
  LookupPage& page = asked("x.example");
  EXPECT_THAT(cells(page.counts, "rejected"), ElementsAre("", "", ""));
  EXPECT_THAT(page.log.problem(), HasSubstr("IP number and sender"));
  const std::pair<const char*, const char*> filters[] = {{"x.example", "from:@x.example"},
                                                         {"192.0.2.0/24", "ip:192.0.2.0/24"},
                                                         {"192.0.2.1", "ip:192.0.2.1"},
                                                         {"bob@x.example", "from:bob@x.example"},
                                                         {"say \"hi\" now", "\"say \"\"hi\"\" now\""},
                                                         {"from:x", "\"from:x\""}};
  for (const auto& [what, filter] : filters) {
    page.show_query(what);
    EXPECT_EQ(page.messages.query(), filter);
    EXPECT_EQ(page.messages.page(), "messages");
  }
  page.show_query("bob@x.example");
  EXPECT_EQ(page.log.problem(), "");
  EXPECT_THAT(cells(page.log, "sender"), ElementsAre("bob@x.example"));
}

TEST_F(LookupPageTest, TheDnsIsAskedOnlyByItsButton) {
  test::DnsEnvironment dns;
  for (const char* record : {"spam.example MX 10 mx.spam.example", "spam.example A 192.0.2.7",
                             "spam.example TXT v=spf1 -all", "192.0.2.7 PTR host.spam.example"})
    dns.server.add(record);
  LookupPage& page = asked("spam.example");
  EXPECT_THAT(cells(page.dns, "value"), IsEmpty());
  page.ask_dns.user_click();
  EXPECT_THAT(cells(page.dns, "value"),
              testing::IsSupersetOf({"192.0.2.7", "mx.spam.example", "v=spf1 -all"}));
  page.show_query("192.0.2.7");
  EXPECT_THAT(cells(page.dns, "value"), IsEmpty());
  page.ask_dns.user_click();
  EXPECT_THAT(cells(page.dns, "value"), Contains("host.spam.example"));
  page.what.user_type("other.example");
  page.look.user_click();
  EXPECT_THAT(cells(page.dns, "value"), IsEmpty());
}

}  // namespace
}  // namespace zrl
