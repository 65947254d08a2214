#include "core/activity.h"

#include <gtest/gtest.h>

namespace zrl {
namespace {

using Kind = ActivityRecord::Kind;

TEST(ActivityRecord, KeepsOrderOutcomeAndError) {
  ActivityRecord record;
  record.succeeded(Kind::option, "set_option checkmx=1", 10);
  record.failed(Kind::sql, "DELETE * FROM iplog", "syntax error", 11, true);
  ASSERT_EQ(record.total(), 2u);
  EXPECT_EQ(record.failures(), 1u);
  EXPECT_EQ(record[0].text, "set_option checkmx=1");
  EXPECT_EQ(record[0].error, "");
  EXPECT_EQ(record[1].text, "DELETE * FROM iplog");
  EXPECT_EQ(record[1].error, "syntax error");
  EXPECT_FALSE(record[1].ok);
  EXPECT_EQ(name_of(record[1].kind), "sql");
}

TEST(ActivityRecord, WritesThatAreUndoneBecomeFailures) {
  ActivityRecord record;
  record.succeeded(Kind::sql, "INSERT INTO pop3 VALUES ('s3cret')", 10,
                   "INSERT INTO pop3 VALUES ('********')");
  record.failed(Kind::sql, "DELETE * FROM iplog", "syntax error", 11, true, {}, true);
  EXPECT_EQ(record.failures(), 0u);
  for (int i = 0; i < 2; ++i) record.turn_into_failure(0, "undone: disk full");
  record.turn_into_failure(1, "other");
  record.turn_into_failure(2, "there is none");
  EXPECT_EQ(record.failures(), 1u);
  EXPECT_FALSE(record[0].ok);
  EXPECT_FALSE(record[0].expected);
  EXPECT_EQ(record[0].error, "undone: disk full");
  EXPECT_EQ(record[0].text, "INSERT INTO pop3 VALUES ('s3cret')");
  EXPECT_EQ(record[0].public_text, "INSERT INTO pop3 VALUES ('********')");
  EXPECT_TRUE(record[1].expected);
  EXPECT_EQ(record[1].error, "syntax error");
}

TEST(ActivityRecord, OldEntriesMakeRoomAndKeepTheirNumbers) {
  ActivityRecord record(10'000);
  for (int i = 0; i < 1000; ++i) record.succeeded(Kind::sql, "statement " + std::to_string(i), i);
  EXPECT_EQ(record.total(), 1000u);
  EXPECT_GT(record.first(), 0u);
  EXPECT_EQ(record[999].text, "statement 999");
  EXPECT_EQ(record[record.first()].text, "statement " + std::to_string(record.first()));
  record.succeeded(Kind::sql, std::string(20'000, 'x'), 0);
  EXPECT_EQ(record.first(), 1000u);
}

// All that an entry holds counts: its text, its error, and the text that is shown of a secret.
TEST(ActivityRecord, HoldsNoMoreBytesThanItMayAndNotMuchLess) {
  constexpr std::size_t limit = 100'000;
  const std::string part(1000, 'x');
  for (const bool fails : {false, true}) {
    ActivityRecord record(limit);
    for (int i = 0; i < 500; ++i) {
      if (fails) {
        record.failed(Kind::sql, part, part, i, true, part);
      } else {
        record.succeeded(Kind::sql, part, i, part);
      }
    }
    std::size_t bytes = 0;
    for (std::uint64_t i = record.first(); i < record.total(); ++i) {
      bytes += record[i].text.size() + record[i].error.size() + record[i].public_text.size();
    }
    EXPECT_LE(bytes, limit) << fails;
    EXPECT_GT(bytes, limit * 9 / 10) << fails;
  }
  ActivityRecord usual;
  for (int i = 0; i < 80; ++i) usual.succeeded(Kind::sql, std::string(1 << 20, 'x'), i);
  EXPECT_EQ(usual.total() - usual.first(), 63u);
}

}  // namespace
}  // namespace zrl
