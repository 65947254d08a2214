#include "host/sample/encoding.h"

#include <algorithm>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "host/sample/generator.h"

namespace zrl::sample {
namespace {

TEST(SampleEncoding, BytesBecomeBase64) {
  const char* pairs[][2] = {{"", ""},        {"f", "Zg=="},          {"fo", "Zm8="},
                            {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"}, {"\xff\xfe\xfd", "//79"}};
  for (const auto& [bytes, text] : pairs)
    EXPECT_EQ(encoded_word("x", 'B', bytes), "=?x?B?" + std::string(text) + "?=");
  EXPECT_EQ(base64("foobar", 4), "Zm9v\r\nYmFy\r\n");
  EXPECT_EQ(base64("foob", 4), "Zm9v\r\nYg==\r\n");
}

TEST(SampleEncoding, QuotedPrintableKeepsLinesShortAndBlanksAtTheirEnds) {
  EXPECT_EQ(quoted_printable("a=b \r\n\xfc."), "a=3Db=20\r\n=FC.");
  const std::string wide = quoted_printable(std::string(200, '\xe4'));
  for (std::size_t begin = 0; begin < wide.size();) {
    const std::size_t end = std::min(wide.find("\r\n", begin), wide.size());
    EXPECT_LE(end - begin, 76U);
    begin = end + 2;
  }
}

TEST(SampleEncoding, WordsAndCharacterSets) {
  EXPECT_EQ(encoded_word("UTF-8", 'B', "foo"), "=?UTF-8?B?Zm9v?=");
  EXPECT_EQ(encoded_word("ISO-8859-1", 'Q', single_byte("Tür_? zu", "ISO-8859-1")),
            "=?ISO-8859-1?Q?T=FCr=5F=3F_zu?=");
  EXPECT_EQ(single_byte("5 €", "ISO-8859-15"), "5 \xa4");
  EXPECT_EQ(single_byte("5 €", "ISO-8859-1"), "5 ?");
  EXPECT_EQ(single_byte("Аяd", "windows-1251"), "\xc0\xff\x64");
}

// Other numbers on another machine would be another sample.
TEST(SampleGenerator, NumbersAndTimesAreFixed) {
  EXPECT_EQ(Generator(0).next(), 0xE220A8397B1DCDAFU);
  const auto september = std::chrono::local_days(std::chrono::year(2026) / 9 / 1);
  EXPECT_EQ(Moment(september + std::chrono::seconds(29 * 86400 + 86399)).log_time(), "2026-09-30 23:59:59");
  EXPECT_EQ(Moment(september + std::chrono::seconds(86400 * 6 + 5 * 3600 + 61)).header_date(),
            "Mon, 07 Sep 2026 05:01:01 +0000");
  EXPECT_EQ(Moment(september).stamp(), "20260901000000");
}

// Whenever the sample is made, its times end there and have the shape of a week.
TEST(SampleGenerator, MomentsEndNearTheGivenTime) {
  constexpr std::size_t count = 20000;
  std::uint64_t drawn = 0;
  for (int day = 1; day <= 7; ++day) {
    const auto today = std::chrono::local_days(std::chrono::year(2027) / 2 / day);
    const auto end = today + std::chrono::hours(3 * day);
    Generator random(1);
    const std::vector<Moment> moments = busy_moments(random, count, end);
    EXPECT_GT(moments.front().log_time(), Moment(end - std::chrono::days(30)).log_time());
    EXPECT_LE(moments.back().log_time(), Moment(end).log_time());
    EXPECT_GT(moments.back().log_time(), Moment(end - std::chrono::hours(1)).log_time());
    EXPECT_TRUE(std::ranges::is_sorted(moments, {}, &Moment::log_time));
    std::map<std::string, int> of_week;
    for (const Moment& moment : moments) ++of_week[moment.header_date().substr(0, 3)];
    EXPECT_LT(of_week["Sat"] + of_week["Sun"], of_week["Mon"] + of_week["Tue"]);
    const std::uint64_t next = random.next();
    if (day > 1) EXPECT_EQ(next, drawn);
    drawn = next;
  }
}

}  // namespace
}  // namespace zrl::sample
