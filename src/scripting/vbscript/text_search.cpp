#include "scripting/vbscript/text_search.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace zrl::vbs {

namespace {

constexpr std::size_t short_needle = 16;

// Knuth, Morris, Pratt.
std::size_t find_long(std::u16string_view text, std::u16string_view needle, std::size_t from) {
  std::vector<std::uint32_t> border(needle.size());
  for (std::size_t i = 1, length = 0; i < needle.size(); ++i) {
    while (length > 0 && needle[i] != needle[length]) length = border[length - 1];
    if (needle[i] == needle[length]) ++length;
    border[i] = static_cast<std::uint32_t>(length);
  }
  std::size_t matched = 0;
  for (std::size_t i = from; i < text.size(); ++i) {
    while (matched > 0 && text[i] != needle[matched]) matched = border[matched - 1];
    if (text[i] == needle[matched]) ++matched;
    if (matched == needle.size()) return i + 1 - matched;
  }
  return text.npos;
}

}  // namespace

std::size_t find_text(std::u16string_view text, std::u16string_view needle, std::size_t from) {
  if (needle.size() <= short_needle) return text.find(needle, from);
  return find_long(text, needle, from);
}

std::size_t find_last_text(std::u16string_view text, std::u16string_view needle, std::size_t last) {
  if (needle.size() <= short_needle) return text.rfind(needle, last);
  if (needle.size() > text.size()) return text.npos;
  const std::size_t end = std::min(text.size(), last + needle.size());
  std::u16string backwards(text.substr(0, end));
  std::reverse(backwards.begin(), backwards.end());
  std::u16string reversed(needle);
  std::reverse(reversed.begin(), reversed.end());
  const std::size_t found = find_long(backwards, reversed, 0);
  return found == text.npos ? found : end - found - needle.size();
}

}  // namespace zrl::vbs
