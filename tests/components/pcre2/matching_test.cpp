// Random patterns find what a plain backtracking search finds, whatever shortcuts the engine takes.
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "components/pcre2/pcre2.h"

namespace zrl::pcre2 {
namespace {

struct State {
  std::string_view text;
  std::vector<std::optional<std::string_view>> groups = std::vector<std::optional<std::string_view>>(30);
};

// Matches something at a place, and goes on with the rest behind it.
using Rest = std::function<bool(State&, std::size_t at)>;
using Matcher = std::function<bool(State&, std::size_t at, const Rest& rest)>;

struct Pattern {
  std::string text;
  Matcher matcher;
};

Pattern sequence(const Pattern& first, const Pattern& second) {
  return {first.text + second.text, [=](State& state, std::size_t at, const Rest& rest) {
            return first.matcher(
                state, at, [&](State& inner, std::size_t end) { return second.matcher(inner, end, rest); });
          }};
}

Pattern either(const Pattern& first, const Pattern& second) {
  return {"(?:" + first.text + "|" + second.text + ")", [=](State& state, std::size_t at, const Rest& rest) {
            return first.matcher(state, at, rest) || second.matcher(state, at, rest);
          }};
}

Pattern character(std::string text, std::function<bool(char)> fits) {
  return {std::move(text), [fits = std::move(fits)](State& state, std::size_t at, const Rest& rest) {
            return at < state.text.size() && fits(state.text[at]) && rest(state, at + 1);
          }};
}

Pattern group(const Pattern& inner, std::size_t number) {
  return {"(" + inner.text + ")", [=](State& state, std::size_t at, const Rest& rest) {
            return inner.matcher(state, at, [&](State& after, std::size_t end) {
              const auto before = std::exchange(after.groups[number], after.text.substr(at, end - at));
              if (rest(after, end)) return true;
              after.groups[number] = before;
              return false;
            });
          }};
}

// A group that took no part is an empty text.
Pattern reference(std::size_t number) {
  return {"\\" + std::to_string(number), [=](State& state, std::size_t at, const Rest& rest) {
            const std::string_view found = state.groups[number].value_or("");
            return state.text.substr(at).starts_with(found) && rest(state, at + found.size());
          }};
}

Pattern ahead(const Pattern& inner, bool wanted) {
  return {(wanted ? "(?=" : "(?!") + inner.text + ")", [=](State& state, std::size_t at, const Rest& rest) {
            const auto before = state.groups;
            const bool found = inner.matcher(state, at, [](State&, std::size_t) { return true; });
            if (!wanted) state.groups = before;
            if (found == wanted && rest(state, at)) return true;
            state.groups = before;
            return false;
          }};
}

// A round that matches nothing is the last one.
bool repeat(const Matcher& inner, int least, int most, bool lazy, State& state, std::size_t at,
            const Rest& rest) {
  const auto round = [&] {
    return most > 0 && inner(state, at, [&](State& after, std::size_t end) {
             if (end == at && least <= 1) return rest(after, end);
             return repeat(inner, least - 1, most - 1, lazy, after, end, rest);
           });
  };
  if (least > 0) return round();
  return lazy ? rest(state, at) || round() : round() || rest(state, at);
}

Pattern repeated(const Pattern& inner, const char* text, int least, int most) {
  const bool lazy = std::string_view(text).size() == 2;
  return {inner.text + text, [=](State& state, std::size_t at, const Rest& rest) {
            return repeat(inner.matcher, least, most, lazy, state, at, rest);
          }};
}

class Maker {
 public:
  explicit Maker(unsigned seed) : source_(seed) {}

  Pattern make(int depth) {
    Pattern made = item(depth);
    for (int more = below(3); more > 0; --more) made = sequence(made, item(depth));
    return made;
  }
  std::string text() {
    std::string made(static_cast<std::size_t>(below(6)), 'a');
    for (char& c : made) c = below(2) == 0 ? 'a' : 'b';
    return made;
  }

 private:
  int below(int limit) { return static_cast<int>(source_() % static_cast<unsigned>(limit)); }

  Pattern item(int depth) {
    constexpr struct {
      const char* text;
      int least;
      int most;
    } quantifiers[] = {{"?", 0, 1}, {"*", 0, 99}, {"+", 1, 99}, {"??", 0, 1}, {"*?", 0, 99}, {"+?", 1, 99}};
    const int kind = below(depth > 0 ? 9 : 4);
    if (kind == 4 || kind == 5) return ahead(make(depth - 1), kind == 4);
    Pattern made = plain_item(kind, depth);
    if (below(2) == 0) return made;
    const auto& [text, least, most] = quantifiers[below(6)];
    return repeated(made, text, least, most);
  }

  Pattern plain_item(int kind, int depth) {
    if (kind == 0) return character("[ab]", [](char) { return true; });
    if (kind == 1 && groups_ > 0) return reference(static_cast<std::size_t>(1 + below(groups_)));
    if (kind < 4) {
      const char wanted = kind == 2 ? 'a' : 'b';
      return character(std::string(1, wanted), [wanted](char c) { return c == wanted; });
    }
    if (kind == 6) {
      const Pattern first = make(depth - 1);  // its groups come first
      return either(first, make(depth - 1));
    }
    const auto number = static_cast<std::size_t>(++groups_);
    return group(make(depth - 1), number);
  }

  std::mt19937 source_;
  int groups_ = 0;
};

std::string plain_search(const Pattern& pattern, std::string_view text) {
  for (std::size_t at = 0; at <= text.size(); ++at) {
    State state{text};
    std::size_t end = 0;
    const auto note_end = [&](State&, std::size_t place) {
      end = place;
      return true;
    };
    if (pattern.matcher(state, at, note_end)) return std::to_string(at) + "-" + std::to_string(end);
  }
  return "none";
}

TEST(Matching, RandomPatternsFindWhatAPlainSearchFinds) {
  const auto regexp = make_regexp();
  for (unsigned seed = 0; seed < 20'000; ++seed) {
    Maker maker(seed);
    const Pattern pattern = maker.make(2);
    const std::string text = maker.text();
    RegExpMatch match;
    regexp->set_pattern(std::string_view(pattern.text), {});
    const bool found = regexp->find(std::string_view(text), 0, match);
    const std::size_t end = match.whole.offset + match.whole.length;
    EXPECT_EQ(found ? std::to_string(match.whole.offset) + "-" + std::to_string(end) : "none",
              plain_search(pattern, text))
        << pattern.text << " on " << text;
  }
}

}  // namespace
}  // namespace zrl::pcre2
