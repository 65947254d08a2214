#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

#include "components/pcre2/pcre2.h"
#include "components/pcre2/searcher.h"
#include "core/text/error.h"
#include "core/text/utf16.h"

namespace zrl::pcre2 {

namespace {

// A cache of the compiled patterns of one width: the least recently used ones are dropped.
template <typename Unit>
class PatternCache {
 public:
  using Pattern = std::shared_ptr<CompiledPattern<Unit>>;

  Pattern get(std::basic_string_view<Unit> pattern, RegExp::Options options) {
    std::basic_string<Unit> key(pattern);
    key += static_cast<Unit>('0' + (options.ignore_case ? 1 : 0) + (options.multiline ? 2 : 0));
    const auto found = places_.find(key);
    if (found != places_.end()) {
      entries_.splice(entries_.begin(), entries_, found->second);
      return found->second->compiled;
    }
    entries_.push_front({key, std::make_shared<CompiledPattern<Unit>>(pattern, options)});
    units_ += key.size();
    places_.emplace(entries_.front().key, entries_.begin());
    while (entries_.size() > most_patterns || (units_ > most_units && entries_.size() > 1)) drop_oldest();
    return entries_.front().compiled;
  }

 private:
  static constexpr std::size_t most_patterns = 256;
  static constexpr std::size_t most_units = std::size_t{64} << 10;

  struct Entry {
    std::basic_string<Unit> key;
    Pattern compiled;
  };

  void drop_oldest() {
    units_ -= entries_.back().key.size();
    places_.erase(entries_.back().key);
    entries_.pop_back();
  }

  std::list<Entry> entries_;  // the one used last comes first
  std::unordered_map<std::basic_string_view<Unit>, typename std::list<Entry>::iterator> places_;
  std::size_t units_ = 0;
};

template <typename Unit>
struct Engine {
  explicit Engine(std::chrono::milliseconds longest_search) : searcher(longest_search) {}

  PatternCache<Unit> patterns;
  Searcher<Unit> searcher;
};

struct Engines {
  explicit Engines(Limits the_limits) : limits(the_limits), utf8(limits.search), units16(limits.search) {}

  Limits limits;

  Engine<char> utf8;
  Engine<char16_t> units16;
};

class Pcre2RegExp : public RegExp {
 public:
  explicit Pcre2RegExp(std::shared_ptr<Engines> engines) : engines_(std::move(engines)) {}

  void set_pattern(std::string_view utf8_pattern, Options options) override {
    if (utf8_ && options == options_ && pattern8_ == utf8_pattern) return;
    forget();
    utf8_ = engines_->utf8.patterns.get(utf8_pattern, options);
    pattern8_ = utf8_pattern;
    options_ = options;
  }

  void set_pattern(std::u16string_view pattern, Options options) override {
    if (units16_ && options == options_ && pattern16_ == pattern) return;
    forget();
    units16_ = engines_->units16.patterns.get(pattern, options);
    pattern16_ = pattern;
    options_ = options;
  }

  bool find(std::string_view utf8_text, std::size_t from, RegExpMatch& match) override {
    if (!utf8_ && units16_) {
      pattern8_ = to_utf8(pattern16_);
      utf8_ = engines_->utf8.patterns.get(pattern8_, options_);
    }
    return search(engines_->utf8.searcher, utf8_.get(), utf8_text, from, match);
  }

  bool find(std::u16string_view text, std::size_t from, RegExpMatch& match) override {
    if (!units16_ && utf8_) {
      pattern16_ = to_utf16(pattern8_);
      units16_ = engines_->units16.patterns.get(pattern16_, options_);
    }
    return search(engines_->units16.searcher, units16_.get(), text, from, match);
  }

  bool limit_reached() const override { return limit_reached_; }

 private:
  void forget() {
    utf8_.reset();
    units16_.reset();
  }

  template <typename Unit>
  bool search(Searcher<Unit>& searcher, CompiledPattern<Unit>* pattern, std::basic_string_view<Unit> text,
              std::size_t from, RegExpMatch& match) {
    using Outcome = typename Searcher<Unit>::Outcome;
    limit_reached_ = false;
    if (!pattern) throw Error(5016, "Regular Expression object expected");
    if (from > text.size()) throw Error(error_number::invalid_call, "Invalid procedure call or argument");
    const Outcome outcome = searcher.find(*pattern, text, from);
    limit_reached_ = outcome == Outcome::limit;
    if (outcome != Outcome::match) return false;
    const std::size_t* bounds = Pcre2<Unit>::ovector(pattern->match_data());
    match.whole = {bounds[0], bounds[1] - bounds[0]};
    match.groups.resize(pattern->groups());
    for (RegExpMatch::Span& group : match.groups) {
      bounds += 2;
      group = *bounds == PCRE2_UNSET ? RegExpMatch::Span{RegExpMatch::npos, 0}
                                     : RegExpMatch::Span{bounds[0], bounds[1] - bounds[0]};
    }
    return true;
  }

  std::shared_ptr<Engines> engines_;
  std::shared_ptr<CompiledPattern<char>> utf8_;
  std::shared_ptr<CompiledPattern<char16_t>> units16_;
  std::string pattern8_;
  std::u16string pattern16_;
  Options options_;
  bool limit_reached_ = false;
};

}  // namespace

std::shared_ptr<RegExp> make(ConsoleServices&, Limits limits) {
  return make_regexp(limits);
}

std::shared_ptr<RegExp> make_regexp(Limits limits) {
  thread_local std::shared_ptr<Engines> engines;
  if (!engines || engines->limits.search != limits.search) engines = std::make_shared<Engines>(limits);
  return std::make_shared<Pcre2RegExp>(engines);
}

}  // namespace zrl::pcre2
