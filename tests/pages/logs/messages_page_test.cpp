#include "pages/logs/messages_page.h"

#include <set>

#include <gmock/gmock.h>

#include "core/text/files.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MessagesPageTest : public testing::Test, public test::ShownPage<MessagesPage> {
 protected:
  void iplog(std::string_view address, std::string_view status, std::string_view time) {
    execute("INSERT INTO iplog (IPNumber,status,servertime) VALUES ('" + value(address) + "'," +
            number(status) + ",'" + value(time) + "')");
  }
  void predata(std::string_view address, std::string_view sender, std::string_view reason,
               std::string_view status, std::string_view time) {
    execute("INSERT INTO predatalog (IPNumber,mailfrom,reason,status,servertime) VALUES ('" + value(address) +
            "','" + value(sender) + "','" + value(reason) + "'," + number(status) + ",'" + value(time) +
            "')");
  }
  // In subjectlog, bodylog or avlog.
  void hit(Literal table, Literal what, std::string_view address, std::string_view sender,
           std::string_view recipient, std::string_view keyword, std::string_view time) {
    execute("INSERT INTO " + table + " (IPNumber,mailfrom,mailto," + what + ",servertime) VALUES ('" +
            value(address) + "','" + value(sender) + "','" + value(recipient) + "','" + value(keyword) +
            "','" + value(time) + "')");
  }
  void fill() {
    iplog("192.0.2.1", "0", "2026-09-01 08:00:00");                                                 // c1
    iplog("192.0.2.200", "2", "2026-09-01 08:00:05");                                               // c2
    predata("192.0.2.200", "Spam@bulk.example", "553 rejected - RBL", "2", "2026-09-01 08:00:05");  // h1
    predata("192.0.3.7", "ann@example.com", "sender is whitelisted", "1", "2026-09-01 08:01:00");   // h2
    hit("subjectlog", "keyword", "192.0.2.200", "spam@bulk.example", "bob@here.test", "cheap",
        "2026-09-01 08:02:00");
    hit("bodylog", "keyword", "10.1.2.3", "x@mail.bulk.example", "eve@here.test", "50% off",
        "2026-09-01 08:03:00");
    hit("avlog", "reason", "10.1.99.3", "", "bob@here.test", "Worm.A", "2026-09-01 08:04:00");
  }
  static std::vector<std::string> keys(Table& table) {
    const TableRows rows = table.read(0, 100);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < rows.size(); ++i) result.emplace_back(rows.key(i));
    return result;
  }
  std::vector<std::string> filtered(MessagesPage& page, std::string_view filter) {
    page.filter.user_type(filter);
    EXPECT_EQ(page.rows.problem(), "") << filter;
    keys(page.rows);
    while (page.messages.read_on()) {  // a busy machine breaks the search off
    }
    auto found = keys(page.rows);
    EXPECT_EQ(page.rows.count(), (RowCount{found.size(), true})) << filter;
    return found;
  }
  static std::string cells(Table& table, std::size_t row) {
    const TableRows rows = table.read(row, 1);
    std::string text;
    for (std::size_t i = 0; !rows.empty() && i < table.columns().size(); ++i) {
      text += (i == 0 ? "" : "|") + std::string(rows.cell_at(0, i));
    }
    return text;
  }
};

TEST_F(MessagesPageTest, AllLogsAreOneTable) {
  fill();
  MessagesPage& page = shown();
  EXPECT_THAT(keys(page.rows), ElementsAre("a1", "b1", "s1", "h2", "c2", "h1", "c1"));
  EXPECT_EQ(cells(page.rows, 3),
            "2026-09-01 08:01:00|allowed|header|192.0.3.7|ann@example.com||sender is whitelisted");
  EXPECT_EQ(cells(page.rows, 0), "2026-09-01 08:04:00|rejected|attachment|10.1.99.3||bob@here.test|Worm.A");
  EXPECT_EQ(cells(page.rows, 6), "2026-09-01 08:00:00|neutral|connection|192.0.2.1|||");
  page.rows.user_sort("time");
  EXPECT_THAT(keys(page.rows), ElementsAre("c1", "h1", "c2", "h2", "s1", "b1", "a1"));
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(MessagesPageTest, PeriodKindAndVerdictLeaveWhatTheySay) {
  fill();
  MessagesPage& page = shown();
  page.verdict.user_type("rejected");
  EXPECT_THAT(keys(page.rows), ElementsAre("a1", "b1", "s1", "c2", "h1"));
  page.kind.user_type("header");
  EXPECT_THAT(keys(page.rows), ElementsAre("h1"));
  page.verdict.user_type("neutral");
  EXPECT_THAT(keys(page.rows), IsEmpty());
  page.kind.user_type("all");
  EXPECT_THAT(keys(page.rows), ElementsAre("c1"));
  page.verdict.user_type("all");
  page.since.user_type("2026-09-01 08:02");
  EXPECT_THAT(keys(page.rows), ElementsAre("a1", "b1", "s1"));
  page.until.user_type("2026-09-01 08:03");
  EXPECT_THAT(keys(page.rows), ElementsAre("b1", "s1"));
  page.until.user_type("never");
  EXPECT_THAT(std::string(page.rows.problem()), HasSubstr("never"));
  EXPECT_THAT(keys(page.rows), IsEmpty());
  page.until.user_type("");
  page.since.user_type("");
  EXPECT_EQ(keys(page.rows).size(), 7u);
  page.period.user_type("hour");
  EXPECT_THAT(keys(page.rows), IsEmpty());
}

TEST_F(MessagesPageTest, TheFilterUnderstandsItsFields) {
  fill();
  MessagesPage& page = shown();
  EXPECT_THAT(filtered(page, "from:spam@bulk.example"), ElementsAre("s1", "h1"));
  EXPECT_THAT(filtered(page, "from:bulk.example"), ElementsAre("b1", "s1", "h1"));
  EXPECT_THAT(filtered(page, "from:@bulk.example to:bob"), ElementsAre("s1"));
  EXPECT_THAT(filtered(page, "from:ulk.example"), IsEmpty());
  EXPECT_THAT(filtered(page, "from:\"\""), ElementsAre("a1"));
  EXPECT_THAT(filtered(page, "to:HERE.test"), ElementsAre("a1", "b1", "s1"));
  EXPECT_THAT(filtered(page, "ip:192.0.2.200"), ElementsAre("s1", "c2", "h1"));
  EXPECT_THAT(filtered(page, "ip:192.0.2.0/24"), ElementsAre("s1", "c2", "h1", "c1"));
  EXPECT_THAT(filtered(page, "ip:192.0.2.0/25"), ElementsAre("c1"));
  EXPECT_THAT(filtered(page, "ip:192.0.2.0/23"), ElementsAre("s1", "h2", "c2", "h1", "c1"));
  EXPECT_THAT(filtered(page, "ip:10.0.0.0/8"), ElementsAre("a1", "b1"));
  EXPECT_THAT(filtered(page, "ip:10.1.0.0/18"), ElementsAre("b1"));
  EXPECT_THAT(filtered(page, "ip:8.0.0.0/5"), ElementsAre("a1", "b1"));
  EXPECT_THAT(filtered(page, "ip:10.1.2."), ElementsAre("b1"));
  EXPECT_THAT(filtered(page, "ip:192.0.2.1/32"), ElementsAre("c1"));
  EXPECT_THAT(filtered(page, "reason:rbl"), ElementsAre("h1"));
  EXPECT_THAT(filtered(page, "50%"), ElementsAre("b1"));
  EXPECT_THAT(filtered(page, "1_2"), IsEmpty());
  EXPECT_THAT(filtered(page, "\"ann@example.com sender is\""), ElementsAre("h2"));
  EXPECT_THAT(filtered(page, "bulk cheap"), ElementsAre("s1"));
  // It is data, whatever it looks like.
  EXPECT_THAT(filtered(page, "'; DROP TABLE iplog"), IsEmpty());
  EXPECT_THAT(filtered(page, "from:o'brian@x"), IsEmpty());
  EXPECT_THAT(filtered(page, "ip:1'2"), IsEmpty());
  // Nor is it the number that it begins with, or 0.
  iplog("unknown", "0", "2026-09-01 08:05:00");
  iplog("64:ff9b::1", "0", "2026-09-01 08:05:00");
  EXPECT_THAT(filtered(page, "ip:0.0.0.0/3"), ElementsAre("a1", "b1"));
  EXPECT_THAT(filtered(page, "ip:64.0.0.0/8"), IsEmpty());
  execute("DELETE FROM iplog WHERE ID>2");
  // A domain may hold an apostrophe, which stands for any character.
  execute("UPDATE bodylog SET mailfrom=replace('x@m.bulkYexample','Y',char(39))");
  EXPECT_THAT(filtered(page, "from:@bulk'example"), ElementsAre("b1", "s1", "h1"));
  EXPECT_THAT(filtered(page, "from:x@m.bulk'example"), ElementsAre("b1"));
  EXPECT_EQ(filtered(page, "").size(), 7u);
  for (const char* network :
       {"ip:1.2.3.4/33", "ip:1.2.3/24", "ip:x.", "ip:2001:db8::/32", "ip:1.2.3.4.5.", "ip:/8"}) {
    page.filter.user_type(network);
    EXPECT_EQ(page.rows.problem(), "This is no network of IPv4 addresses (character 1)") << network;
  }
  page.filter.user_type("x subject:y");
  EXPECT_EQ(page.rows.problem(), "\"subject:\" is no field (character 3)");
  page.filter.user_type("ip:10. ip:10. ip:10.");
  EXPECT_THAT(std::string(page.rows.problem()), HasSubstr("too many parts"));
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(MessagesPageTest, AQueryFillsThePageAndWritesNothing) {
  fill();
  MessagesPage& page = shown();
  page.show_query("verdict:rejected kind:header period:all from:bulk.example \"553 rejected\"");
  EXPECT_EQ(page.verdict.text(), "rejected");
  EXPECT_EQ(page.kind.text(), "header");
  EXPECT_EQ(page.filter.text(), "from:bulk.example \"553 rejected\"");
  EXPECT_THAT(keys(page.rows), ElementsAre("h1"));
  // As a bar of the overview's chart asks: a word of a query holds no blank.
  page.show_query("verdict:all kind:all since:2026-09-01T08:02 until:2026-09-01T08:03");
  EXPECT_EQ(page.rows.problem(), "");
  EXPECT_EQ(page.since.text(), "2026-09-01 08:02");
  EXPECT_THAT(keys(page.rows), ElementsAre("b1", "s1"));
  page.show_query("nonsense:x");
  EXPECT_THAT(std::string(page.rows.problem()), HasSubstr("nonsense"));
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(MessagesPageTest, AChosenRowShowsWhatBelongsToIt) {
  fill();
  execute(
      "INSERT INTO marchive (subject,sip,servertime) VALUES ('Buy now','192.0.2.200','2026-09-01 08:00:09')");
  execute(
      "INSERT INTO marchive (subject,sip,servertime) VALUES ('Other','192.0.2.200','2026-09-02 08:00:09')");
  MessagesPage& page = shown();
  page.rows.user_choose_keys({"h1"});
  EXPECT_THAT(keys(page.details),
              ElementsAre("time", "verdict", "kind", "address", "sender", "reason", "mail"));
  EXPECT_EQ(cells(page.details, 6), "archived mail|Buy now");
  EXPECT_THAT(keys(page.related), ElementsAre("s1", "c2"));
  page.open_mail.user_click();
  page.look_up.user_click();
  EXPECT_THAT(host.opened, ElementsAre("monitor/1", "lookup/192.0.2.200"));
  page.rows.user_choose_keys({"h2"});
  EXPECT_FALSE(page.open_mail.enabled());
  EXPECT_THAT(keys(page.related), IsEmpty());
  page.rows.user_choose_keys({});
  EXPECT_THAT(keys(page.details), IsEmpty());
}

TEST_F(MessagesPageTest, ActsWorkOnAllChosenRows) {
  fill();
  MessagesPage& page = shown();
  page.rows.user_choose_keys({"s1", "h1", "h2"});
  page.block_sender.user_click();
  EXPECT_THAT(rows("blackmail", "entry"),
              testing::UnorderedElementsAre("spam@bulk.example", "ann@example.com"));
  page.rows.user_choose_keys({"h2"});
  page.allow_sender.user_click();
  EXPECT_THAT(rows("blackmail", "entry"), ElementsAre("spam@bulk.example"));
  EXPECT_THAT(rows("whitemail", "entry"), ElementsAre("ann@example.com"));
  page.rows.user_choose_keys({"s1", "b1", "c1"});
  page.block_domain.user_click();
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("bulk.example", "mail.bulk.example"));
  page.rows.user_choose_keys({"c2"});
  page.block_address.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.200"));
  page.neutral.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), IsEmpty());
  EXPECT_THAT(rows("iplog", "status"), ElementsAre("0", "0"));
  EXPECT_THAT(rows("predatalog", "status"), ElementsAre("0", "1"));
  // What has no sender can't be put on a list.
  page.rows.user_choose_keys({"c1"});
  page.block_sender.user_click();
  ASSERT_EQ(host.boxes.size(), 1u);

  for (const char* other : {"h+1", "h 1", "h01", "x1", ""}) {
    EXPECT_THROW(page.rows.user_choose_keys({other}), Refused) << other;
  }
  page.rows.user_choose_keys({"a1", "s1", "c1"});
  EXPECT_EQ(page.delete_rows.count_loss(), 3u);
  page.delete_rows.user_click();
  EXPECT_THAT(keys(page.rows), ElementsAre("b1", "h2", "c2", "h1"));
  EXPECT_TRUE(page.rows.chosen().empty());
}

// One click on the rows of a spammer must not block all mail, or take a partner off the white list.
TEST_F(MessagesPageTest, PatternsOfStrangersAreNoEntries) {
  fill();
  execute("INSERT INTO whitelist (entry) VALUES ('example.com')");
  MessagesPage& page = shown();
  const auto click = [&](Button& act, Literal sender) {
    execute("UPDATE predatalog SET mailfrom=" + sender + " WHERE ID=1");
    page.rows.user_choose_keys({"h1"});
    act.user_click();
  };
  constexpr Literal patterns[] = {
      "'*@*'", "'@*'", "'@sum(1)'", "'u@.'", "'a b@example.com'", "'o''brien@example.com'"};
  for (const Literal sender : patterns) {
    click(page.block_sender, sender);
    click(page.allow_sender, sender);
  }
  constexpr Literal odd_domains[] = {"'*@*'", "'u@.'", "'a@b c'", "'a@*.example.com'"};
  for (const Literal sender : odd_domains) click(page.block_domain, sender);
  EXPECT_THAT(rows("blackmail", "entry"), IsEmpty());
  EXPECT_THAT(rows("whitemail", "entry"), IsEmpty());
  EXPECT_THAT(rows("blacklist", "entry"), IsEmpty());
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("example.com"));
}

TEST_F(MessagesPageTest, ATimeThatCannotBeSaidAgainHidesNoOtherRow) {
  fill();
  execute("INSERT INTO iplog (IPNumber, status, servertime) VALUES ('192.0.2.9', 2, '~''a')");
  MessagesPage& page = shown();
  const auto before = keys(page.rows);
  page.rows.read(0, 1);
  EXPECT_EQ(page.rows.read(1, 1).size(), 1U);
  EXPECT_EQ(page.rows.problem(), "");
  EXPECT_THAT(before, testing::Not(testing::Contains("c3")));
  EXPECT_GT(before.size(), 3U);
}

TEST_F(MessagesPageTest, NewRowsAppearAtTheTopWhenFollowed) {
  fill();
  MessagesPage& page = shown();
  EXPECT_EQ(keys(page.rows).size(), 7u);
  iplog("192.0.2.9", "0", "2026-09-01 09:00:00");
  const Revision before = page.rows.revision(Property::rows);
  page.Timer1.user_tick();
  EXPECT_EQ(page.rows.revision(Property::rows), before);
  page.follow.user_click();
  page.Timer1.user_tick();
  EXPECT_GT(page.rows.revision(Property::rows), before);
  EXPECT_EQ(keys(page.rows).front(), "c3");
  EXPECT_EQ(page.rows.position_of("c1"), 7u);
}

TEST_F(MessagesPageTest, WhatStrangersLoggedIsShownAsItIs) {
  predata("192.0.2.1", std::string(1'000'000, 'x'), "\xff\xfe\r\n<b>", "2", "2026-09-01 08:00:00");
  predata("no address", "=1+1@evil.invalid", "say \"no\"", "7", "yesterday");
  execute("INSERT INTO predatalog (IPNumber,mailfrom) VALUES (NULL,NULL)");
  execute("INSERT INTO iplog (IPNumber,servertime) VALUES ('192.0.2.2','')");
  MessagesPage& page = shown();
  EXPECT_THAT(keys(page.rows), ElementsAre("h2", "h1", "c1", "h3"));
  EXPECT_EQ(cells(page.rows, 0), "yesterday|neutral|header|no address|=1+1@evil.invalid||say \"no\"");
  EXPECT_EQ(page.rows.read(1, 1).cell_at(0, 4).size(), TableRows::longest_cell);
  for (const char* sort : {"time", "time desc"}) {
    page.rows.user_sort(sort);
    std::vector<std::string> one_by_one;
    for (std::uint64_t i = 0; i < 5; ++i) {
      const TableRows row = page.rows.read(i, 1);
      if (!row.empty()) one_by_one.emplace_back(row.key(0));
    }
    EXPECT_EQ(one_by_one, keys(page.rows)) << sort;
  }
  for (const char* key : {"h1", "h2", "h3", "c1"}) page.rows.user_choose_keys({key});
  EXPECT_THROW(page.rows.user_choose_keys({"x1"}), Refused);
  EXPECT_THROW(page.rows.user_choose_keys({"h"}), Refused);

  page.export_csv.user_click();
  page.export_json.user_click();
  ASSERT_EQ(host.offered.size(), 2u);
  const std::string csv = read_file(host.offered[0]);
  EXPECT_TRUE(
      csv.starts_with("\"time\",\"verdict\",\"kind\",\"address\",\"sender\",\"recipient\",\"reason\"\r\n"));
  EXPECT_THAT(csv, HasSubstr("\"'=1+1@evil.invalid\",\"\",\"say \"\"no\"\"\"\r\n"));
  const std::string json = read_file(host.offered[1]);
  EXPECT_THAT(json, HasSubstr(R"("sender":"=1+1@evil.invalid","recipient":"","reason":"say \"no\""})"));
  EXPECT_EQ(std::ranges::count(json, '\n'), 4);
}

// Such rows stand behind all texts, whatever they are compared with: some may be missed, but none comes
// twice.
TEST_F(MessagesPageTest, ATimeThatIsNoTextEndsTheRows) {
  fill();
  for (int i = 0; i < 1200; ++i)
    execute("INSERT INTO iplog (IPNumber,servertime) VALUES ('192.0.2.3',x'FFFE')");
  MessagesPage& page = shown();
  for (const char* sort : {"time", "time desc"}) {
    page.rows.user_sort(sort);
    const TableRows rows = page.rows.read(0, 5000);
    std::set<std::string> seen;
    for (std::size_t i = 0; i < rows.size(); ++i) seen.emplace(rows.key(i));
    EXPECT_EQ(seen.size(), rows.size()) << sort;
    EXPECT_TRUE(seen.contains("a1")) << sort;
  }
}

TEST_F(MessagesPageTest, ALogThatIsMissingLeavesTheOthers) {
  fill();
  execute("DROP TABLE subjectlog");
  MessagesPage& page = shown();
  execute("DROP TABLE IF EXISTS subjectlog");  // opening the database has made it anew
  page.rows.reload();
  EXPECT_THAT(keys(page.rows), ElementsAre("a1", "b1", "h2", "c2", "h1", "c1"));
  EXPECT_THAT(std::string(page.rows.problem()), HasSubstr("subjectlog"));
  EXPECT_EQ(page.rows.count(), (RowCount{6, true}));
  const std::uint64_t failures = console.activity().failures();
  keys(page.rows);
  EXPECT_EQ(console.activity().failures(), failures);
}

}  // namespace
}  // namespace zrl
