#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "scripting/vbscript/token.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// Words of the language by their symbols; made once for an engine.
class KeywordTable {
 public:
  explicit KeywordTable(Symbols& symbols);
  struct Entry {
    Keyword keyword = Keyword::none;
    bool reserved = false;
  };
  Entry find(SymbolId canonical) const { return canonical < words_.size() ? words_[canonical] : Entry(); }
  SymbolId rem() const { return rem_; }

 private:
  std::vector<Entry> words_;
  SymbolId rem_;
};

// Cuts a text into tokens. What cannot be read is the last one, `invalid`: an error of grammar before it
// comes first.
class Lexer {
 public:
  Lexer(std::u16string_view text, Symbols& symbols, const KeywordTable& keywords);

  // The tokens of the next line with its end, instead of what was in `tokens`; behind the last line, the
  // end of the text. The contents of string literals go into `strings`; a token's `constant` counts them.
  void read_line(std::vector<Token>& tokens, HeapVector<Ref<String>>& strings);

 private:
  void next();
  void skip_blanks();
  bool continues_line();
  void skip_to_line_end();
  void end_line();
  void read_word();
  void read_bracketed();
  void read_number();
  void read_string();
  void read_date();
  bool read_based_number();
  void read_operator();
  void push(TokenKind kind, std::size_t length);
  const Token* previous() const;
  Token& push_at(TokenKind kind, std::size_t offset);
  char16_t at(std::size_t position) const { return position < text_.size() ? text_[position] : u'\0'; }
  bool after_operand() const;
  [[noreturn]] void fail(std::int32_t number, std::size_t offset) const;

  std::u16string_view text_;
  Symbols& symbols_;
  const KeywordTable& keywords_;
  std::size_t position_ = 0;
  bool blank_ = false;
  bool continued_ = false;
  Token last_;  // that was read
  bool any_ = false;
  bool broken_ = false;  // the text cannot be read any further
  std::vector<Token>* tokens_ = nullptr;
  HeapVector<Ref<String>>* strings_ = nullptr;
};

}  // namespace zrl::vbs
