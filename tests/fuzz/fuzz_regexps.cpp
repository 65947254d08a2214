// Regular expressions: the first byte holds the options, a line the pattern, the rest is the text. Matches
// lie inside the text and behind the place where the search began, and both widths find the same in
// ASCII.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "components/pcre2/pcre2.h"
#include "core/text/error.h"

namespace {

struct Result {
  bool malformed = false;
  bool limited = false;
  std::vector<std::size_t> places;
};

template <typename Unit>
Result search(std::basic_string_view<Unit> pattern, std::basic_string_view<Unit> text,
              zrl::RegExp::Options options) {
  const auto regexp = zrl::pcre2::make_regexp({std::chrono::milliseconds(5)});
  Result result;
  try {
    regexp->set_pattern(pattern, options);
  } catch (const zrl::Error&) {
    result.malformed = true;
    return result;
  }
  zrl::RegExpMatch match;
  std::size_t from = 0;
  for (int i = 0; i < 5 && from <= text.size() && regexp->find(text, from, match); ++i) {
    const auto [offset, length] = match.whole;
    if (offset < from || offset + length > text.size()) std::abort();
    for (const auto& group : match.groups) {
      if (group.offset != match.npos && group.offset + group.length > text.size()) std::abort();
      result.places.push_back(group.offset);
      result.places.push_back(group.length);
    }
    result.places.push_back(offset);
    result.places.push_back(length);
    from = offset + length + (length == 0 ? 1 : 0);
  }
  result.limited = regexp->limit_reached();
  return result;
}

template <typename Unit>
std::basic_string<Unit> widened(std::string_view bytes) {
  std::basic_string<Unit> result;
  for (const char c : bytes) result += static_cast<Unit>(static_cast<unsigned char>(c));
  return result;
}

bool is_ascii(std::string_view bytes) {
  for (const char c : bytes) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t line = input.find('\n');
  if (size == 0 || line == input.npos || line == 0) return 0;
  const zrl::RegExp::Options options{.ignore_case = (input[0] & 1) != 0, .multiline = (input[0] & 2) != 0};
  const std::string_view pattern = input.substr(1, line - 1);
  const std::string_view text = input.substr(line + 1);
  const Result narrow = search<char>(pattern, text, options);
  const std::u16string wide_pattern = widened<char16_t>(pattern);
  const std::u16string wide_text = widened<char16_t>(text);
  const Result wide = search<char16_t>(wide_pattern, wide_text, options);
  // Escapes may name characters whose case is that of ASCII letters, or make a pattern too large.
  const bool comparable = is_ascii(input) && pattern.find('\\') == pattern.npos && pattern.size() < 100;
  if (!comparable || narrow.limited || wide.limited) return 0;
  if (narrow.malformed != wide.malformed || narrow.places != wide.places) std::abort();
  return 0;
}
