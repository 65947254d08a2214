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

}  // namespace
}  // namespace zrl
