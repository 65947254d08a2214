#pragma once

#include <string_view>

// Classes of single bytes. They depend on ASCII alone and never on the locale: a byte of a UTF-8 character
// beyond ASCII belongs to none of them, so that UTF-8 text may be tested byte by byte. Unlike the functions
// of <cctype>, these accept a negative char.
namespace zrl {

constexpr bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// A to Z and a to z.
constexpr bool is_letter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool is_letter_or_digit(char c) {
  return is_letter(c) || is_digit(c);
}

// C0 and DEL, which includes tab and the line ends. The controls of C1 are two bytes in UTF-8 and are not
// found here; printable.h knows them.
constexpr bool is_control(char c) {
  return (c >= '\0' && c < ' ') || c == '\x7F';
}

// Whether any byte of the text is a control in this sense.
constexpr bool has_controls(std::string_view text) {
  for (const char c : text) {
    if (is_control(c)) return true;
  }
  return false;
}

// The value of a hexadecimal digit, 0 to 15, in either case; -1 if the character is none.
constexpr int hex_value(char c) {
  if (is_digit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace zrl
