#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string_view>

#include "components/pcre2/compiled_pattern.h"

namespace zrl::pcre2 {

// Searches texts of one width, within bounds of time and memory. Belongs to one thread.
//
// PCRE2 can limit the steps of an attempt at one place of the text, but neither the number of
// places nor what is run through from one step to the next. So a search goes through the text in
// slices, each with so few places and steps that it ends soon even in the worst case. If an attempt needs
// more steps than that, the slices become shorter and the limit greater, down to one place; if that is not
// enough either, the slower code that checks the clock takes over.
template <typename Unit>
class Searcher {
 public:
  enum class Outcome { match, no_match, limit };

  explicit Searcher(std::chrono::milliseconds longest_search);

  // `from` is at most the length of the text. After a match, the pattern's match data has the offsets.
  Outcome find(CompiledPattern<Unit>& pattern, std::basic_string_view<Unit> text, std::size_t from);

 private:
  using Api = Pcre2<Unit>;
  using Clock = std::chrono::steady_clock;
  using Stack = std::unique_ptr<typename Api::JitStack, Pcre2Deleter<Api::jit_stack_free>>;

  Outcome find_in_slices(CompiledPattern<Unit>& pattern, std::basic_string_view<Unit> text, std::size_t from);
  Outcome find_guarded(CompiledPattern<Unit>& pattern, std::basic_string_view<Unit> text, std::size_t from,
                       Clock::time_point deadline);
  int match(const typename Api::Code* code, typename Api::MatchData* data, std::basic_string_view<Unit> text,
            std::size_t from);

  std::chrono::milliseconds longest_search_;
  std::unique_ptr<typename Api::MatchContext, Pcre2Deleter<Api::match_context_free>> context_;
  Stack stack_;
};

extern template class Searcher<char>;
extern template class Searcher<char16_t>;

}  // namespace zrl::pcre2
