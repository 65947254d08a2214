#include <chrono>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "components/pcre2/pcre2.h"
#include "core/text/error.h"

namespace zrl::pcre2 {
namespace {

using namespace std::string_view_literals;

std::string repeat(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

enum class Ending { match, no_match, limit };

struct Search {
  std::string_view pattern;
  std::string_view text;  // repeated
  std::size_t times;
  std::string_view end;
};

template <typename Unit>
Ending search(const Search& s, pcre2::Limits limits = {}) {
  const auto regexp = make_regexp(limits);
  const std::string text = repeat(s.text, s.times) + std::string(s.end);
  const std::basic_string<Unit> pattern(s.pattern.begin(), s.pattern.end());
  const std::basic_string<Unit> units(text.begin(), text.end());
  RegExpMatch match;
  regexp->set_pattern(std::basic_string_view<Unit>(pattern), {.ignore_case = true});
  if (regexp->find(std::basic_string_view<Unit>(units), 0, match)) return Ending::match;
  return regexp->limit_reached() ? Ending::limit : Ending::no_match;
}

// Each of these would run for hours or longer without bounds of its own.
TEST(Limits, HostileSearchesEnd) {
  const Search searches[] = {
      {"^(?:a|aa)+$", "a", 50'000, "b"},
      {"(a+)+b", "a", 1'000'000, "c b"},
      {"(?:a*)*[bc]", "a", 1'000'000, "d"},
      {"a*[^x]*[bc]", "a", 1'000'000, "d"},
      {"a*a*a*a*a*[bc]", "a", 2'000, "d"},
      {"[^x]*[bc]", "a", 4'000'000, "d"},
      {"(?=a*[bc])|(?=(a*)*[de])", "a", 1'000'000, "f"},
      {"(.*)\\1[bc]", "a", 1'000'000, "d"},
      {"(?:a?){30}a{30}[bc]", "a", 1'000'000, "d"},
  };
  const pcre2::Limits hasty{std::chrono::milliseconds(20)};
  for (const Search& s : searches) {
    EXPECT_EQ(search<char>(s, hasty), Ending::limit) << s.pattern;
    EXPECT_EQ(search<char16_t>(s, hasty), Ending::limit) << s.pattern;
  }
}

// Long texts alone must not reach a limit.
TEST(Limits, LongSearchesThatAreNotHostileSucceed) {
  const Search found[] = {
      {"(?:a|b)*c", "ab", 500'000, "c"},       {"(a|b)+?c", "ab", 100'000, "c"},
      {"x.*y", "xa", 1'000'000, "y"},          {"[a-z]+@[a-z]+", "a b ", 500'000, "a@b"},
      {"needle", "hay ", 1'000'000, "needle"}, {"^(.*?),(.*?)$", "a", 1'000'000, ",b"},
  };
  for (const Search& s : found) {
    EXPECT_EQ(search<char>(s), Ending::match) << s.pattern;
    EXPECT_EQ(search<char16_t>(s), Ending::match) << s.pattern;
  }
  EXPECT_EQ(search<char>({"needle", "haystack ", 1'000'000, ""}), Ending::no_match);
  EXPECT_EQ(search<char>({"\\w+@\\w+", "haystack ", 200'000, ""}), Ending::no_match);
}

TEST(Limits, HostilePatternsAreRefusedOrWork) {
  const auto regexp = make_regexp();
  RegExpMatch match;
  const auto refused = [&](const std::string& pattern) {
    try {
      regexp->set_pattern(std::string_view(pattern), {.ignore_case = true});
      const std::u16string wide(pattern.begin(), pattern.end());
      regexp->set_pattern(std::u16string_view(wide), {.ignore_case = true});
    } catch (const Error& error) {
      EXPECT_GE(error.number(), 5017);
      return true;
    }
    regexp->find(std::string_view("aaaaaaaa"), 0, match);
    regexp->find(std::u16string_view(u"aaaaaaaa"), 0, match);
    return false;
  };
  EXPECT_TRUE(refused(repeat("a", 1'000'000)));
  EXPECT_TRUE(refused(repeat("(", 60'000) + repeat(")", 60'000)));
  EXPECT_TRUE(refused("((((((a{1,99}){1,99}){1,99}){1,99}){1,99}){1,99})"));
  EXPECT_TRUE(refused(repeat("[\\u0001-\\uffff]", 4'000)));
  EXPECT_TRUE(refused(repeat("(?:", 20'000)));
  EXPECT_FALSE(refused(repeat("a|", 5'000)));
  EXPECT_FALSE(refused(repeat("(a)", 200)));
  EXPECT_FALSE(refused(repeat("(", 200) + repeat(")*", 200)));
  EXPECT_FALSE(refused(repeat("(a)", 9) + repeat("\\1", 1'000)));
  EXPECT_FALSE(refused(repeat("{", 10'000)));
}

}  // namespace
}  // namespace zrl::pcre2
