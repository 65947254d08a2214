#include "core/text/text.h"

#include <algorithm>
#include <charconv>

namespace zrl {

namespace {

constexpr std::string_view blanks = " \t\r\n";

char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

// Length of the well-formed UTF-8 sequence at the start of `text`, or 0.
std::size_t sequence_length(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return 1;
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (first >= 0xC2 && first <= 0xDF) {
    length = 2;
  } else if (first >= 0xE0 && first <= 0xEF) {
    length = 3;
    if (first == 0xE0) low = 0xA0;
    if (first == 0xED) high = 0x9F;
  } else if (first >= 0xF0 && first <= 0xF4) {
    length = 4;
    if (first == 0xF0) low = 0x90;
    if (first == 0xF4) high = 0x8F;
  }
  if (length == 0 || text.size() < length) return 0;
  if (byte(1) < low || byte(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (byte(i) < 0x80 || byte(i) > 0xBF) return 0;
  }
  return length;
}

void append_hex(std::string& out, unsigned value) {
  constexpr std::string_view digits = "0123456789abcdef";
  out += "\\x";
  out += digits[value / 16];
  out += digits[value % 16];
}

}  // namespace

std::string_view trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string upper(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - ('a' - 'A'));
  }
  return result;
}

std::string lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char c) { return lower(c); });
  return result;
}

bool equals_ignoring_case(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lower(a) == lower(b); });
}

std::optional<std::int64_t> to_number(std::string_view text) {
  text = trim(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t number = 0;
  const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failure != std::errc()) return std::nullopt;
  const std::string_view fraction(rest, static_cast<std::size_t>(text.data() + text.size() - rest));
  if (!fraction.empty() && (fraction[0] != '.' || fraction.find_first_not_of('0', 1) != fraction.npos)) {
    return std::nullopt;
  }
  return number;
}

bool is_valid_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = sequence_length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string valid_utf8(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = sequence_length(text);
    if (length == 0) {
      result += "\xEF\xBF\xBD";
      text.remove_prefix(1);
    } else {
      result += text.substr(0, length);
      text.remove_prefix(length);
    }
  }
  return result;
}

std::string beginning_of(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return valid_utf8(text);
  while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80U) --limit;
  return valid_utf8(text.substr(0, limit));
}

namespace {

// U+202A to U+202E and U+2066 to U+2069 change the direction of what follows them.
bool turns_direction(std::string_view sequence) {
  if (!sequence.starts_with("\xE2\x80") && !sequence.starts_with("\xE2\x81")) return false;
  const auto first = static_cast<unsigned char>(sequence[1]);
  const auto last = static_cast<unsigned char>(sequence[2]);
  return first == 0x80 ? last >= 0xAA && last <= 0xAE : last >= 0xA6 && last <= 0xA9;
}

}  // namespace

std::string printable(std::string_view text, bool keep_lines) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = sequence_length(text);
    const bool c1 = length == 2 && first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
    if (keep_lines && (first == '\n' || first == '\t')) {
      result += text[0];
    } else if (length == 0 || first < 0x20 || first == 0x7F) {
      append_hex(result, first);
    } else if (c1) {
      append_hex(result, static_cast<unsigned char>(text[1]));
    } else if (length == 3 && turns_direction(text.substr(0, 3))) {
      for (std::size_t i = 0; i < 3; ++i) append_hex(result, static_cast<unsigned char>(text[i]));
    } else {
      result += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

}  // namespace zrl
