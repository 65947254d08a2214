#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#define PCRE2_CODE_UNIT_WIDTH 0
#include <pcre2.h>

#include "components/pcre2/pcre2.h"
#include "text/text_bench.h"

namespace zrl::bench {

namespace {

constexpr int times = 5'000;

// Two kilobytes of a mail.
template <typename Unit>
std::shared_ptr<const std::basic_string<Unit>> mail() {
  constexpr std::string_view paragraph =
      "Dear customer, your order 4711-0815 has left our house on Monday and will reach you soon. If you "
      "have\r\n"
      "any question, write to service@shop.example or call us, we are glad to help you. Prices include "
      "taxes;\r\n"
      "the invoice is attached. Visit <a href=\"http://www.shop.example/index.php?id=4\">our shop</a> "
      "again!\r\n";
  auto result = std::make_shared<std::basic_string<Unit>>();
  while (result->size() + paragraph.size() < 2048) result->append(paragraph.begin(), paragraph.end());
  constexpr std::string_view end = "Buy che4p v1agra, V.I.A.G.R.A and c-i-a-l-i-s now, order online";
  result->append(end.begin(), end.end());
  return result;
}

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

template <typename Unit>
Run ours(std::string_view pattern, bool expected) {
  const auto regexp = pcre2::make_regexp();
  const std::basic_string<Unit> units(pattern.begin(), pattern.end());
  regexp->set_pattern(std::basic_string_view<Unit>(units), {.ignore_case = true});
  return [=, text = mail<Unit>()] {
    return seconds_of([&] {
      RegExpMatch match;
      for (int i = 0; i < times; ++i) {
        if (regexp->find(std::basic_string_view<Unit>(*text), 0, match) != expected) fail("wrong result");
      }
    });
  };
}

// PCRE2 with the options that have an effect on these patterns.
Run bare8(std::string_view pattern) {
  int fault = 0;
  std::size_t at = 0;
  pcre2_code_8* code =
      pcre2_compile_8(reinterpret_cast<PCRE2_SPTR8>(pattern.data()), pattern.size(),
                      PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_CASELESS, &fault, &at, nullptr);
  if (!code || pcre2_jit_compile_8(code, PCRE2_JIT_COMPLETE) != 0) fail("PCRE2 refuses the pattern");
  pcre2_match_data_8* data = pcre2_match_data_create_from_pattern_8(code, nullptr);
  return [=, text = mail<char>()] {
    return seconds_of([&] {
      const auto subject = reinterpret_cast<PCRE2_SPTR8>(text->data());
      for (int i = 0; i < times; ++i) pcre2_match_8(code, subject, text->size(), 0, 0, data, nullptr);
    });
  };
}

Run bare16(std::string_view pattern) {
  const std::u16string units(pattern.begin(), pattern.end());
  int fault = 0;
  std::size_t at = 0;
  pcre2_code_16* code = pcre2_compile_16(reinterpret_cast<PCRE2_SPTR16>(units.data()), units.size(),
                                         PCRE2_CASELESS, &fault, &at, nullptr);
  if (!code || pcre2_jit_compile_16(code, PCRE2_JIT_COMPLETE) != 0) fail("PCRE2 refuses the pattern");
  pcre2_match_data_16* data = pcre2_match_data_create_from_pattern_16(code, nullptr);
  return [=, text = mail<char16_t>()] {
    return seconds_of([&] {
      const auto subject = reinterpret_cast<PCRE2_SPTR16>(text->data());
      for (int i = 0; i < times; ++i) pcre2_match_16(code, subject, text->size(), 0, 0, data, nullptr);
    });
  };
}

}  // namespace

void add_regexps(Suite& suite) {
  struct {
    const char* name;
    std::string_view pattern;
    bool found;
  } const cases[] = {
      {"a word at the end", "v1agra", true},
      {"spaced letters", "v\\W{0,3}[i1l]\\W{0,3}a\\W{0,3}g\\W{0,3}r\\W{0,3}a", true},
      {"alternatives that are not there", "\\b(?:casino|lottery|mortgage|rolex)\\b", false},
      {"an address that is not there", "[\\w.]+@[\\w.]+\\.invalid", false},
      {"two words far apart", "customer[^]*?online", true},
      {"a long way back", "(.*):(.*)[!?][!?]", false},
  };
  for (const auto& [name, pattern, found] : cases) {
    std::string bare(pattern);
    if (const std::size_t any = bare.find("[^]"); any != bare.npos) bare.replace(any, 3, "[\\s\\S]");
    suite.add(
        Comparison{std::string("RegExp, UTF-8: ") + name, 1.2, ours<char>(pattern, found), bare8(bare)});
    suite.add(Comparison{std::string("RegExp, 16-bit: ") + name, 1.2, ours<char16_t>(pattern, found),
                         bare16(bare)});
  }
}

}  // namespace zrl::bench
