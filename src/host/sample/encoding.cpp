#include "host/sample/encoding.h"

#include <cstdint>

namespace zrl::sample {

namespace {

std::uint32_t take_character(std::string_view& text) {
  const auto at = [&text](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
  };
  const std::uint32_t first = at(0);
  std::size_t length = 1;
  std::uint32_t result = first;
  if (first >= 0xE0) {
    length = 3;
    result = (first & 15) << 12 | (at(1) & 63) << 6 | (at(2) & 63);
  } else if (first >= 0xC0) {
    length = 2;
    result = (first & 31) << 6 | (at(1) & 63);
  }
  text.remove_prefix(length);
  return result;
}

std::uint32_t in_charset(std::uint32_t character, std::string_view charset) {
  if (character < 0x80) return character;
  if (charset == "windows-1251") {
    return character >= 0x410 && character <= 0x44F ? character - 0x410 + 0xC0 : '?';
  }
  if (charset == "ISO-8859-15" && character == 0x20AC) return 0xA4;
  return character <= 0xFF ? character : '?';
}

void append_escape(std::string& to, char byte) {
  constexpr char digits[] = "0123456789ABCDEF";
  to += '=';
  to += digits[static_cast<unsigned char>(byte) >> 4];
  to += digits[static_cast<unsigned char>(byte) & 15];
}

bool is_plain(char c) {
  return c > ' ' && c < 0x7F && c != '=';
}

}  // namespace

std::string utf16(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const std::uint32_t unit = take_character(text);
    result += static_cast<char>(unit & 255);
    result += static_cast<char>(unit >> 8);
  }
  return result;
}

std::string single_byte(std::string_view text, std::string_view charset) {
  std::string result;
  while (!text.empty()) result += static_cast<char>(in_charset(take_character(text), charset));
  return result;
}

std::string base64(std::string_view bytes, std::size_t width) {
  constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  std::size_t column = 0;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::string_view group = bytes.substr(i, 3);
    std::uint32_t bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (k < group.size() ? static_cast<unsigned char>(group[k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) result += k <= group.size() ? digits[bits >> (18 - 6 * k) & 63] : '=';
    column += 4;
    if (width != 0 && column >= width) {
      result += "\r\n";
      column = 0;
    }
  }
  if (width != 0 && column != 0) result += "\r\n";
  return result;
}

std::string quoted_printable(std::string_view bytes) {
  std::string result;
  std::size_t column = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c == '\r' || c == '\n') {
      result += c;
      column = 0;
      continue;
    }
    if (column > 72) {
      result += "=\r\n";
      column = 0;
    }
    const std::size_t before = result.size();
    const bool at_end = i + 1 == bytes.size() || bytes[i + 1] == '\r';
    if (is_plain(c) || (c == ' ' && !at_end)) {
      result += c;
    } else {
      append_escape(result, c);
    }
    column += result.size() - before;
  }
  return result;
}

std::string encoded_word(std::string_view charset, char kind, std::string_view bytes) {
  std::string result = "=?";
  result.append(charset).append({'?', kind, '?'});
  if (kind == 'B') {
    result += base64(bytes, 0);
  } else {
    for (const char c : bytes) {
      if (c == ' ') {
        result += '_';
      } else if (is_plain(c) && c != '?' && c != '_') {
        result += c;
      } else {
        append_escape(result, c);
      }
    }
  }
  return result += "?=";
}

}  // namespace zrl::sample
