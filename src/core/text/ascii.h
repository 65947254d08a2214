#pragma once

#include <string_view>

// Classes of single characters. Only ASCII counts, whatever the locale: of UTF-8 text, every byte of a longer
// character is in none of them.
namespace zrl {

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool is_letter_or_digit(char c) {
  return is_letter(c) || is_digit(c);
}

// C0 and DEL, with tab and the line ends.
constexpr bool is_control(char c) {
  return (c >= '\0' && c < ' ') || c == '\x7F';
}

constexpr bool has_controls(std::string_view text) {
  for (const char c : text) {
    if (is_control(c)) return true;
  }
  return false;
}

// The value of a hexadecimal digit of either case; -1 if it is none.
constexpr int hex_value(char c) {
  if (is_digit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace zrl
