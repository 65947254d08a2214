#include "pages/traffic/overview_page.h"

#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/last_update.h"
#include "pages/logs/messages_page.h"
#include "support/shown_page.h"

namespace zrl {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

std::string local_time(const char* format, std::time_t time = std::time(nullptr)) {
  char text[64];
  std::tm local{};
  ::localtime_r(&time, &local);
  return {text, std::strftime(text, sizeof text, format, &local)};
}

class OverviewPageTest : public testing::Test, public test::ShownPage<OverviewPage> {
 protected:
  void log(std::string_view status, std::string_view reason, std::string_view sender = "ann@example.com") {
    execute("INSERT INTO predatalog (IPNumber,mailfrom,reason,status,servertime) VALUES ('192.0.2.7','" +
            value(sender) + "','" + value(reason) + "'," + number(status) + ",'" +
            value(local_time("%Y-%m-%d %H:%M:%S")) + "')");
  }

  // "cell|cell" a row.
  static std::vector<std::string> lines(Table& table) {
    std::vector<std::string> result;
    const TableRows rows = table.read(0, 100);
    for (std::size_t row = 0; row < rows.size(); ++row) {
      std::string& line = result.emplace_back();
      for (std::size_t i = 0; i < table.columns().size(); ++i) {
        line.append(i == 0 ? "" : "|").append(rows.cell_at(row, i));
      }
    }
    return result;
  }

  // How many messages the page of messages shows for a query.
  std::uint64_t messages_of(std::string_view query) {
    MessagesPage page(console);
    page.initialise();
    page.show_query(query);
    EXPECT_EQ(page.rows.problem(), "") << query;
    const std::uint64_t rows = page.rows.count().rows;
    page.terminate();
    return rows;
  }

  static std::int64_t last(const Chart& chart, std::size_t series) { return chart.values_of(series).back(); }
};

TEST_F(OverviewPageTest, CountsLeadToTheirMessages) {
  log("2", "554 said \"no\"");
  log("2", "554 said \"no\"", "bob@\"odd, one\".example");
  log("1", "whitelisted");
  execute(
      "INSERT INTO predatalog (IPNumber,mailfrom,reason,status,servertime) VALUES "
      "('192.0.2.7','ann@example.com','whitelisted',1,'2020-01-01 00:00:00')");
  OverviewPage& page = shown();
  EXPECT_EQ(page.mails.labels().size(), 24U);
  EXPECT_THAT((std::vector{last(page.mails, 0), last(page.mails, 1), last(page.mails, 2)}),
              ElementsAre(2, 1, 0));
  EXPECT_THAT(lines(page.reasons), ElementsAre("554 said \"no\"|2", "whitelisted|1"));
  EXPECT_THAT(lines(page.clients), ElementsAre("192.0.2.0/24|3"));
  EXPECT_THAT(lines(page.domains), ElementsAre("example.com|2", "\"odd, one\".example|1"));
  std::vector<std::pair<std::string, std::string>> counts;  // queries, and how many messages they lead to
  for (Table* table : {&page.reasons, &page.clients, &page.domains}) {
    const TableRows rows = table->read(0, 10);
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const auto link = rows.link_at(row, 0);
      ASSERT_TRUE(link);
      EXPECT_EQ(link->page, "messages");
      counts.emplace_back(link->query, rows.cell_at(row, 1));
    }
  }

  page.mails.user_choose(23);
  page.period.user_type("month");
  EXPECT_EQ(page.mails.labels().size(), 30U);
  page.mails.user_choose(29);
  EXPECT_THROW(page.mails.user_choose(30), Refused);
  EXPECT_THAT(activity(), IsEmpty());
  ASSERT_EQ(host.opened.size(), 2U);
  for (const std::string& opened : host.opened) {
    EXPECT_THAT(opened, StartsWith("messages/"));
    counts.emplace_back(opened.substr(opened.find('/') + 1), "3");
  }
  for (const auto& [query, count] : counts) EXPECT_EQ(std::to_string(messages_of(query)), count) << query;
}

// Where nothing has happened, a tick leaves the page alone; what happens is seen at the next one.
TEST_F(OverviewPageTest, RefreshesItselfAndShowsOnlyWhatIsNew) {
  log("2", "no");
  OverviewPage& page = shown();
  const Revision before = page.revision();
  page.Timer1.user_tick();
  page.Timer1.user_tick();
  EXPECT_EQ(page.revision(), before);
  log("2", "no");
  page.Timer1.user_tick();
  EXPECT_EQ(last(page.mails, 0), 2);
  EXPECT_THAT(lines(page.reasons), ElementsAre("no|2"));
  EXPECT_THAT(activity(), IsEmpty());
}

TEST_F(OverviewPageTest, WhatNeedsAnEyeIsFoundAndGoesWhenItIsMended) {
  set_option("checkbw", 0);
  set_option("checksubject", 1);
  set_option("enablesubjectwhite", 0);
  insert("blacklist", "entry", {"spam.example"});
  insert("subjectwhite", "entry", {"invoice"});
  Settings& settings = console.settings();
  settings.regwrite_string(settings.path_of("updateurl"), "http://updates.example/");
  settings.regwrite_dword(settings.path_of("reloadblack"), 1);
  auto offset = std::chrono::seconds(0);
  Console later(folder.path(), host, [&] { return std::chrono::system_clock::now() + offset; });
  register_components(later);
  OverviewPage page(later);
  page.initialise();
  const auto found = [&](const char* text) { return Contains(HasSubstr(text)); };
  EXPECT_THAT(lines(page.attention), found("warning|Domain black list: has entries without effect, because "
                                           "\"Use the domain lists\" is off|domainbw"));
  EXPECT_THAT(lines(page.attention), found("Subject white list: has entries without effect, because "
                                           "\"Use the subject white list\" is off|keywords"));
  EXPECT_THAT(lines(page.attention), found("never updated"));
  EXPECT_THAT(lines(page.attention), Not(found("does not read")));

  const auto now = static_cast<std::int64_t>(std::time(nullptr));
  write_last_update(console.folder(), {now - 8 * 86400, ""});
  offset = std::chrono::seconds(310);
  set_option("checkbw", 1);
  page.Timer1.user_tick();
  EXPECT_THAT(lines(page.attention), found("was 8 days ago"));
  EXPECT_THAT(lines(page.attention),
              found("The proxy does not read the changed black lists (waiting for 5 minutes)"));
  EXPECT_THAT(lines(page.attention), Not(found("Domain black list")));
  OverviewPage another(later);  // one that did not see the flag raised
  another.initialise();
  EXPECT_THAT(lines(another.attention), found("waiting for 5 minutes"));

  write_last_update(console.folder(), {now, "addblack.txt: too large"});
  settings.regwrite_dword(settings.path_of("reloadblack"), 0);
  page.Timer1.user_tick();
  EXPECT_THAT(lines(page.attention).front(),
              StartsWith("bad|The last update of the lists failed: addblack.txt"));
  EXPECT_THAT(lines(page.attention), Not(found("does not read")));
}

TEST_F(OverviewPageTest, FirstStepsTickThemselvesOff) {
  OverviewPage& page = shown();
  EXPECT_THAT(lines(page.first_steps), ElementsAre(testing::EndsWith("|0"), testing::EndsWith("|0"),
                                                   testing::EndsWith("|0"), testing::EndsWith("|0")));
  EXPECT_TRUE(page.Frame2.visible());
  insert("mydomain", "entry", {"mirvan.example"});
  set_string("forwardaddress", "192.0.2.1");
  page.Timer1.user_tick();
  EXPECT_EQ(lines(page.first_steps)[0], "Name the local domains|1");
  EXPECT_THAT(lines(page.first_steps)[1], testing::EndsWith("|1"));
  EXPECT_THAT(lines(page.first_steps)[2], testing::EndsWith("|0"));
}

TEST_F(OverviewPageTest, WhatCannotBeReadSaysSoAndLeavesTheRest) {
  log("2", "no");
  execute("DROP TABLE bodylog");
  execute("DROP TABLE blackmail");
  set_option("checkmail", 0);
  OverviewPage& page = shown();
  EXPECT_EQ(last(page.mails, 0), 1);
  EXPECT_THAT(lines(page.attention), Contains("unknown|bodylog: cannot be read|stati"));
  EXPECT_THAT(lines(page.attention), Contains("unknown|E-mail black list: cannot be read|wbuser"));

  page.Timer1.user_tick();
  forget_activity();
  page.Timer1.user_tick();
  EXPECT_THAT(activity(), Each(Not(HasSubstr("count the logs"))));

  console.settings().regwrite_string(console.settings().data_provider_path(), "sqlite:/none/such.db");
  OverviewPage& without = shown();
  EXPECT_EQ(without.mails.labels().size(), 24U);
  EXPECT_THAT(lines(without.attention), Contains("unknown|The database: cannot be read|stati"));
  without.period.user_type("week");
  without.Timer1.user_tick();
  EXPECT_EQ(without.mails.labels().size(), 7U);
  EXPECT_THAT(activity(), IsEmpty());  // what fails at every tick would fill the record
}

}  // namespace
}  // namespace zrl
