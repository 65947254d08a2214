#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/parser.h"

namespace zrl::vbs {

Stmt* Parser::make(StmtKind kind) {
  Stmt* stmt = ast_->arena.make<Stmt>();
  stmt->kind = kind;
  stmt->offset = token().offset;
  stmt->end_offset = token().offset;
  return stmt;
}

StmtParts& Parser::parts_of(Stmt& stmt) {
  if (!stmt.more) stmt.more = ast_->arena.make<StmtParts>();
  return *stmt.more;
}

// block: { statement separator }, up to a word that closes something
void Parser::block(HeapVector<Stmt*>& statements, Close close) {
  bool on_first_line = !at(TokenKind::end_of_line);
  skip_separators();
  while (!at(TokenKind::end_of_text)) {
    if (token().kind == TokenKind::keyword) {
      switch (token().keyword) {
        case Keyword::end:
        case Keyword::else_:
        case Keyword::elseif_:
        case Keyword::loop:
        case Keyword::next:
        case Keyword::wend:
        case Keyword::case_:
          return;
        default:
          break;
      }
    }
    if (Stmt* stmt = statement()) statements.push_back(stmt);
    if (at(Keyword::end) && closes_block(close, on_first_line)) return;
    if (at(TokenKind::end_of_line)) on_first_line = false;
    expect_statement_end();
  }
}

// Whether an End right behind a statement, on its line and without a colon, ends the block: that of a
// procedure or class always does, End If in some places, others never.
bool Parser::closes_block(Close close, bool on_first_line) const {
  if (at_end_of_declaration()) return true;
  if (close == Close::anywhere || (close == Close::on_first_line && on_first_line)) return true;
  fail(error::must_be_first);
}

bool Parser::at_end_of_declaration() const {
  return at_end_of(Keyword::sub) || at_end_of(Keyword::function) || at_end_of(Keyword::property) ||
         at_end_of(Keyword::class_);
}

Block Parser::block(Close close) {
  ++blocks_;
  auto statements = ast_->arena.list<Stmt*>();
  block(statements, close);
  --blocks_;
  return ast_->arena.copy(statements);
}

// End If, End Select, ...
void Parser::expect_end(Keyword keyword, std::int32_t error) {
  expect(Keyword::end, error::expected_end);
  expect(keyword, error);
}

// statement: keyword-statement | call | assignment
Stmt* Parser::statement() {
  if (at(TokenKind::keyword) && !at(Keyword::me)) return keyword_statement();
  if (at_word(Keyword::erase) && ahead().kind == TokenKind::name) return erase();
  if (at(TokenKind::name) || at(Keyword::me) || at(TokenKind::dot)) return call_or_assignment();
  fail(error::expected_statement);
}

Stmt* Parser::keyword_statement() {
  Stmt* stmt = nullptr;
  switch (token().keyword) {
    case Keyword::call:
      return call_statement();
    case Keyword::set:
      return set_statement();
    case Keyword::if_:
      return if_statement();
    case Keyword::select:
      return select_statement();
    case Keyword::do_:
      return do_statement();
    case Keyword::while_:
      return while_statement();
    case Keyword::for_:
      return for_statement();
    case Keyword::with:
      return with_statement();
    case Keyword::exit:
      return exit_statement();
    case Keyword::on:
      return on_error();
    case Keyword::redim:
      return redim();
    case Keyword::dim:
      advance();
      return dim(true);
    case Keyword::const_:
      return constants();
    case Keyword::stop:
      stmt = make(StmtKind::nothing);
      advance();
      return stmt;
    case Keyword::private_:
    case Keyword::public_:
      visible_declaration(stmt);
      return stmt;
    case Keyword::sub:
    case Keyword::function:
      procedure(true, false);
      return nullptr;
    case Keyword::class_:
      class_declaration();
      return nullptr;
    default:
      fail(error::expected_statement);
  }
}

// assignment: target = expression
// call: target [ list ]
Stmt* Parser::call_or_assignment() {
  if (token().keyword == Keyword::property && procedure_ == &ast_->main &&
      (ahead().keyword == Keyword::get || ahead().keyword == Keyword::let ||
       ahead().keyword == Keyword::set)) {
    fail(error::only_in_class, ahead(2).offset);
  }
  Stmt* stmt = make(StmtKind::let);
  Expr* target = postfix(primary(), true);
  if (accept(TokenKind::equal)) {
    stmt->target = target;
    stmt->value = expression();
    return stmt;
  }
  stmt->kind = StmtKind::expression_call;
  return call_with_arguments(stmt, target);
}

// Whether "f (a)" is a call with one argument in parentheses or "f (a) + 1, b" the beginning of a list
// shows only behind the parenthesis.
Stmt* Parser::call_with_arguments(Stmt* stmt, Expr* target) {
  const bool ended = at_statement_end() || at(Keyword::else_) || at(Keyword::end);
  const bool called = target->kind == ExprKind::call && !target->parenthesised;
  if (!called) {
    stmt->target = target;
    if (!ended) stmt->arguments = ast_->arena.copy(argument_list());
    if (target->kind != ExprKind::name && target->kind != ExprKind::member) fail(error::expected_statement);
    return stmt;
  }
  stmt->target = target->left();
  if (ended) {
    if (target->arguments().size() > 1) fail(error::no_parentheses);
    stmt->arguments = target->arguments();
    if (!stmt->arguments.empty()) stmt->arguments[0]->parenthesised = true;
    return stmt;
  }
  if (target->arguments().size() != 1) {
    fail(target->arguments().empty() ? error::expected_end_of_statement : error::no_parentheses);
  }
  Expr* first = target->arguments()[0];
  first->parenthesised = true;
  auto list = ast_->arena.list<Expr*>();
  list.push_back(binary(first, 1));
  while (accept(TokenKind::comma)) {
    const bool missing = at(TokenKind::comma) || at_statement_end();
    list.push_back(missing ? node(ExprKind::missing) : expression());
  }
  stmt->arguments = ast_->arena.copy(list);
  return stmt;
}

// Call target [ ( list ) ]
Stmt* Parser::call_statement() {
  Stmt* stmt = make(StmtKind::expression_call);
  advance();
  Expr* target = postfix(primary());
  if (target->kind == ExprKind::call) {
    stmt->arguments = target->arguments();
    target = target->left();
  }
  if (target->kind >= ExprKind::integer && target->kind <= ExprKind::nothing) fail(error::syntax);
  stmt->target = target;
  return stmt;
}

// Set target = expression
Stmt* Parser::set_statement() {
  Stmt* stmt = make(StmtKind::set);
  advance();
  if (!at(TokenKind::name) && !at(TokenKind::dot) && !at(Keyword::me)) fail(error::expected_identifier);
  stmt->target = postfix(primary());
  if (stmt->target->kind == ExprKind::me) fail(error::invalid_me, stmt->target->offset);
  expect(TokenKind::equal, error::expected_equals);
  stmt->value = expression();
  return stmt;
}

// If expression Then, on one line or on many
Stmt* Parser::if_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::if_);
  advance();
  auto branches = ast_->arena.list<Branch>();
  branches.emplace_back();
  branches[0].offset = stmt->offset;
  branches[0].condition = expression();
  expect(Keyword::then, error::expected_then);
  if (at(TokenKind::end_of_line)) {
    many_line_if(branches);
  } else {
    one_line_if(branches);
  }
  parts_of(*stmt).branches = ast_->arena.copy(branches);
  return stmt;
}

// [ statements ] [ Else statements ] [ End If ]
void Parser::one_line_if(HeapVector<Branch>& branches) {
  ++blocks_;
  branches[0].body = one_line_block();
  if (at(Keyword::else_)) {
    Branch& branch = branches.emplace_back();
    branch.offset = token().offset;
    advance();
    branch.body = one_line_block();
  }
  --blocks_;
  if (at(Keyword::end) && ahead().keyword == Keyword::if_) {
    advance();
    advance();
  }
}

// statements: statement { : statement }, up to Else, End If or the line's end
Block Parser::one_line_block() {
  auto statements = ast_->arena.list<Stmt*>();
  while (accept(TokenKind::colon)) {
  }
  while (!at(TokenKind::end_of_line) && !at(Keyword::else_) && !at(Keyword::end)) {
    if (Stmt* stmt = statement()) statements.push_back(stmt);
    if (!at(TokenKind::colon)) break;
    // A colon at the end of the line, or before Else, belongs to this line.
    while (accept(TokenKind::colon)) {
    }
  }
  if (!at(TokenKind::end_of_line) && !at(Keyword::else_) && !at(Keyword::end)) {
    fail(error::expected_end_of_statement);
  }
  return ast_->arena.copy(statements);
}

// block { ElseIf expression Then block } [ Else block ] End If
void Parser::many_line_if(HeapVector<Branch>& branches) {
  branches[0].body = block();
  while (at(Keyword::elseif_)) {
    Branch& branch = branches.emplace_back();
    branch.offset = token().offset;
    advance();
    branch.condition = expression();
    expect(Keyword::then, error::expected_then);
    branch.body = block(Close::on_first_line);
  }
  if (at(Keyword::else_)) {
    Branch& branch = branches.emplace_back();
    branch.offset = token().offset;
    advance();
    branch.body = block(Close::anywhere);
  }
  expect_end(Keyword::if_, 1012);
}

// Select Case expression { Case list block } [ Case Else block ] End Select
Stmt* Parser::select_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::select);
  advance();
  expect(Keyword::case_, error::expected_case);
  stmt->value = expression();
  expect_statement_end();
  auto branches = ast_->arena.list<Branch>();
  while (at(Keyword::case_)) {
    Branch branch;
    branch.offset = token().offset;
    advance();
    const bool otherwise = accept(Keyword::else_);
    if (!otherwise) {
      auto tests = ast_->arena.list<Expr*>();
      do {
        tests.push_back(expression());
      } while (accept(TokenKind::comma));
      branch.tests = ast_->arena.copy(tests);
    }
    branch.body = block();
    branches.push_back(branch);
    if (otherwise) break;
  }
  stmt->end_offset = token().offset;
  expect_end(Keyword::select, error::expected_select);
  parts_of(*stmt).branches = ast_->arena.copy(branches);
  return stmt;
}

// Do [ ( While | Until ) expression ] block Loop [ ( While | Until ) expression ]
Stmt* Parser::do_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::do_);
  advance();
  const auto condition = [&] {
    stmt->flag = at(Keyword::until);
    advance();
    stmt->value = expression();
  };
  if (at(Keyword::while_) || at(Keyword::until)) {
    condition();
  } else if (!at_statement_end()) {
    fail(error::expected_loop_end);
  }
  expect_statement_end();
  ++loops_do_;
  parts_of(*stmt).body = block();
  --loops_do_;
  stmt->end_offset = token().offset;
  expect(Keyword::loop, error::expected_loop);
  if (!stmt->value && (at(Keyword::while_) || at(Keyword::until))) {
    stmt->at_end = true;
    condition();
  }
  return stmt;
}

// While expression block Wend
Stmt* Parser::while_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::while_);
  advance();
  stmt->value = expression();
  expect_statement_end();
  parts_of(*stmt).body = block();
  stmt->end_offset = token().offset;
  expect(Keyword::wend, error::expected_wend);
  return stmt;
}

// For name = expression To expression [ Step expression ] block Next
Stmt* Parser::for_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::for_);
  advance();
  if (at(Keyword::each)) return for_each(stmt);
  if (!at(TokenKind::name) && !at(TokenKind::dot) && !at(Keyword::me)) fail(error::expected_identifier);
  const std::size_t variable = token().offset;
  stmt->target = postfix(primary());
  if (stmt->target->kind != ExprKind::name) fail(error::invalid_for_variable, variable);
  expect(TokenKind::equal, error::expected_equals);
  stmt->value = expression();
  expect(Keyword::to, error::expected_to);
  parts_of(*stmt).to = expression();
  if (accept_word(Keyword::step)) parts_of(*stmt).step = expression();
  expect_statement_end();
  ++loops_for_;
  parts_of(*stmt).body = block();
  --loops_for_;
  stmt->end_offset = token().offset;
  expect(Keyword::next, error::expected_next);
  return stmt;
}

// For Each name In expression block Next
Stmt* Parser::for_each(Stmt* stmt) {
  advance();
  stmt->kind = StmtKind::for_each;
  if (!at(TokenKind::name)) fail(error::expected_identifier);
  const std::size_t variable = token().offset;
  stmt->target = postfix(primary());
  if (stmt->target->kind != ExprKind::name) fail(error::invalid_for_variable, variable);
  expect(Keyword::in, error::expected_in);
  stmt->value = expression();
  expect_statement_end();
  ++loops_for_;
  parts_of(*stmt).body = block();
  --loops_for_;
  stmt->end_offset = token().offset;
  expect(Keyword::next, error::expected_next);
  return stmt;
}

// With expression block End With
Stmt* Parser::with_statement() {
  const Nesting nesting(*this, nested_statements_);
  Stmt* stmt = make(StmtKind::with);
  advance();
  stmt->value = expression();
  expect_statement_end();
  parts_of(*stmt).body = block();
  stmt->end_offset = token().offset;
  expect_end(Keyword::with, error::expected_with);
  return stmt;
}

// Exit ( Do | For | Sub | Function | Property )
Stmt* Parser::exit_statement() {
  Stmt* stmt = make(StmtKind::exit_procedure);
  advance();
  const std::size_t what = token().offset;
  const ProcKind kind = procedure_->kind;
  bool fits = false;
  if (accept(Keyword::do_)) {
    stmt->kind = StmtKind::exit_do;
    fits = loops_do_ > 0;
  } else if (accept(Keyword::for_)) {
    stmt->kind = StmtKind::exit_for;
    fits = loops_for_ > 0;
  } else if (accept(Keyword::sub)) {
    fits = kind == ProcKind::sub;
  } else if (accept(Keyword::function)) {
    fits = kind == ProcKind::function;
  } else if (accept_word(Keyword::property)) {
    fits = kind >= ProcKind::get;
  }
  if (!fits) fail(error::invalid_exit, what);
  return stmt;
}

// On Error ( Resume Next | GoTo 0 )
Stmt* Parser::on_error() {
  Stmt* stmt = make(StmtKind::on_error_stop);
  advance();
  expect(Keyword::error, error::syntax);
  if (accept(Keyword::resume)) {
    expect(Keyword::next, error::expected_next);
    stmt->kind = StmtKind::on_error_resume;
    return stmt;
  }
  expect(Keyword::goto_, error::syntax);
  if (!at(TokenKind::integer) || token().integer != 0) fail(error::syntax);
  advance();
  return stmt;
}

// ReDim [ Preserve ] name ( bounds ) { , name ( bounds ) }
Stmt* Parser::redim() {
  Stmt* stmt = make(StmtKind::redim);
  advance();
  stmt->flag = accept(Keyword::preserve);
  auto variables = ast_->arena.list<VariableDecl>();
  do {
    VariableDecl variable;
    variable.offset = token().offset;
    variable.symbol = expect_name();
    variable.is_array = true;
    if (!at(TokenKind::open)) fail(error::expected_open_parenthesis);
    const std::span<Expr*> list = arguments_in_parentheses();
    if (list.empty()) fail(error::syntax);
    for (const Expr* bound : list) {
      if (bound->kind == ExprKind::missing) fail(error::syntax, bound->offset);
    }
    variable.bounds = list;
    variables.push_back(variable);
  } while (accept(TokenKind::comma));
  parts_of(*stmt).declarations = ast_->arena.copy(variables);
  return stmt;
}

// Erase list
Stmt* Parser::erase() {
  Stmt* stmt = make(StmtKind::erase);
  advance();
  stmt->arguments = ast_->arena.copy(argument_list());
  return stmt;
}

}  // namespace zrl::vbs
