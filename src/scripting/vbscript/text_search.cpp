#include "scripting/vbscript/text_search.h"

#include <algorithm>
#include <cstdint>

namespace zrl::vbs {

namespace {

constexpr std::size_t short_needle = 16;
constexpr std::size_t none = std::u16string_view::npos;

// Knuth, Morris, Pratt. The functions return the unit at a place, counted in the direction of the search.
template <class UnitOfText, class UnitOfNeedle>
std::size_t find_long(Heap& heap, std::size_t text_size, std::size_t needle_size, std::size_t from,
                      UnitOfText text, UnitOfNeedle needle) {
  HeapVector<std::uint32_t> border(needle_size, HeapAllocator<std::uint32_t>(heap));
  for (std::size_t i = 1, length = 0; i < needle_size; ++i) {
    while (length > 0 && needle(i) != needle(length)) length = border[length - 1];
    if (needle(i) == needle(length)) ++length;
    border[i] = static_cast<std::uint32_t>(length);
  }
  std::size_t matched = 0;
  for (std::size_t i = from; i < text_size; ++i) {
    while (matched > 0 && text(i) != needle(matched)) matched = border[matched - 1];
    if (text(i) == needle(matched)) ++matched;
    if (matched == needle_size) return i + 1 - matched;
  }
  return none;
}

template <class View>
std::size_t find(Heap& heap, View text, View needle, std::size_t from) {
  if (needle.size() <= short_needle) return text.find(needle, from);
  return find_long(
      heap, text.size(), needle.size(), from, [&](std::size_t i) { return text[i]; },
      [&](std::size_t i) { return needle[i]; });
}

}  // namespace

std::size_t find_text(Heap& heap, std::u16string_view text, std::u16string_view needle, std::size_t from) {
  return find(heap, text, needle, from);
}

std::size_t find_bytes(Heap& heap, std::string_view bytes, std::string_view needle, std::size_t from) {
  return find(heap, bytes, needle, from);
}

std::size_t find_last_text(Heap& heap, std::u16string_view text, std::u16string_view needle,
                           std::size_t last) {
  if (needle.size() <= short_needle) return text.rfind(needle, last);
  if (needle.size() > text.size()) return none;
  const std::size_t end = std::min(text.size(), last + needle.size());
  const std::size_t found = find_long(
      heap, end, needle.size(), 0, [&](std::size_t i) { return text[end - 1 - i]; },
      [&](std::size_t i) { return needle[needle.size() - 1 - i]; });
  return found == none ? none : end - found - needle.size();
}

}  // namespace zrl::vbs
