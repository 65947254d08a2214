#include "core/text/secrets.h"

#include <algorithm>
#include <array>
#include <vector>

#include "core/text/ascii.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view asterisks = "********";
constexpr std::string_view blanks = " \t";

bool is_name(char c) {
  return is_letter_or_digit(c) || c == '_' || c == '-';
}

// A text without its percent-encoding, and where each of its characters stood.
struct Decoded {
  std::string text;
  std::vector<std::size_t> places;  // one more than there are characters
};

Decoded decoded(std::string_view text) {
  Decoded result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    result.places.push_back(i);
    const bool encoded =
        text[i] == '%' && i + 2 < text.size() && hex_value(text[i + 1]) >= 0 && hex_value(text[i + 2]) >= 0;
    if (encoded) {
      result.text += static_cast<char>(hex_value(text[i + 1]) * 16 + hex_value(text[i + 2]));
      i += 2;
    } else {
      result.text += text[i];
    }
  }
  result.places.push_back(text.size());
  return result;
}

bool is_secret_key(std::string_view key) {
  static constexpr std::array<std::string_view, 11> endings = {
      "password", "passwd",    "passphrase", "pwd",    "pass",   "secret",
      "token",    "accesskey", "accountkey", "apikey", "api_key"};
  const std::string lower_key = lower(key);
  return std::ranges::any_of(endings, [&](std::string_view ending) { return lower_key.ends_with(ending); });
}

// Whether "name =" follows here.
bool key_follows(std::string_view text) {
  const std::size_t length = static_cast<std::size_t>(std::ranges::find_if_not(text, is_name) - text.begin());
  const std::size_t next = text.find_first_not_of(blanks, length);
  return length > 0 && next != text.npos && text[next] == '=';
}

// The length of the value at the start of the text.
std::size_t value_length(std::string_view text) {
  if (text.empty()) return 0;
  if (text[0] == '\'' || text[0] == '"' || text[0] == '{') {
    const char closing = text[0] == '{' ? '}' : text[0];
    for (std::size_t i = 1; i < text.size(); ++i) {
      if (text[i] == '\\') {
        ++i;
      } else if (text[i] == closing) {
        const bool doubled = i + 1 < text.size() && text[i + 1] == closing;
        if (!doubled) return i + 1;
        ++i;
      }
    }
    return text.size();
  }
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ';' || text[i] == '&') return i;
    const bool blank = text[i] == ' ' || text[i] == '\t';
    if (blank && key_follows(text.substr(text.find_first_not_of(blanks, i) == text.npos
                                             ? text.size()
                                             : text.find_first_not_of(blanks, i)))) {
      return i;
    }
  }
  return text.size();
}

// One line; its secrets are keys with values.
std::string without_values(std::string_view line) {
  const Decoded plain = decoded(line);
  const std::string_view text = plain.text;
  std::string result;
  std::size_t copied = 0;  // of the line
  std::size_t key = 0;     // where the name before the "=" begins
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '=') continue;
    std::size_t end = text.find_last_not_of(blanks, i == 0 ? 0 : i - 1);
    end = i == 0 || end == text.npos ? i : end + 1;
    key = end;
    while (key > 0 && is_name(text[key - 1])) --key;
    if (!is_secret_key(text.substr(key, end - key))) continue;
    const std::size_t value = std::min(text.find_first_not_of(blanks, i + 1), text.size());
    // The delimiters count as they are written: an encoded "&" belongs to the value.
    const std::size_t start = plain.places[value];
    const std::size_t length = value_length(line.substr(start));
    if (length == 0) continue;
    result += line.substr(copied, start - copied);
    result += asterisks;
    copied = start + length;
    while (i + 1 < text.size() && plain.places[i + 1] < copied) ++i;
  }
  result += line.substr(copied);
  return result;
}

// One line; its secrets are in addresses. A port with an "@" somewhere behind it may as well be the beginning
// of a password.
std::string without_passwords(std::string_view line) {
  constexpr std::string_view mark = "://";
  const std::size_t found = line.find(mark);
  const std::size_t at = line.rfind('@');
  if (found == line.npos || at == line.npos || at < found) return std::string(line);
  const std::size_t user = found + mark.size();
  const std::size_t colon = line.find(':', user);
  if (colon == line.npos || colon > at) return std::string(line);
  std::string result(line.substr(0, colon + 1));
  return result.append(asterisks).append(line.substr(at));
}

}  // namespace

std::string without_secrets(std::string_view text) {
  if (text.find('=') == text.npos && text.find("://") == text.npos && text.find('%') == text.npos) {
    return std::string(text);
  }
  std::string result;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    result += without_values(without_passwords(text.substr(0, end)));
    if (end < text.size()) result += '\n';
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return result;
}

}  // namespace zrl
