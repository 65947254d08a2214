#include "scripting/vbscript/parser.h"

#include <algorithm>

#include "scripting/vbscript/errors.h"

namespace zrl::vbs {

namespace {

constexpr int deepest_nesting = 500;
constexpr std::size_t arena_chunk = std::size_t{16} << 10;

}  // namespace

void* Arena::take(std::size_t bytes) {
  constexpr std::size_t alignment = alignof(double);
  bytes = (bytes + alignment - 1) & ~(alignment - 1);
  if (bytes > left_) {
    const std::size_t chunk = std::max(bytes, arena_chunk);
    chunks_.push_back({nullptr, 0});
    heap_.charge(chunk);
    chunks_.back().bytes = chunk;
    chunks_.back().block = std::make_unique<std::byte[]>(chunk);
    next_ = chunks_.back().block.get();
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

Arena::~Arena() {
  for (const Chunk& chunk : chunks_) heap_.refund(chunk.bytes);
}

Parser::Parser(std::u16string_view text, Symbols& symbols, const KeywordTable& keywords, Heap& heap)
    : symbols_(symbols), lexer_(text, symbols, keywords), ast_(std::make_unique<Ast>(heap)) {
  lexer_.read_line(tokens_, ast_->strings);
  procedure_ = &ast_->main;
}

// A line may be empty of everything but its end; behind the last one is the text's end.
void Parser::advance() {
  if (++position_ < tokens_.size()) return;
  lexer_.read_line(tokens_, ast_->strings);
  position_ = 0;
}

// text: [ Option Explicit ] block
std::unique_ptr<Ast> Parser::parse() {
  skip_separators();
  if (at(Keyword::option)) option_explicit();
  auto body = ast_->arena.list<Stmt*>();
  block(body);
  ast_->main.body = ast_->arena.copy(body);
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
  while (at(TokenKind::end_of_line)) advance();
  Stmt* stmt = make(StmtKind::nothing);
  stmt->value = expression();
  while (at(TokenKind::end_of_line)) advance();
  if (!at(TokenKind::end_of_text)) fail(error::expected_end_of_statement);
  auto body = ast_->arena.list<Stmt*>();
  body.push_back(stmt);
  ast_->main.body = ast_->arena.copy(body);
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
  advance();
  return true;
}

bool Parser::accept(Keyword keyword) {
  if (!at(keyword)) return false;
  advance();
  return true;
}

bool Parser::accept_word(Keyword keyword) {
  if (!at_word(keyword)) return false;
  advance();
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
  const SymbolId symbol = token().symbol;
  advance();
  return symbol;
}

bool Parser::at_statement_end() const {
  return at(TokenKind::end_of_line) || at(TokenKind::colon) || at(TokenKind::end_of_text);
}

void Parser::expect_statement_end() {
  if (!at_statement_end()) fail(error::expected_end_of_statement);
  skip_separators();
}

void Parser::skip_separators() {
  while (at(TokenKind::end_of_line) || at(TokenKind::colon)) advance();
}

}  // namespace zrl::vbs
