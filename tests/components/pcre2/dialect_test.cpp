#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "components/pcre2/pcre2.h"
#include "core/text/error.h"

namespace zrl::pcre2 {
namespace {

using namespace std::string_view_literals;

// Where a match lies: "3+2", then its groups, "-" for one that took no part.
std::string places(const RegExpMatch& match) {
  const auto place = [](RegExpMatch::Span span) {
    return std::to_string(span.offset) + '+' + std::to_string(span.length);
  };
  std::string result = place(match.whole);
  for (const RegExpMatch::Span& group : match.groups) {
    result += ' ' + (group.offset == RegExpMatch::npos ? "-" : place(group));
  }
  return result;
}

std::u16string widen(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

struct Case {
  std::string_view pattern;
  std::string_view text;
  std::string_view expected;  // empty: no match
  std::string_view flags = "";
};

RegExp::Options options_of(std::string_view flags) {
  return {.ignore_case = flags.find('i') != flags.npos, .multiline = flags.find('m') != flags.npos};
}

template <typename Unit>
std::string first_match(std::basic_string_view<Unit> pattern, std::basic_string_view<Unit> text,
                        std::string_view flags = "", std::size_t from = 0) {
  const auto regexp = make_regexp();
  RegExpMatch match;
  regexp->set_pattern(pattern, options_of(flags));
  const bool found = regexp->find(text, from, match);
  EXPECT_FALSE(regexp->limit_reached());
  return found ? places(match) : "";
}

// ASCII patterns and texts, which both widths must read alike: as they are, and with the folding of
// letters that patterns beyond ASCII need ("|\u0100{9}" matches nothing of the texts).
TEST(Dialect, BothWidthsReadItAlike) {
  const Case cases[] = {
      {"b+", "abbbc", "1+3"},
      {"a|b|", "xb", "0+0"},
      {"(a)(?:b)(c)?", "ab", "0+2 0+1 -"},
      {"a(?=b)", "acab", "2+1"},
      {"a(?!b)", "abac", "2+1"},
      {"(?=(a+))a*b\\1", "baaabac", "3+3 3+1"},
      // quantifiers
      {"a{2}", "aaa", "0+2"},
      {"a{2,}?", "aaa", "0+2"},
      {"a{1,2}", "aaa", "0+2"},
      {"a+?", "aaa", "0+1"},
      {"<.*?>", "<b><i>", "0+3"},
      {"ba??", "ba", "0+1"},
      {"a{,2}", "a{,2}", "0+5"},
      {"a{", "a{", "0+2"},
      {"a{x}{2}", "a{x}}", "0+5"},
      {"x{1,100000}", "xx", "0+2"},
      {"(?:)*a", "a", "0+1"},
      // what the engine's own shortcuts get wrong
      {"(?=a)b?a", "a", "0+1"},
      {"((?=b)b?\?)b", "ab", "1+1 1+0"},
      {"(?!x)(?=a)b?a", "a", "0+1"},
      {"x|^(?:(?=a)b*a)", "a", "0+1"},
      {"(x)?\\1+t", "at", "1+1 -"},
      {"(\\1+)", "b", "0+0 0+0"},
      {"(?!(\\1{1,}))b", "b", ""},
      {"(x)?\\1{2}?t", "at", "1+1 -"},
      // back references: to a group that took no part, that comes later, that there is not
      {"(a)?b\\1", "b", "0+1 -"},
      {"\\1(a)", "a", "0+1 0+1"},
      {"(a\\1)", "a", "0+1 0+1"},
      {"(.)\\1", "abccd", "2+2 2+1"},
      {"(a)\\12", "aa2", "0+3 0+1"},
      {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)\\10", "abcdefghijj", "0+11 0+1 1+1 2+1 3+1 4+1 5+1 6+1 7+1 8+1 9+1"},
      {"\\101\\8", "A8", "0+2"},
      {"[\\1]\\0", "\x01\0"sv, "0+2"},
      {"(A)\\1", "aA", "0+2 0+1", "i"},
      // classes
      {"[]", "a]", ""},
      {"[^]", "\n", "0+1"},
      {"[^]]", "a]", "0+2"},
      {"[a-c-e]+", "d-eab", "1+4"},
      {"[\\d-x]+", "a1-x", "1+3"},
      {"[x-\\d]+", "a1-x", "1+3"},
      {"[-a]+[b-]+", "a-b-", "0+4"},
      {"[\\b]", "a\bc", "1+1"},
      {"[[:alpha:]]", "a:]", "1+2"},
      {"[a^]+", "^a", "0+2"},
      {"[^\\W\\d_]+", "1_ab1", "2+2"},
      {"[\\s\\S]{3}", "a\nb", "0+3"},
      {"[\\D]+[\\w]", "ab1", "0+3"},
      {"[\\W]+", "sk -KS", "2+2", "i"},
      {"[a-f]+", "xFADEd", "1+5", "i"},
      {"[^a]", "Ab", "1+1", "i"},
      // sets and boundaries
      {"\\w+\\W\\d\\D\\s\\S", "ab 1c d", "0+7"},
      {"\\bfoo\\b", "afoo foo", "5+3"},
      {"\\Bo\\B", "o foo", "3+1"},
      {"\\s+", "a \t\n\v\f\rb", "1+6"},
      // characters
      {"\\x41\\u0042\\cJ\\t\\v\\f\\r\\n", "AB\n\t\v\f\r\n", "0+8"},
      {"\\x4\\u004\\c1", "x4u004c1", "0+8"},
      {"\\.\\*\\/\\-\\#\\ ", ".*/-# ", "0+6"},
      {"a b#c", "a b#c", "0+5"},
      {"a.c", "a\nc", ""},
      {"a.c", "a\rc", "0+3"},
      // ends
      {"a$", "a\n", ""},
      {"^b", "a\nb", ""},
      {"a$", "a\nb", "0+1", "m"},
      {"a$", "a\r\nb", "0+1", "m"},
      {"^b", "a\nb", "2+1", "m"},
      {"^b", "a\rb", "2+1", "m"},
      {"^$", "a\n", "2+0", "m"},
      // what the engine beneath would take for something else
      {"\\Ka\\Q.\\E", "KaQ.E", "0+5"},
      {"\\A\\Z\\z\\G\\h\\R\\N\\X\\e\\a\\k\\g\\p\\P\\C", "AZzGhRNXeakgpPC", "0+15"},
      {"\\p{L}", "p{L}", "0+4"},
      {"\\k<a>\\g{1}", "k<a>g", "0+5"},
      {"\\x{2}\\o{3}", "xxooo", "0+5"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.pattern << " on " << c.text);
    EXPECT_EQ(first_match(c.pattern, c.text, c.flags), c.expected);
    EXPECT_EQ(first_match<char16_t>(widen(c.pattern), widen(c.text), c.flags), c.expected);
    const std::u16string folded = u"(?:" + widen(c.pattern) + u")(?!\u0100{9})";
    EXPECT_EQ(first_match<char16_t>(folded, widen(c.text), std::string(c.flags) + 'i'),
              first_match(c.pattern, c.text, std::string(c.flags) + 'i'));
  }
}

struct Malformed {
  std::string_view pattern;
  int number;
};

TEST(Dialect, MalformedPatternsAreToldApart) {
  const Malformed cases[] = {
      {"*", 5018},         {"a**", 5018},     {"a*+", 5018},     {"a+++", 5018},    {"a{2}{3}", 5018},
      {"|?", 5018},        {"(+)", 5018},     {"^*", 5018},      {"\\b+", 5018},    {"{2}", 5018},
      {"(*ACCEPT)", 5018}, {"(*UTF)a", 5018}, {"[a", 5019},      {"[", 5019},       {"[\\", 5019},
      {"(", 5020},         {"(a(b)", 5020},   {"(?=a", 5020},    {"[z-a]", 5021},   {"[b-\\x41]", 5021},
      {")", 5017},         {"a)", 5017},      {"\\", 5017},      {"(?", 5017},      {"a{3,2}", 5017},
      {"a{65536}", 5017},  {"(?<=a)b", 5017}, {"(?<!a)b", 5017}, {"(?<n>a)", 5017}, {"(?P<n>a)", 5017},
      {"(?R)", 5017},      {"(?1)", 5017},    {"(?i)a", 5017},   {"(?#c)", 5017},   {"(?>a)", 5017},
      {"(?|a)", 5017},     {"(?C1)", 5017},   {"(?(1)a)", 5017}, {"(?'n'a)", 5017}, {"(?-i:a)", 5017},
  };
  const auto regexp = make_regexp();
  const auto number_of = [](auto&& step) {
    try {
      step();
    } catch (const Error& error) {
      return error.number();
    }
    return 0;
  };
  for (const Malformed& c : cases) {
    EXPECT_EQ(number_of([&] { regexp->set_pattern(c.pattern, {}); }), c.number) << c.pattern;
    EXPECT_EQ(number_of([&] { regexp->set_pattern(widen(c.pattern), {}); }), c.number) << c.pattern;
  }
  RegExpMatch match;
  EXPECT_EQ(number_of([&] { regexp->find("a"sv, 0, match); }), 5016);
}

TEST(Dialect, BeyondAscii) {
  const Case cases[] = {
      {"ä", "xÄ", "1+2", "i"},
      {"[à-ü]+", "xÀÜ", "1+4", "i"},
      {"Ω|ж", "Ж", "0+2", "i"},
      {"(é)\\1", "éÉ", "0+4 0+2", "i"},
      {"\\w+", "äb", "2+1", "i"},
      {"\\bb", "äb", "2+1"},
      {"[^\\w]", "ä", "0+2"},
      {"\\s", "\u00a0\u2003", ""},
      {".", "\U0001F600", "0+4"},
      {"\\uD83D\\uDE00", "\U0001F600", "0+4"},
      {"[\\uD83D\\uDE00]+x", "\U0001F600x", "0+5"},
      {"\\uD83D", "\U0001F600", ""},
      {"[\\uD800-\\uDFFF]", "\U0001F600", ""},
      {"[^\\uD800-\\uDFFF]", "\U0001F600", "0+4"},
      {"[\\u0000-\\uD900]", "\u20ac", "0+3"},
      {"^.$", "\u2028", "0+3"},
  };
  for (const Case& c : cases) EXPECT_EQ(first_match(c.pattern, c.text, c.flags), c.expected) << c.pattern;

  EXPECT_EQ(first_match<char16_t>(u"ä", u"xÄ", "i"), "1+1");
  EXPECT_EQ(first_match<char16_t>(u"[à-ü]ж", u"xÀЖ", "i"), "1+2");
  EXPECT_EQ(first_match<char16_t>(u"\\w+ä\\d*\\b", u"öbÄ1", "i"), "1+3");
  EXPECT_EQ(first_match<char16_t>(u"\\W\\s\\S\\D[\\w][\\W][^\\W]ж", u"ö öxbÖb\u0416", "i"), "0+8");
}

TEST(Dialect, EveryUnitOf16BitTextsIsACharacter) {
  const std::u16string lone{0xDC00, u'a', 0xD800};
  EXPECT_EQ(first_match<char16_t>(u"\\uD800", lone), "2+1");
  EXPECT_EQ(first_match<char16_t>(u"^.a.$", lone), "0+3");
  EXPECT_EQ(first_match<char16_t>(u"[\\uD800-\\uDBFF]", lone), "2+1");
  EXPECT_EQ(first_match<char16_t>(std::u16string{0xDC00, u'A'}, lone, "i"), "0+2");
  EXPECT_EQ(first_match<char16_t>(u"^..$", u"\U0001F600"), "0+2");
  EXPECT_EQ(first_match<char16_t>(u"\U0001F600+", u"\U0001F600\xDE00"), "0+3");
}

TEST(Dialect, BytesThatAreNoCharacterMatchNothing) {
  EXPECT_EQ(first_match<char>("a.b",
                              "a\xff"
                              "b axb"),
            "4+3");
  EXPECT_EQ(first_match<char>("[^a]",
                              "\x80\xc3"
                              "a\xe2\x82"
                              "b"),
            "5+1");
  EXPECT_EQ(first_match<char>("^a|a$",
                              "\xff"
                              "a\xff"),
            "");
  EXPECT_EQ(first_match<char>("b",
                              "\xf0\x9f\x98\xc3\xc3"
                              "b"),
            "5+1");
  // In a pattern they stand for U+FFFD.
  EXPECT_EQ(first_match<char>("\xff", "\ufffd"), "0+3");
}

TEST(RegExpComponent, SearchesFromAnyPlace) {
  EXPECT_EQ(first_match<char>("^a", "aa", "", 1), "");
  EXPECT_EQ(first_match<char>("\\ba", "aa a", "", 1), "3+1");
  EXPECT_EQ(first_match<char>("", "ab", "", 2), "2+0");
  EXPECT_EQ(first_match<char>("", "äb", "", 1), "2+0");  // not inside a character
  const auto regexp = make_regexp();
  RegExpMatch match;
  regexp->set_pattern("a"sv, {});
  EXPECT_THROW(regexp->find("a"sv, 2, match), Error);
}

TEST(RegExpComponent, PatternsOfOneWidthSearchTextsOfTheOther) {
  RegExpMatch match;
  const auto wide = make_regexp();
  wide->set_pattern(u"\U0001F600\u00e9x"sv, {.ignore_case = true});
  ASSERT_TRUE(wide->find("\U0001F600\u00c9X"sv, 0, match));
  EXPECT_EQ(match.whole.length, 7u);
  ASSERT_TRUE(wide->find(u"\U0001F600\u00c9X"sv, 0, match));
  EXPECT_EQ(match.whole.length, 4u);
  const auto narrow = make_regexp();
  narrow->set_pattern("\U0001F600\u20ac\u00e9"sv, {.ignore_case = true});
  ASSERT_TRUE(narrow->find(u"a\U0001F600\u20ac\u00c9"sv, 0, match));
  EXPECT_EQ(match.whole.offset, 1u);
  EXPECT_EQ(match.whole.length, 4u);
}

// Objects share compiled patterns; options and widths must not meet in the cache, and patterns that
// left it must still serve those that hold them.
TEST(RegExpComponent, ObjectsThatShareTheCacheAreIndependent) {
  RegExpMatch match;
  const auto sharp = make_regexp();
  const auto lenient = make_regexp();
  const auto other = make_regexp();
  sharp->set_pattern("a(b)?"sv, {});
  lenient->set_pattern("a(b)?"sv, {.ignore_case = true});
  for (int i = 0; i < 1000; ++i) other->set_pattern("x{" + std::to_string(i) + "}y", {});
  EXPECT_FALSE(sharp->find("AB"sv, 0, match));
  EXPECT_TRUE(lenient->find("AB"sv, 0, match));
  EXPECT_EQ(match.groups.size(), 1u);
  EXPECT_FALSE(other->find("y"sv, 0, match));
  other->set_pattern("x{0}y"sv, {});
  EXPECT_TRUE(other->find("y"sv, 0, match));
  EXPECT_TRUE(match.groups.empty());
  EXPECT_THROW(other->set_pattern("("sv, {}), Error);
  EXPECT_THROW(other->find("y"sv, 0, match), Error);
}

}  // namespace
}  // namespace zrl::pcre2
