#include "scripting/vbscript/lexer.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "scripting/vbscript/date_parser.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

constexpr std::size_t longest_name = 255;

bool is_line_end(char16_t unit) {
  return unit == u'\n' || unit == u'\r';
}

bool is_blank(char16_t unit) {
  return unit == u' ' || unit == u'\t' || unit == u'\v' || unit == u'\f' || unit == 0xA0 || unit == 0xFEFF;
}

// Names are ASCII; in brackets anything may stand. Quotes and dashes of word processors are no letters.
bool begins_name(char16_t unit) {
  return unit < 0x80 && is_letter(unit);
}

bool continues_name(char16_t unit) {
  return begins_name(unit) || is_digit(unit) || unit == u'_';
}

int digit_value(char16_t unit) {
  if (is_digit(unit)) return unit - u'0';
  const char16_t lower = to_lower(unit);
  return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : 99;
}

}  // namespace

KeywordTable::KeywordTable(Symbols& symbols) : rem_(symbols.intern(u"rem")) {
  const auto add = [&](Keyword keyword, std::string_view text, bool reserved) {
    const SymbolId symbol = symbols.intern_ascii(text);
    if (words_.size() <= symbol) words_.resize(symbol + 1);
    words_[symbol] = {keyword, reserved};
  };
#define KEYWORD(name, text, reserved) add(Keyword::name, text, reserved);
#include "scripting/vbscript/keywords.def"
#undef KEYWORD
}

Lexer::Lexer(std::u16string_view text, Symbols& symbols, const KeywordTable& keywords)
    : text_(text), symbols_(symbols), keywords_(keywords) {}

void Lexer::fail(std::int32_t number, std::size_t offset) const {
  throw CompileFailure{number, offset};
}

Token& Lexer::push_at(TokenKind kind, std::size_t offset) {
  Token& token = tokens_->emplace_back();
  token.kind = kind;
  token.offset = static_cast<std::uint32_t>(offset);
  token.blank_before = blank_;
  token.continued_before = continued_;
  return token;
}

void Lexer::push(TokenKind kind, std::size_t length) {
  push_at(kind, position_);
  position_ += length;
}

void Lexer::read_line(std::vector<Token>& tokens, HeapVector<Ref<String>>& strings) {
  if (!tokens.empty()) last_ = tokens.back();
  any_ |= !tokens.empty();
  tokens.clear();
  tokens_ = &tokens;
  strings_ = &strings;
  try {
    while (!broken_) {
      skip_blanks();
      if (position_ >= text_.size()) break;
      next();
      if (!tokens.empty() && tokens.back().kind == TokenKind::end_of_line) return;
    }
  } catch (const CompileFailure& failure) {
    broken_ = true;
    push_at(TokenKind::invalid, failure.offset).integer = failure.number;
  }
  position_ = text_.size();
  push_at(TokenKind::end_of_line, text_.size());
  push_at(TokenKind::end_of_text, text_.size());
}

const Token* Lexer::previous() const {
  if (!tokens_->empty()) return &tokens_->back();
  return any_ ? &last_ : nullptr;
}

void Lexer::skip_blanks() {
  blank_ = continued_ = false;
  while (position_ < text_.size()) {
    if (is_blank(text_[position_])) {
      ++position_;
    } else if (!continues_line()) {
      return;
    }
    blank_ = true;
  }
}

// An underscore that is the last thing on its line joins the next one.
bool Lexer::continues_line() {
  if (text_[position_] != u'_') return false;
  std::size_t end = position_ + 1;
  while (is_blank(at(end))) ++end;
  if (end < text_.size() && !is_line_end(text_[end])) return false;
  if (at(end) == u'\r' && at(end + 1) == u'\n') ++end;
  position_ = std::min(end + 1, text_.size());
  continued_ = true;
  return true;
}

void Lexer::skip_to_line_end() {
  while (position_ < text_.size() && !is_line_end(text_[position_])) ++position_;
}

void Lexer::end_line() {
  const std::size_t length = at(position_) == u'\r' && at(position_ + 1) == u'\n' ? 2 : 1;
  const Token* before = previous();
  if (!before || before->kind != TokenKind::end_of_line) {
    push(TokenKind::end_of_line, length);
  } else {
    position_ += length;
  }
}

void Lexer::next() {
  const char16_t unit = text_[position_];
  if (is_line_end(unit)) return end_line();
  if (begins_name(unit)) return read_word();
  if (is_digit(unit) || (unit == u'.' && is_digit(at(position_ + 1)))) return read_number();
  switch (unit) {
    case u'"':
      return read_string();
    case u'\'':
      return skip_to_line_end();
    case u'[':
      return read_bracketed();
    case u'#':
      return read_date();
    case u'&':
      if (read_based_number()) return;
      return push(TokenKind::ampersand, 1);
    default:
      return read_operator();
  }
}

void Lexer::read_word() {
  const std::size_t start = position_;
  while (continues_name(at(position_))) ++position_;
  if (position_ - start > longest_name) fail(error::identifier_too_long, position_);
  const SymbolId symbol = symbols_.intern(text_.substr(start, position_ - start));
  const SymbolId canonical = symbols_.canonical(symbol);
  const bool member = previous() && previous()->kind == TokenKind::dot;
  if (canonical == keywords_.rem() && !member) return skip_to_line_end();
  const KeywordTable::Entry word = keywords_.find(canonical);
  Token& token = push_at(word.reserved && !member ? TokenKind::keyword : TokenKind::name, start);
  if (!member) token.keyword = word.keyword;
  token.symbol = symbol;
}

void Lexer::read_bracketed() {
  const std::size_t start = position_;
  const std::size_t end = std::min(text_.find_first_of(u"]\r\n", start), text_.size());
  if (at(end) != u']') fail(error::expected_close_bracket, end);
  if (end - start - 1 > longest_name) fail(error::identifier_too_long, end);
  push_at(TokenKind::name, start).symbol = symbols_.intern(text_.substr(start + 1, end - start - 1));
  position_ = end + 1;
}

void Lexer::read_number() {
  const std::size_t start = position_;
  bool whole = true;
  while (is_digit(at(position_))) ++position_;
  if (at(position_) == u'.') {
    whole = false;
    ++position_;
    while (is_digit(at(position_))) ++position_;
  }
  if (to_lower(at(position_)) == u'e') {
    std::size_t exponent = position_ + 1;
    if (at(exponent) == u'+' || at(exponent) == u'-') ++exponent;
    if (is_digit(at(exponent))) {
      whole = false;
      position_ = exponent;
      while (is_digit(at(position_))) ++position_;
    } else if (!begins_name(at(exponent))) {  // 1else is the number 1 and a word
      fail(error::invalid_number, start);
    }
  }
  std::string digits;
  for (const char16_t unit : text_.substr(start, position_ - start)) digits += static_cast<char>(unit);
  double number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec == std::errc::result_out_of_range && number != 0 && !(std::fabs(number) < 1)) {
    fail(error::invalid_number, start);
  }
  if (result.ec == std::errc::result_out_of_range) number = digits.find('-') == digits.npos ? HUGE_VAL : 0;
  if (std::isinf(number)) fail(error::invalid_number, start);
  if (whole && number <= 2147483647) {
    push_at(number <= 32767 ? TokenKind::integer : TokenKind::long_int, start).integer =
        static_cast<std::int64_t>(number);
  } else {
    push_at(TokenKind::number, start).number = number;
  }
}

bool Lexer::after_operand() const {
  const Token* before = previous();
  if (!before) return false;
  const TokenKind kind = before->kind;
  if (kind == TokenKind::keyword) {
    const Keyword word = before->keyword;
    return word == Keyword::true_ || word == Keyword::false_ || word == Keyword::null ||
           word == Keyword::empty || word == Keyword::nothing || word == Keyword::me;
  }
  return kind == TokenKind::name || kind == TokenKind::close ||
         (kind >= TokenKind::integer && kind <= TokenKind::string);
}

// &H1F, &O17, &17, each with or without a closing &. Without it, 16 bits are a signed number. It is an
// Integer if its magnitude has 15 bits, so that &H8000 is a Long as 32768 is.
bool Lexer::read_based_number() {
  const std::size_t start = position_;
  std::size_t digits = start + 1;
  int base = 8;
  const char16_t marker = to_lower(at(digits));
  if (marker == u'h' || marker == u'o') {
    base = marker == u'h' ? 16 : 8;
    ++digits;
  } else if (after_operand()) {
    return false;
  }
  if (digit_value(at(digits)) >= base) return false;
  std::uint64_t number = 0;
  std::size_t end = digits;
  while (digit_value(at(end)) < base) {
    number = number * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit_value(at(end++)));
    if (number > 0xffffffffU) fail(error::syntax, start);
  }
  const bool marked = at(end) == u'&';
  position_ = marked ? end + 1 : end;
  std::int64_t value = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
  if (!marked && number <= 0xffff) value = static_cast<std::int16_t>(static_cast<std::uint16_t>(number));
  const bool small = value > -32768 && value <= 32767;
  push_at(small ? TokenKind::integer : TokenKind::long_int, start).integer = value;
  return true;
}

void Lexer::read_string() {
  const std::size_t start = position_++;
  std::u16string contents;
  while (true) {
    const std::size_t end = std::min(text_.find_first_of(u"\"\r\n", position_), text_.size());
    if (at(end) != u'"') fail(error::unterminated_string, end);
    contents += text_.substr(position_, end - position_);
    position_ = end + 1;
    if (at(position_) != u'"') break;
    contents += u'"';
    ++position_;
  }
  push_at(TokenKind::string, start).constant = static_cast<std::uint32_t>(strings_->size());
  strings_->push_back(strings_->get_allocator().heap().string(contents));
}

void Lexer::read_date() {
  const std::size_t start = position_;
  const std::size_t end = text_.find_first_of(u"#\r\n", start + 1);
  if (end == text_.npos || text_[end] != u'#') fail(error::syntax, start);
  const auto date = parse_date_literal(text_.substr(start + 1, end - start - 1));
  if (!date) fail(error::syntax, start);
  push_at(TokenKind::date, start).number = *date;
  position_ = end + 1;
}

void Lexer::read_operator() {
  const char16_t unit = text_[position_];
  const char16_t next = at(position_ + 1);
  switch (unit) {
    case u':':
      return push(TokenKind::colon, 1);
    case u'(':
      return push(TokenKind::open, 1);
    case u')':
      return push(TokenKind::close, 1);
    case u',':
      return push(TokenKind::comma, 1);
    case u'.':
      return push(TokenKind::dot, 1);
    case u'+':
      return push(TokenKind::plus, 1);
    case u'-':
      return push(TokenKind::minus, 1);
    case u'*':
      return push(TokenKind::star, 1);
    case u'/':
      return push(TokenKind::slash, 1);
    case u'\\':
      return push(TokenKind::backslash, 1);
    case u'^':
      return push(TokenKind::caret, 1);
    case u'=':
      if (next == u'<') return push(TokenKind::less_equal, 2);
      if (next == u'>') return push(TokenKind::greater_equal, 2);
      return push(TokenKind::equal, 1);
    case u'<':
      if (next == u'>') return push(TokenKind::not_equal, 2);
      if (next == u'=') return push(TokenKind::less_equal, 2);
      return push(TokenKind::less, 1);
    case u'>':
      if (next == u'<') return push(TokenKind::not_equal, 2);
      if (next == u'=') return push(TokenKind::greater_equal, 2);
      return push(TokenKind::greater, 1);
    default:
      fail(error::invalid_character, position_);
  }
}

}  // namespace zrl::vbs
