#pragma once

#include <cstdint>

#include "scripting/vbscript/symbols.h"

namespace zrl::vbs {

enum class TokenKind : std::uint8_t {
  end_of_text,
  invalid,  // where the text cannot be read; the error is in `integer`
  end_of_line,
  colon,
  name,
  keyword,
  integer,   // an Integer, in `integer`
  long_int,  // a Long, in `integer`
  number,    // a Double, in `number`
  date,      // a Date, in `number`
  string,    // its text is `constant` of the lexer's texts
  open,
  close,
  comma,
  dot,
  plus,
  minus,
  star,
  slash,
  backslash,
  caret,
  ampersand,
  equal,
  not_equal,
  less,
  greater,
  less_equal,
  greater_equal,
};

enum class Keyword : std::uint8_t {
  none,
#define KEYWORD(name, text, reserved) name,
#include "scripting/vbscript/keywords.def"
#undef KEYWORD
};

struct Token {
  TokenKind kind = TokenKind::end_of_text;
  Keyword keyword = Keyword::none;  // a name that is no reserved word has its keyword here too
  bool blank_before = false;
  bool continued_before = false;  // on the line above, which an underscore continues
  std::uint32_t offset = 0;
  SymbolId symbol = Symbols::none;
  union {
    std::int64_t integer = 0;
    double number;
    std::uint32_t constant;
  };
};

}  // namespace zrl::vbs
