#include "host/sample/encoding.h"

#include "core/text/base64.h"
#include "core/text/utf8.h"

namespace zrl::sample {

namespace {

char32_t in_charset(char32_t character, std::string_view charset) {
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

std::string single_byte(std::string_view text, std::string_view charset) {
  std::string result;
  while (!text.empty()) result += static_cast<char>(in_charset(take_character(text), charset));
  return result;
}

std::string base64(std::string_view bytes, std::size_t width) {
  const std::string text = base64_encode(bytes);
  std::string result;
  for (std::size_t begin = 0; begin < text.size(); begin += width) {
    result.append(text, begin, width).append("\r\n");
  }
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
    result += base64_encode(bytes);
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
