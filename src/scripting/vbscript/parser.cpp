#include "scripting/vbscript/parser.h"

#include <algorithm>

#include "scripting/vbscript/errors.h"

namespace zrl::vbs {

namespace {

constexpr int deepest_nesting = 500;
constexpr std::size_t arena_chunk = std::size_t{16} << 10;

}  // namespace

void* Arena::take(std::size_t bytes) {
  bytes = (bytes + 15) & ~std::size_t{15};
  if (bytes > left_) {
    const std::size_t chunk = std::max(bytes, arena_chunk);
    chunks_.push_back(std::make_unique<std::byte[]>(chunk));
    next_ = chunks_.back().get();
    left_ = chunk;
  }
  void* block = next_;
  next_ += bytes;
  left_ -= bytes;
  return block;
}

Parser::Nesting::Nesting(const Parser& parser, int& count) : count_(count) {
  if (++count_ <= deepest_nesting) return;
  --count_;
  parser.fail(error::stack_space);
}

Parser::Parser(std::u16string_view text, Symbols& symbols, const KeywordTable& keywords)
    : symbols_(symbols), ast_(std::make_unique<Ast>()) {
  Lexer lexer(text, symbols, keywords);
  tokens_ = lexer.tokens();
  ast_->strings = lexer.take_strings();
  procedure_ = &ast_->main;
}

// text: [ Option Explicit ] block
std::unique_ptr<Ast> Parser::parse() {
  skip_separators();
  if (at(Keyword::option)) option_explicit();
  block(ast_->main.body);
  if (!at(TokenKind::end_of_text)) {
    if (at(Keyword::loop)) fail(error::loop_without_do);
    if (at(Keyword::next)) fail(error::unexpected_next);
    fail(error::expected_statement);
  }
  ast_->main.end_offset = token().offset;
  return std::move(ast_);
}

// text: expression
std::unique_ptr<Ast> Parser::parse_expression_text() {
  while (at(TokenKind::end_of_line)) ++position_;
  Stmt* stmt = make(StmtKind::nothing);
  stmt->value = expression();
  while (at(TokenKind::end_of_line)) ++position_;
  if (!at(TokenKind::end_of_text)) fail(error::expected_end_of_statement);
  ast_->main.body.push_back(stmt);
  return std::move(ast_);
}

void Parser::fail(std::int32_t number) const {
  if (at(TokenKind::invalid)) fail(static_cast<std::int32_t>(token().integer), token().offset);
  fail(number, token().offset);
}

void Parser::fail(std::int32_t number, std::size_t offset) const {
  throw CompileFailure{number, offset};
}

bool Parser::accept(TokenKind kind) {
  if (!at(kind)) return false;
  ++position_;
  return true;
}

bool Parser::accept(Keyword keyword) {
  if (!at(keyword)) return false;
  ++position_;
  return true;
}

bool Parser::accept_word(Keyword keyword) {
  if (!at_word(keyword)) return false;
  ++position_;
  return true;
}

void Parser::expect(TokenKind kind, std::int32_t error) {
  if (!accept(kind)) fail(error);
}

void Parser::expect(Keyword keyword, std::int32_t error) {
  if (!accept_word(keyword)) fail(error);
}

SymbolId Parser::expect_name() {
  if (!at(TokenKind::name)) fail(error::expected_identifier);
  return tokens_[position_++].symbol;
}

bool Parser::at_statement_end() const {
  return at(TokenKind::end_of_line) || at(TokenKind::colon) || at(TokenKind::end_of_text);
}

void Parser::expect_statement_end() {
  if (!at_statement_end()) fail(error::expected_end_of_statement);
  skip_separators();
}

void Parser::skip_separators() {
  while (at(TokenKind::end_of_line) || at(TokenKind::colon)) ++position_;
}

}  // namespace zrl::vbs
