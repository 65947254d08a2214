#include "core/text/row_filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/time_stamp.h"

namespace zrl {
namespace {

constexpr std::string_view fields[] = {"from", "to", "ip"};

std::string terms_of(std::string_view text) {
  const auto parsed = parse_filter(text, fields);
  if (const auto* fault = std::get_if<FilterFault>(&parsed)) {
    return std::to_string(fault->column) + ": " + std::string(fault->text) +
           (fault->detail.empty() ? "" : " %1=" + fault->detail);
  }
  std::string told;
  for (const FilterTerm& term : std::get<std::vector<FilterTerm>>(parsed)) {
    told += (told.empty() ? "" : " ") + std::to_string(term.column) + "[" + std::string(term.field) + "|" +
            term.value + "]";
  }
  return told;
}

TEST(RowFilter, IsReadAsItsGrammarSays) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", ""},
      {" \t", ""},
      {"viagra", "1[|viagra]"},
      {"from:ann@example.com to:bob", "1[from|ann@example.com] 22[to|bob]"},
      {"FROM:x", "1[from|x]"},
      {"from:\"a b\" c", "1[from|a b] 12[|c]"},
      {"\"say \"\"no\"\"\"", "1[|say \"no\"]"},
      {"from:\"\"", "1[from|]"},
      {"ip:2001:db8::1 2001:db8::1 ::1 fe80::1", "1[ip|2001:db8::1] 16[|2001:db8::1] 28[|::1] 32[|fe80::1]"},
      {"from:to:x", "1[from|to:x]"},
      {"\u00e4\u00f6 x", "1[|\u00e4\u00f6] 4[|x]"},
      {"\xff\xfe", "1[|\xff\xfe]"},
      {"'; DROP", "1[|';] 4[|DROP]"},
      {"\u00e4 foo:x", "3: \"%1:\" is no field %1=foo"},
      {"http://x", "1: \"%1:\" is no field %1=http"},
      {"from: x", "6: A value is missing after \"%1:\" %1=from"},
      {"from:", "6: A value is missing after \"%1:\" %1=from"},
      {"a \"\"", "3: Nothing stands between the quotes"},
      {"a \"b", "3: The closing quote is missing"},
      {"\"a\"b", "4: After the closing quote a blank is missing"},
      {"a\"b\"", "2: A quote begins within a word"},
      {"1 2 3 4 5 6 7 8 9", "17: The filter has more than %1 parts %1=8"}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(terms_of(text), expected) << text;
  EXPECT_EQ(terms_of("a " + std::string(longest_filter_value + 1, 'x')), "3: The text is too long");
}

TEST(RowFilter, AnyValueCanBeWrittenAndReadAgain) {
  for (const std::string_view value :
       {"x", "a b", "\"", "say \"no\"", "from:x", "a:b", "'", "\xff\n", "", ":"}) {
    const std::string written = filter_term("from", value);
    EXPECT_EQ(terms_of(written), "1[from|" + std::string(value) + "]") << written;
    if (!value.empty()) EXPECT_EQ(terms_of(filter_term("", value)), "1[|" + std::string(value) + "]");
  }
  EXPECT_EQ(filter_term("from", "ann@example.com"), "from:ann@example.com");
}

// Nothing of the value means anything to LIKE, and a statement takes all of it.
TEST(RowFilter, PatternsMatchTheValueAlone) {
  EXPECT_EQ(like_pattern("50%_off!"), "50!%!_off!!");
  EXPECT_EQ(like_pattern(std::string_view("o'brian\0", 8)), "o_brian_");
}

TEST(TimeStamp, AreReadWrittenAndTyped) {
  const auto seconds = seconds_of("2026-09-01 08:15:00");
  ASSERT_TRUE(seconds);
  EXPECT_EQ(seconds_of("20260901081500"), seconds);
  EXPECT_EQ(log_time(*seconds), "2026-09-01 08:15:00");
  for (const std::string_view none :
       {"", "yesterday", "2026-02-30 00:00:00", "2026-09-01 24:00:00", "2026-13-01 00:00:00",
        "2026-09-01T08:15:00", "2026-09-01 08:15", "-0260901081500"}) {
    EXPECT_FALSE(seconds_of(none)) << none;
  }
  EXPECT_EQ(typed_time(" 2026-09-01 ", false), "2026-09-01 00:00:00");
  EXPECT_EQ(typed_time("2026-09-01", true), "2026-09-01 23:59:59");
  EXPECT_EQ(typed_time("2026-09-01 08:15", true), "2026-09-01 08:15:59");
  EXPECT_EQ(typed_time("20260901081500", true), "2026-09-01 08:15:00");
  EXPECT_EQ(typed_time("2026-02-30", false), std::nullopt);
  EXPECT_EQ(since_time("24h", *seconds + 86'400), "2026-09-01 08:15:00");
  EXPECT_EQ(since_time("90m", *seconds + 5400), "2026-09-01 08:15:00");
  EXPECT_EQ(since_time("2026-09-01", 0), "2026-09-01 00:00:00");
  EXPECT_EQ(time_digits(std::chrono::system_clock::from_time_t(*seconds)), "20260901081500");
  EXPECT_EQ(date_before(*seconds, 1), "2026-08-31");
  for (const std::string_view none : {"h", "-1h", "1y", "99999999999999999d", "now"})
    EXPECT_FALSE(since_time(none, *seconds)) << none;
}

}  // namespace
}  // namespace zrl
