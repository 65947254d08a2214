#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "components/pcre2/dialect.h"
#include "components/pcre2/pcre2_api.h"
#include "core/contracts/regexp.h"

namespace zrl::pcre2 {

// Frees an object of PCRE2 by its own function.
template <auto free>
struct Pcre2Deleter {
  template <typename T>
  void operator()(T* made) const {
    free(made);
  }
};

// A pattern compiled for texts of one width: `char` for UTF-8, `char16_t` for 16-bit units.
template <typename Unit>
class CompiledPattern {
 public:
  using Api = Pcre2<Unit>;

  // Raises zrl::Error (5017 to 5021) if the pattern is malformed or too large.
  CompiledPattern(std::basic_string_view<Unit> pattern, RegExp::Options options);

  // A form of the code that calls back at every item of the pattern, so that a search can be ended at any
  // time. Compiled on first use and owned by this object; null if it would be too large.
  const typename Api::Code* guarded();
  const typename Api::Code* plain() const { return plain_.get(); }

  typename Api::MatchData* match_data() const { return match_data_.get(); }
  bool has_jit() const { return has_jit_; }
  bool anchored() const { return anchored_; }
  std::size_t groups() const { return groups_; }
  const PatternCost& cost() const { return cost_; }

 private:
  using Code = std::unique_ptr<typename Api::Code, Pcre2Deleter<Api::code_free>>;

  Code compile(std::uint32_t more_options) const;

  std::basic_string<Unit> translated_;
  std::uint32_t options_ = 0;
  Code plain_;
  Code guarded_;
  std::unique_ptr<typename Api::MatchData, Pcre2Deleter<Api::match_data_free>> match_data_;
  std::size_t groups_ = 0;
  PatternCost cost_;
  bool has_jit_ = false;
  bool anchored_ = false;
  bool guarded_tried_ = false;
};

extern template class CompiledPattern<char>;
extern template class CompiledPattern<char16_t>;

}  // namespace zrl::pcre2
