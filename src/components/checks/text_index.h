#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::checks {

// A text of at most 4 GiB in which many words are looked for. It knows where each sequence of four
// bytes occurs, so that a word is compared only where its rarest sequence occurs, and mostly nowhere. Uses
// 4 bytes of memory for each byte of the text, and at most 4 MiB more.
class TextIndex {
 public:
  explicit TextIndex(std::string text);

  const std::string& text() const { return text_; }
  bool contains(std::string_view word) const;

 private:
  std::size_t bucket_of(const char* sequence) const;

  std::string text_;
  int shift_ = 0;                      // from a hash to its bucket
  std::vector<std::uint32_t> starts_;  // of each bucket among the places, and the end of the last one
  std::vector<std::uint32_t> places_;
};

}  // namespace zrl::checks
