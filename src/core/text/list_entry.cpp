#include "core/text/list_entry.h"

#include <charconv>
#include <cstddef>

namespace zrl {

namespace {

constexpr std::size_t regex_mark_length = 6;

bool is_address_part(std::string_view part) {
  constexpr unsigned greatest = 255;
  unsigned number = 0;
  const char* end = part.data() + part.size();
  const auto [stop, fault] = std::from_chars(part.data(), end, number);
  return part.size() <= 3 && fault == std::errc() && stop == end && number <= greatest;
}

}  // namespace

std::string escape_quotes(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    if (c == '"') {
      result += "\\x22";
    } else if (c == '\'') {
      result += "\\x27";
    } else {
      result += c;
    }
  }
  return result;
}

bool is_ip_address(std::string_view text) {
  for (int dots = 0; dots < 3; ++dots) {
    const std::size_t dot = text.find('.');
    if (dot == std::string_view::npos || !is_address_part(text.substr(0, dot))) return false;
    text.remove_prefix(dot + 1);
  }
  return is_address_part(text);
}

bool is_regex_entry(std::string_view entry) {
  const std::string_view mark = entry.substr(0, regex_mark_length);
  return (mark == "REGEX[" || mark == "regex[") && entry.back() == ']';
}

std::string_view regex_of(std::string_view entry) {
  return entry.substr(regex_mark_length, entry.size() - regex_mark_length - 1);
}

}  // namespace zrl
