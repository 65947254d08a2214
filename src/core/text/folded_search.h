#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "core/text/text.h"

namespace zrl {

namespace detail {

constexpr std::array<unsigned char, 256> make_folding() {
  std::array<unsigned char, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    table[i] = static_cast<unsigned char>(i >= 'A' && i <= 'Z' ? i + ('a' - 'A') : i);
  }
  return table;
}

inline constexpr std::array<unsigned char, 256> folding = make_folding();

inline unsigned char folded(char c) {
  return folding[static_cast<unsigned char>(c)];
}

}  // namespace detail

// Looks for a text, the case of A to Z ignored, at falling cost the longer it is: a window that does not
// match is left behind by as many bytes as its last byte allows. The text must not be empty; it is copied.
class FoldedSearch {
 public:
  explicit FoldedSearch(std::string_view text) : text_(lower(text)) {
    skips_.fill(text_.size());
    for (std::size_t i = 0; i + 1 < text_.size(); ++i)
      skips_[detail::folded(text_[i])] = text_.size() - 1 - i;
  }

  std::size_t length() const { return text_.size(); }

  // The place of the first match from `at` on, or npos.
  std::size_t find(std::string_view bytes, std::size_t at) const {
    const std::size_t last = text_.size() - 1;
    const auto wanted = static_cast<unsigned char>(text_[last]);
    while (at + last < bytes.size()) {
      const unsigned char found = detail::folded(bytes[at + last]);
      if (found == wanted && matches(bytes.data() + at)) return at;
      at += skips_[found];
    }
    return std::string_view::npos;
  }

 private:
  bool matches(const char* bytes) const {
    for (std::size_t i = 0; i + 1 < text_.size(); ++i) {
      if (detail::folded(bytes[i]) != static_cast<unsigned char>(text_[i])) return false;
    }
    return true;
  }

  std::string text_;
  std::array<std::size_t, 256> skips_;
};

}  // namespace zrl
