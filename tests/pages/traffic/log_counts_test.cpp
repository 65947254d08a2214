#include "pages/traffic/log_counts.h"

#include <ctime>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/installed_console.h"

namespace zrl {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Client : public DatabaseClient {
 public:
  using DatabaseClient::DatabaseClient;
};

class LogCountsTest : public testing::Test, public test::InstalledConsole {
 protected:
  LogCountsTest() {
    register_components(timed);
    client.connect_database();
  }

  static std::chrono::system_clock::time_point local(int day, int hour, int minute) {
    std::tm time{};
    time.tm_year = 126;
    time.tm_mon = 10;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_isdst = -1;
    return std::chrono::system_clock::from_time_t(std::mktime(&time));
  }

  void log(std::string_view time, std::string_view status, std::string_view address = "192.0.2.7") {
    execute("INSERT INTO iplog (IPNumber,status,servertime) VALUES ('" + value(address) + "'," +
            number(status) + ",'" + value(time) + "')");
  }

  LogCounts::Result count(Period period, LogCounts::Check check = LogCounts::Check::thorough) {
    return LogCounts(client, timed).count(period, check);
  }

  // Rejected, allowed, neutral.
  static std::vector<std::int64_t> sums(const LogCounts::Result& result) {
    return {result.totals.of(LogVerdict::rejected), result.totals.of(LogVerdict::allowed),
            result.totals.of(LogVerdict::neutral)};
  }

  std::string kept(std::string_view unit) {
    std::string complete;
    for (const std::string& one : rows("log_units", "unit")) complete += one == unit ? "x" : "";
    return complete;
  }

  std::chrono::system_clock::time_point now = local(21, 14, 30);
  Console timed{folder.path(), host, [this] { return now; }};
  Client client{timed};
};

TEST_F(LogCountsTest, RowsOfAllLogsCountByTheHourAndByWhatBecameOfThem) {
  log("2026-11-21 14:10:00", "2");
  log("2026-11-21 13:59:59", "1", "192.0.2.200");
  log("2026-11-20 15:00:00", "0", "2001:DB8::1");
  log("2026-11-20 14:59:59", "2");  // too old
  log("2026-11-21 15:00:00", "2");  // to come
  for (const char* none : {"", "yesterday", "2026-11-21", "2026-11-21T14:10:00"}) log(none, "2");
  execute("INSERT INTO iplog (IPNumber) VALUES ('192.0.2.9')");
  execute(
      "INSERT INTO predatalog (IPNumber,mailfrom,reason,status,servertime) VALUES ('198.51.100.4', "
      "'Ann@Example.COM', '554 no', 2, '2026-11-21 14:11:00'), ('198.51.100.5', 'bob@example.com', '554 no', "
      "7, "
      "'2026-11-21 14:12:00'), ('nowhere', 'no sender', '', NULL, '2026-11-21 14:12:30')");
  for (const Literal table : {Literal("subjectlog"), Literal("bodylog")}) {
    execute(
        "INSERT INTO " + table +
        " (IPNumber,mailfrom,mailto,keyword,servertime) VALUES ('192.0.2.8','a@b@example.net','x','casino',"
        "'2026-11-21 14:00:00')");
  }
  execute(
      "INSERT INTO avlog (mailfrom,reason,servertime) VALUES ('<eve@example.org>','Worm','2026-11-21 "
      "00:00:00')");

  const LogCounts::Result day = count(Period::day);
  ASSERT_EQ(day.labels.size(), 24U);
  EXPECT_EQ(day.labels[0], "2026-11-20 15:00");
  EXPECT_EQ(day.labels[23], "2026-11-21 14:00");
  EXPECT_THAT(day.verdicts[23], ElementsAre(2, 0, 4));  // neutral, allowed, rejected
  EXPECT_THAT(sums(day), ElementsAre(5, 1, 3));
  EXPECT_THAT(leaders_of(day.totals.reasons, 2),
              ElementsAre(NamedCount{"554 no", 2}, NamedCount{"casino", 2}));
  EXPECT_THAT(leaders_of(day.totals.clients, 9),
              ElementsAre(NamedCount{"192.0.2.0/24", 4}, NamedCount{"198.51.100.0/24", 2},
                          NamedCount{"2001:DB8::1", 1}, NamedCount{"nowhere", 1}));
  EXPECT_THAT(
      leaders_of(day.totals.domains, 9),
      ElementsAre(NamedCount{"example.com", 2}, NamedCount{"example.net", 2}, NamedCount{"example.org", 1}));
  EXPECT_THAT(day.unread, IsEmpty());

  const LogCounts::Result week = count(Period::week);
  ASSERT_EQ(week.labels.size(), 7U);
  EXPECT_EQ(week.labels[6], "2026-11-21");
  EXPECT_THAT(week.verdicts[5], ElementsAre(1, 0, 1));
  EXPECT_THAT(sums(week), ElementsAre(6, 1, 3));
  EXPECT_EQ(count(Period::month).labels[0], "2026-10-23");
}

// Each change of a finished hour must be seen in the next counts, although the hour was counted and kept.
TEST_F(LogCountsTest, KeptCountsStayRightWhoeverChangesTheLogs) {
  for (int i = 0; i < 5; ++i) log("2026-11-21 10:0" + std::to_string(i) + ":00", "2");
  for (int i = 0; i < 3; ++i) log("2026-11-18 10:0" + std::to_string(i) + ":00", "1", "198.51.100.1");
  const auto both = [&] {
    std::vector<std::int64_t> result = sums(count(Period::day));
    for (const std::int64_t sum : sums(count(Period::month))) result.push_back(sum);
    return result;
  };
  EXPECT_THAT(both(), ElementsAre(5, 0, 0, 5, 3, 0));
  EXPECT_EQ(kept("2026-11-21 10"), "xxxxx");
  EXPECT_EQ(kept("2026-11-18"), "xxxxx");
  EXPECT_EQ(kept("2026-11-21 14"), "");
  EXPECT_THAT(both(), ElementsAre(5, 0, 0, 5, 3, 0));

  execute("UPDATE iplog SET status=0 WHERE servertime='2026-11-21 10:00:00'");
  EXPECT_THAT(sums(count(Period::day, LogCounts::Check::quick)), ElementsAre(4, 0, 1));
  execute("UPDATE iplog SET status=2 WHERE IPNumber='198.51.100.1'");
  EXPECT_THAT(both(), ElementsAre(4, 0, 1, 7, 0, 1));
  execute("DELETE FROM iplog WHERE servertime='2026-11-18 10:01:00'");
  EXPECT_THAT(both(), ElementsAre(4, 0, 1, 6, 0, 1));
  log("2026-11-21 10:30:00", "1");  // comes late
  EXPECT_THAT(both(), ElementsAre(4, 1, 1, 6, 1, 1));
  execute("DELETE FROM iplog WHERE ID=(SELECT max(ID) FROM iplog)");
  log("2026-11-21 10:31:00", "2");  // gets its key
  EXPECT_THAT(both(), ElementsAre(5, 0, 1, 7, 0, 1));
  log("2026-11-21 14:29:00", "2");
  EXPECT_THAT(both(), ElementsAre(6, 0, 1, 8, 0, 1));
  execute("DELETE FROM iplog");
  EXPECT_THAT(both(), ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_THAT(activity(), IsEmpty());

  now += std::chrono::hours(24 * 40);
  count(Period::day);
  EXPECT_THAT(rows("log_units", "unit"), testing::Each(testing::Gt("2026-11-21")));
}

TEST_F(LogCountsTest, HostileAndOverlongTextsAreCountedAndKept) {
  const std::string apostrophe = "can't verify 100% <b>\x01";
  execute("INSERT INTO predatalog (reason,status,servertime) VALUES ('#',2,'2026-11-21 10:00:00'), ('" +
          value(std::string(1'000'000, 'x')) + "',2,'2026-11-21 10:00:00')");
  const auto row = client.conn->open(Statement("SELECT * from predatalog where reason='#'"),
                                     Connection::Access::updatable);
  row->set_text("reason", apostrophe);
  row->set_text("mailfrom", "a@" + std::string(1'000'000, 'y'));
  row->set_text("IPNumber", "'; DROP TABLE iplog; --\xff");
  row->update();
  for (int round = 0; round < 2; ++round) {  // counted, then read from what is kept
    const LogCounts::Result result = count(Period::day);
    EXPECT_THAT(leaders_of(result.totals.reasons, 9),
                ElementsAre(NamedCount{apostrophe, 1}, NamedCount{std::string(200, 'x'), 1}));
    EXPECT_THAT(leaders_of(result.totals.clients, 9),
                ElementsAre(NamedCount{"'; DROP TABLE iplog; --\xff", 1}));
    EXPECT_THAT(sums(result), ElementsAre(2, 0, 0));
  }
  EXPECT_EQ(kept("2026-11-21 10"), "xxxxx");
}

TEST_F(LogCountsTest, ALogThatCannotBeReadIsNamedAndTheOthersCount) {
  log("2026-11-21 10:00:00", "2");
  execute("DROP TABLE bodylog");
  const LogCounts::Result result = count(Period::day);
  EXPECT_THAT(result.unread, ElementsAre("bodylog"));
  EXPECT_THAT(sums(result), ElementsAre(1, 0, 0));
  EXPECT_EQ(kept("2026-11-21 10"), "");
}

// Another program keeps the database locked: the counts come all the same, and cost one wait.
TEST_F(LogCountsTest, WhatCannotBeKeptIsHeldInMemory) {
  log("2026-11-21 10:00:00", "2");
  const auto held = timed.components().create<Database>();
  ConnectionHandle locker = held->open_database("sqlite:proxy.db");
  locker->begin_transaction();
  locker->execute(Statement("DELETE FROM avlog"));
  const auto begin = std::chrono::steady_clock::now();
  LogCounts counts(client, timed);
  for (int round = 0; round < 3; ++round) {
    EXPECT_THAT(sums(counts.count(Period::day, LogCounts::Check::thorough)), ElementsAre(1, 0, 0));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(12));
  locker->roll_back();
}

TEST(TimeUnits, FollowTheClocks) {
  const auto names = [](Period period, std::string_view zone, std::time_t now) {
    ::setenv("TZ", std::string(zone).c_str(), 1);
    ::tzset();
    std::vector<std::string> result;
    for (const TimeUnit& unit : units_of(period, std::chrono::system_clock::from_time_t(now))) {
      result.push_back(unit.name + (unit.finished ? "" : "?"));
    }
    ::unsetenv("TZ");
    ::tzset();
    return result;
  };
  // Clocks were set back at 1:00 UTC that day: the hour from 2:00 came twice.
  const std::vector<std::string> hours =
      names(Period::day, "CET-1CEST,M3.5.0,M10.5.0/3", 1792929600);  // 2026-10-25 12:00 UTC
  EXPECT_EQ(hours.size(), 23U);
  EXPECT_EQ(std::ranges::count(hours, "2026-10-25 02"), 1);
  // In the first minute of a day the one before is not finished.
  const std::vector<std::string> days = names(Period::week, "UTC", 1793059230);  // 2026-10-27 00:00:30
  EXPECT_EQ(days[5], "2026-10-26?");
  EXPECT_EQ(days[6], "2026-10-27 00?");
  EXPECT_EQ(names(Period::month, "UTC", 1793059290)[28], "2026-10-26");
}

}  // namespace
}  // namespace zrl
