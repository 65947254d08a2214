#include "components/pcre2/searcher.h"

#include <algorithm>
#include <new>

#include "core/text/utf8.h"

namespace zrl::pcre2 {

namespace {

// The highest cost of one slice, in units of text that are run through. The estimates are upper bounds.
constexpr std::size_t slice_cost = 4'000'000'000;
constexpr std::size_t least_steps = 10;
constexpr std::size_t greatest_steps = 10'000'000;
constexpr std::size_t shorter = 8;

constexpr std::size_t stack_start = std::size_t{32} << 10;
constexpr std::size_t stack_size = std::size_t{256} << 10;
constexpr std::size_t great_stack_size = std::size_t{64} << 20;
constexpr std::uint32_t heap_kibibytes = 64 << 10;

// PCRE2 does not count the rounds of a group, which its stack limits: each needs some bytes of it.
constexpr std::size_t most_rounds = stack_size / 16;

struct Estimate {
  std::size_t place;  // an attempt without a step back
  std::size_t step;

  std::size_t least() const { return place + least_steps * step; }
  std::size_t affordable_steps(std::size_t places) const {
    const std::size_t cost = std::max(slice_cost / places, least());
    return std::min((cost - place) / step, greatest_steps);
  }
};

Estimate estimate(const PatternCost& cost, std::size_t length) {
  const std::size_t bounded = std::min(cost.bounded, length + 1);
  const std::size_t runs = cost.branches ? cost.unbounded : std::min<std::size_t>(cost.unbounded, 1);
  const std::size_t rounds = cost.loops ? std::min(length, most_rounds) + 1 : 1;
  const std::size_t pass = (bounded + runs * length) * rounds;
  const bool runs_again = cost.unbounded > 1 || cost.branches || cost.loops;
  return {pass, runs_again ? pass : bounded};
}

struct Guard {
  std::chrono::steady_clock::time_point deadline;
  unsigned calls_a_look;  // at the clock
  unsigned calls = 0;
};

template <typename Block>
int watch_clock(Block*, void* data) {
  auto& guard = *static_cast<Guard*>(data);
  if (++guard.calls % guard.calls_a_look != 0) return 0;
  return std::chrono::steady_clock::now() < guard.deadline ? 0 : PCRE2_ERROR_CALLOUT;
}

// Searches start between characters.
template <typename Unit>
std::size_t next_boundary(std::basic_string_view<Unit> text, std::size_t from) {
  if constexpr (sizeof(Unit) == 1) {
    for (int i = 0; i < 3 && from < text.size() && is_continuation(text[from]); ++i) ++from;
  }
  return from;
}

}  // namespace

template <typename Unit>
Searcher<Unit>::Searcher(std::chrono::milliseconds longest_search)
    : longest_search_(longest_search),
      context_(Api::match_context_create(nullptr)),
      stack_(Api::jit_stack_create(stack_start, stack_size, nullptr)) {
  if (!context_) throw std::bad_alloc();
  Api::jit_stack_assign(context_.get(), nullptr, stack_.get());
  Api::set_heap_limit(context_.get(), heap_kibibytes);
}

template <typename Unit>
typename Searcher<Unit>::Outcome Searcher<Unit>::find(CompiledPattern<Unit>& pattern,
                                                      std::basic_string_view<Unit> text, std::size_t from) {
  from = next_boundary(text, from);
  if (pattern.has_jit()) return find_in_slices(pattern, text, from);
  return find_guarded(pattern, text, from, Clock::now() + longest_search_);
}

template <typename Unit>
typename Searcher<Unit>::Outcome Searcher<Unit>::find_in_slices(CompiledPattern<Unit>& pattern,
                                                                std::basic_string_view<Unit> text,
                                                                std::size_t from) {
  const Estimate each = estimate(pattern.cost(), text.size() - from);
  const std::size_t most_places = slice_cost / each.least();
  if (most_places == 0) return find_guarded(pattern, text, from, Clock::now() + longest_search_);
  std::size_t places = most_places;
  Clock::time_point deadline{};
  while (true) {
    const std::size_t left = text.size() - from + 1;
    places = std::min(places, left);
    Api::set_match_limit(context_.get(), static_cast<std::uint32_t>(each.affordable_steps(places)));
    Api::set_offset_limit(context_.get(), from + places - 1);
    const int result = match(pattern.plain(), pattern.match_data(), text, from);
    if (result >= 0) return Outcome::match;
    if (result == PCRE2_ERROR_NOMATCH) {
      if (places == left || pattern.anchored()) return Outcome::no_match;
      from = next_boundary(text, from + places);
      places = std::min(places * 2, most_places);
    }
    if (deadline == Clock::time_point{}) deadline = Clock::now() + longest_search_;
    if (result == PCRE2_ERROR_NOMATCH) {
      if (Clock::now() >= deadline) return Outcome::limit;
      continue;
    }
    if (result != PCRE2_ERROR_MATCHLIMIT || places == 1) return find_guarded(pattern, text, from, deadline);
    places = std::max<std::size_t>(1, places / shorter);
  }
}

template <typename Unit>
typename Searcher<Unit>::Outcome Searcher<Unit>::find_guarded(CompiledPattern<Unit>& pattern,
                                                              std::basic_string_view<Unit> text,
                                                              std::size_t from, Clock::time_point deadline) {
  const typename Api::Code* code = pattern.guarded();
  if (!code) return Outcome::limit;
  Guard guard{deadline,
              static_cast<unsigned>(std::clamp<std::size_t>(20'000'000 / (text.size() + 1), 1, 2000))};
  const Stack great_stack(Api::jit_stack_create(stack_start, great_stack_size, nullptr));
  if (great_stack) Api::jit_stack_assign(context_.get(), nullptr, great_stack.get());
  Api::set_callout(context_.get(), watch_clock<typename Api::CalloutBlock>, &guard);
  Api::set_match_limit(context_.get(), 1'000'000'000);
  Api::set_offset_limit(context_.get(), PCRE2_UNSET);
  const int result = match(code, pattern.match_data(), text, from);
  Api::set_callout(context_.get(), nullptr, nullptr);
  Api::jit_stack_assign(context_.get(), nullptr, stack_.get());
  if (result >= 0) return Outcome::match;
  return result == PCRE2_ERROR_NOMATCH ? Outcome::no_match : Outcome::limit;
}

template <typename Unit>
int Searcher<Unit>::match(const typename Api::Code* code, typename Api::MatchData* data,
                          std::basic_string_view<Unit> text, std::size_t from) {
  return Api::match(code, reinterpret_cast<typename Api::Text>(text.data()), text.size(), from, 0, data,
                    context_.get());
}

template class Searcher<char>;
template class Searcher<char16_t>;

}  // namespace zrl::pcre2
