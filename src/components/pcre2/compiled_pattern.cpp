#include "components/pcre2/compiled_pattern.h"

#include <limits>
#include <new>

#include "core/text/error.h"
#include "core/text/utf8.h"

namespace zrl::pcre2 {

namespace {

constexpr std::size_t longest_pattern = 65536;  // characters

[[noreturn]] void fail() {
  throw Error(5017, "Syntax error in regular expression");
}

std::u32string characters_of(std::string_view pattern) {
  if (pattern.size() > 4 * longest_pattern) fail();
  std::u32string result;
  while (!pattern.empty()) result += take_character(pattern);
  return result;
}

std::u32string characters_of(std::u16string_view pattern) {
  return {pattern.begin(), pattern.end()};
}

}  // namespace

template <typename Unit>
CompiledPattern<Unit>::CompiledPattern(std::basic_string_view<Unit> pattern, RegExp::Options options) {
  constexpr bool units16 = sizeof(Unit) == 2;
  const std::u32string characters = characters_of(pattern);
  if (characters.size() > longest_pattern) fail();
  const bool folding = units16 && options.ignore_case && needs_folding(characters);
  const DialectPattern translated =
      translate_pattern(characters, {.units16 = units16, .folding = folding, .multiline = options.multiline});
  translated_.assign(translated.text.begin(), translated.text.end());
  cost_ = translated.cost;

  options_ =
      PCRE2_MATCH_UNSET_BACKREF | PCRE2_ALLOW_EMPTY_CLASS | PCRE2_NEVER_BACKSLASH_C | PCRE2_USE_OFFSET_LIMIT;
  options_ |= units16 ? (folding ? PCRE2_UCP : PCRE2_NEVER_UTF) : PCRE2_UTF | PCRE2_MATCH_INVALID_UTF;
  // PCRE2 takes the character that a look-ahead begins with for one that the match begins with, and then
  // wants the last one of the match behind it: "(?=a)b?a" would not be found in "a".
  if (translated.starts_ahead) options_ |= PCRE2_NO_START_OPTIMIZE;
  if (options.ignore_case) options_ |= PCRE2_CASELESS;
  if (options.multiline) options_ |= PCRE2_MULTILINE | PCRE2_ALT_CIRCUMFLEX;
  plain_ = compile(0);
  if (!plain_) fail();
  match_data_.reset(Api::match_data_create(plain_.get(), nullptr));
  if (!match_data_) throw std::bad_alloc();

  std::size_t jit_size = 0;
  Api::pattern_info(plain_.get(), PCRE2_INFO_JITSIZE, &jit_size);
  has_jit_ = jit_size > 0;
  std::uint32_t all_options = 0;
  Api::pattern_info(plain_.get(), PCRE2_INFO_ALLOPTIONS, &all_options);
  anchored_ = (all_options & PCRE2_ANCHORED) != 0;
  std::uint32_t groups = 0;
  Api::pattern_info(plain_.get(), PCRE2_INFO_CAPTURECOUNT, &groups);
  groups_ = groups;
}

template <typename Unit>
const typename Pcre2<Unit>::Code* CompiledPattern<Unit>::guarded() {
  if (!guarded_tried_) guarded_ = compile(PCRE2_AUTO_CALLOUT);
  guarded_tried_ = true;
  return guarded_.get();
}

template <typename Unit>
typename CompiledPattern<Unit>::Code CompiledPattern<Unit>::compile(std::uint32_t more_options) const {
  const std::unique_ptr<typename Api::CompileContext, Pcre2Deleter<Api::compile_context_free>> context(
      Api::compile_context_create(nullptr));
  if (!context) throw std::bad_alloc();
  Api::set_newline(context.get(), PCRE2_NEWLINE_LF);
  int fault = 0;
  std::size_t at = 0;
  Code code(Api::compile(reinterpret_cast<typename Api::Text>(translated_.data()), translated_.size(),
                         options_ | more_options, &fault, &at, context.get()));
  if (code) Api::jit_compile(code.get(), PCRE2_JIT_COMPLETE);  // where it fails, the code is interpreted
  return code;
}

template class CompiledPattern<char>;
template class CompiledPattern<char16_t>;

}  // namespace zrl::pcre2
