#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "scripting/vbscript/ast.h"
#include "scripting/vbscript/lexer.h"

namespace zrl::vbs {

// Parses a text by recursive descent. Raises CompileFailure; what is nested too deeply is error 28.
class Parser {
 public:
  // The text must outlive the parser; the tree's memory is charged to the heap.
  Parser(std::u16string_view text, Symbols& symbols, const KeywordTable& keywords, Heap& heap);

  std::unique_ptr<Ast> parse();
  // A text that is one expression, for Eval: the value of the only statement.
  std::unique_ptr<Ast> parse_expression_text();

 private:
  // Tokens, of one line at a time.
  const Token& token() const { return tokens_[position_]; }
  const Token& ahead(std::size_t n = 1) const { return tokens_[std::min(position_ + n, tokens_.size() - 1)]; }
  bool at(TokenKind kind) const { return token().kind == kind; }
  bool at(Keyword keyword) const { return token().kind == TokenKind::keyword && token().keyword == keyword; }
  // Also where the word could be a name.
  bool at_word(Keyword keyword) const { return token().keyword == keyword; }
  void advance();
  bool accept(TokenKind kind);
  bool accept(Keyword keyword);
  bool accept_word(Keyword keyword);
  void expect(TokenKind kind, std::int32_t error);
  void expect(Keyword keyword, std::int32_t error);
  SymbolId expect_name();
  bool at_statement_end() const;
  void expect_statement_end();
  void skip_separators();
  [[noreturn]] void fail(std::int32_t number) const;
  [[noreturn]] void fail(std::int32_t number, std::size_t offset) const;

  // Expressions (parser_expressions.cpp).
  Expr* expression();
  Expr* binary(Expr* left, int lowest);
  Expr* operand();
  Expr* unary();
  Expr* primary();
  Expr* postfix(Expr* expr, bool statement = false);
  bool argument_follows() const;
  Expr* literal();
  std::span<Expr*> arguments_in_parentheses();
  HeapVector<Expr*> argument_list();
  Expr* node(ExprKind kind);
  InnerExpr* inner_node(ExprKind kind);
  Expr* finish(Expr* expr);

  // Statements (parser_statements.cpp).
  // Where a block's End If may follow a statement without a separator.
  enum class Close { nowhere, anywhere, on_first_line };
  void block(HeapVector<Stmt*>& statements, Close close = Close::nowhere);
  Block block(Close close = Close::nowhere);
  bool closes_block(Close close, bool on_first_line) const;
  Stmt* statement();
  Stmt* keyword_statement();
  Stmt* call_or_assignment();
  Stmt* call_with_arguments(Stmt* stmt, Expr* target);
  Stmt* call_statement();
  Stmt* set_statement();
  Stmt* if_statement();
  void one_line_if(HeapVector<Branch>& branches);
  void many_line_if(HeapVector<Branch>& branches);
  Block one_line_block();
  Stmt* select_statement();
  Stmt* do_statement();
  Stmt* while_statement();
  Stmt* for_statement();
  Stmt* for_each(Stmt* stmt);
  Stmt* with_statement();
  Stmt* exit_statement();
  Stmt* on_error();
  Stmt* redim();
  Stmt* erase();
  Stmt* make(StmtKind kind);
  StmtParts& parts_of(Stmt& stmt);
  void expect_end(Keyword keyword, std::int32_t error);
  bool at_end_of(Keyword keyword) const { return at(Keyword::end) && ahead().keyword == keyword; }
  bool at_end_of_declaration() const;

  // Declarations (parser_declarations.cpp).
  Stmt* dim(bool is_public);
  Stmt* constants();
  void visible_declaration(Stmt*& stmt);
  void procedure(bool is_public, bool is_default);
  std::unique_ptr<ProcDecl> procedure_declaration(bool is_public, bool is_default);
  void parameters(ProcDecl& procedure);
  void procedure_body(ProcDecl& procedure);
  void procedure_block(HeapVector<Stmt*>& body);
  void class_declaration();
  void class_member(ClassDecl& declaration);
  void class_fields(ClassDecl& declaration, bool is_public);
  void check_class(const ClassDecl& declaration) const;
  VariableDecl variable(bool is_public);
  HeapVector<Expr*> bounds();
  Expr* constant_value();
  void option_explicit();

  // Counts how deeply constructs are nested in each other.
  class Nesting {
   public:
    Nesting(const Parser& parser, int& count);
    ~Nesting() { --count_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

   private:
    int& count_;
  };

  Symbols& symbols_;
  Lexer lexer_;
  std::vector<Token> tokens_;
  std::size_t position_ = 0;
  std::unique_ptr<Ast> ast_;
  ProcDecl* procedure_ = nullptr;  // whose body is being read
  int nested_statements_ = 0;
  int nested_expressions_ = -1;  // 0 in no parentheses
  int loops_do_ = 0;
  int loops_for_ = 0;
  int blocks_ = 0;  // open blocks of any kind
};

}  // namespace zrl::vbs
