#include "core/text/list_entry.h"

#include <charconv>
#include <cstddef>

#include "core/text/text.h"

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

void replace_all(std::string& text, std::string_view what, char by) {
  for (std::size_t at = text.find(what); at != text.npos; at = text.find(what, at + 1)) {
    text.replace(at, what.size(), 1, by);
  }
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

std::string network_entry(std::string_view text) {
  const std::string_view entry = trim(text);
  const std::size_t slash = entry.find('/');
  if (slash == entry.npos) return {};
  // Cut off by the length of the trimmed address, so that a blank before the slash leaves the slash in it.
  const std::string_view address = trim(entry.substr(0, slash));
  const std::optional<std::int64_t> prefix_length = to_number(entry.substr(address.size() + 1));
  constexpr int longest = 32;
  if (!is_ip_address(address) || !prefix_length || *prefix_length < 1 || *prefix_length > longest) return {};
  return std::string(address) + "/" + std::to_string(*prefix_length);
}

bool is_regex_entry(std::string_view entry) {
  const std::string_view mark = entry.substr(0, regex_mark_length);
  return (mark == "REGEX[" || mark == "regex[") && entry.back() == ']';
}

std::string keyword_text(std::string_view entry) {
  std::string words = lower(entry);
  if (words.find("\\x2") == words.npos) return words;
  replace_all(words, "\\x22", '"');
  replace_all(words, "\\x27", '\'');
  return words;
}

std::string_view regex_of(std::string_view entry) {
  return entry.substr(regex_mark_length, entry.size() - regex_mark_length - 1);
}

}  // namespace zrl
