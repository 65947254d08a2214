#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/parser.h"

namespace zrl::vbs {

namespace {

bool is_event(std::u16string_view lower_name) {
  return lower_name == u"class_initialize" || lower_name == u"class_terminate";
}

}  // namespace

// Option Explicit
void Parser::option_explicit() {
  advance();
  expect(Keyword::explicit_, error::syntax);
  ast_->option_explicit = true;
  expect_statement_end();
}

// Dim variable { , variable }
Stmt* Parser::dim(bool is_public) {
  Stmt* stmt = make(StmtKind::dim);
  auto arrays = ast_->arena.list<VariableDecl>();
  do {
    const VariableDecl declared = variable(is_public);
    procedure_->variables.push_back(declared);
    if (declared.is_array) arrays.push_back(declared);
  } while (accept(TokenKind::comma));
  if (arrays.empty()) stmt->kind = StmtKind::nothing;
  parts_of(*stmt).declarations = ast_->arena.copy(arrays);
  return stmt;
}

// variable: name [ ( [ bounds ] ) ]
VariableDecl Parser::variable(bool is_public) {
  VariableDecl declared;
  declared.offset = token().offset;
  declared.symbol = expect_name();
  declared.is_public = is_public;
  if (!accept(TokenKind::open)) return declared;
  declared.is_array = true;
  if (!accept(TokenKind::close)) declared.bounds = ast_->arena.copy(bounds());
  return declared;
}

// bounds: integer { , integer } )
HeapVector<Expr*> Parser::bounds() {
  auto list = ast_->arena.list<Expr*>();
  do {
    const bool number = at(TokenKind::integer) || at(TokenKind::long_int);
    if (!number) fail(error::expected_integer);
    list.push_back(literal());
  } while (accept(TokenKind::comma));
  expect(TokenKind::close, error::expected_close_parenthesis);
  return list;
}

// Const name = constant { , name = constant }
Stmt* Parser::constants() {
  Stmt* stmt = make(StmtKind::nothing);
  advance();
  do {
    ConstDecl declared;
    declared.offset = token().offset;
    declared.symbol = expect_name();
    expect(TokenKind::equal, error::expected_equals);
    declared.value = constant_value();
    // An operand that is no number is reported before an operator that is not allowed.
    const bool reckons = at(TokenKind::plus) || at(TokenKind::minus);
    if (reckons && ahead().kind == TokenKind::string) fail(error::expected_literal, ahead().offset);
    procedure_->constants.push_back(declared);
  } while (accept(TokenKind::comma));
  return stmt;
}

// constant: [ + | - ] constant | ( constant ) | literal
Expr* Parser::constant_value() {
  const Nesting nesting(*this, nested_statements_);
  if (at(TokenKind::minus) || at(TokenKind::plus)) {
    InnerExpr* expr = inner_node(at(TokenKind::minus) ? ExprKind::negate : ExprKind::plus);
    advance();
    expr->left_part = constant_value();
    return finish(expr);
  }
  if (accept(TokenKind::open)) {
    Expr* expr = constant_value();
    expect(TokenKind::close, error::expected_close_parenthesis);
    return expr;
  }
  const bool is_literal = token().kind >= TokenKind::integer && token().kind <= TokenKind::string;
  const bool is_word = at(Keyword::true_) || at(Keyword::false_) || at(Keyword::null) || at(Keyword::empty) ||
                       at(Keyword::nothing);
  if (!is_literal && !is_word) fail(error::expected_literal);
  return literal();
}

// ( Public | Private ) ( Const ... | [ Default ] procedure | variables )
void Parser::visible_declaration(Stmt*& stmt) {
  const bool is_public = at(Keyword::public_);
  advance();
  if (at(Keyword::const_)) {
    stmt = constants();
    return;
  }
  const bool is_default = at_word(Keyword::default_) && ahead().kind == TokenKind::keyword;
  if (is_default) fail(error::only_in_class);
  if (at(Keyword::sub) || at(Keyword::function)) return procedure(is_public, false);
  if (at_word(Keyword::property) && ahead().kind == TokenKind::keyword) {
    fail(error::only_in_class, ahead(2).offset);
  }
  if (at(Keyword::class_)) {
    class_declaration();
    return;
  }
  if (procedure_ != &ast_->main) fail(error::syntax);
  stmt = dim(is_public);
}

// Also within a block of the top level: it is there even where the block is not run.
void Parser::procedure(bool is_public, bool is_default) {
  if (procedure_ != &ast_->main) fail(error::syntax);
  ast_->procedures.push_back(procedure_declaration(is_public, is_default));
}

// ( Sub | Function | Property ( Get | Let | Set ) ) name [ parameters ] block End ...
std::unique_ptr<ProcDecl> Parser::procedure_declaration(bool is_public, bool is_default) {
  auto declared = std::make_unique<ProcDecl>();
  declared->offset = token().offset;
  declared->is_public = is_public;
  declared->is_default = is_default;
  if (accept(Keyword::sub)) {
    declared->kind = ProcKind::sub;
  } else if (accept(Keyword::function)) {
    declared->kind = ProcKind::function;
  } else {
    advance();
    if (accept(Keyword::get)) {
      declared->kind = ProcKind::get;
    } else if (accept(Keyword::let)) {
      declared->kind = ProcKind::let;
    } else if (accept(Keyword::set)) {
      declared->kind = ProcKind::set;
    } else {
      fail(error::expected_accessor);
    }
  }
  declared->name_offset = token().offset;
  declared->symbol = expect_name();
  if (at(TokenKind::close)) fail(error::expected_open_parenthesis);
  parameters(*declared);
  procedure_body(*declared);
  return declared;
}

// parameters: ( [ [ ByRef | ByVal ] name [ ( ) ] { , ... } ] )
void Parser::parameters(ProcDecl& procedure) {
  if (!accept(TokenKind::open)) return;
  if (accept(TokenKind::close)) return;
  std::unordered_set<SymbolId> names;
  do {
    Parameter parameter;
    if (accept(Keyword::byval)) {
      parameter.by_value = true;
    } else {
      accept(Keyword::byref);
    }
    const std::size_t offset = token().offset;
    parameter.symbol = expect_name();
    if (accept(TokenKind::open)) {
      expect(TokenKind::close, error::expected_close_parenthesis);
      parameter.is_array = true;
    }
    if (!names.insert(symbols_.canonical(parameter.symbol)).second) fail(error::name_redefined, offset);
    procedure.parameters.push_back(parameter);
  } while (accept(TokenKind::comma));
  expect(TokenKind::close, error::expected_close_parenthesis);
}

// block, or statement on the line of the head
void Parser::procedure_block(HeapVector<Stmt*>& body) {
  if (!at_statement_end() && !at(Keyword::end)) {
    if (Stmt* stmt = statement()) body.push_back(stmt);
    if (at(Keyword::end)) return;
    expect_statement_end();
  }
  block(body);
}

void Parser::procedure_body(ProcDecl& procedure) {
  if ((procedure.kind == ProcKind::let || procedure.kind == ProcKind::set) && procedure.parameters.empty()) {
    fail(error::property_needs_argument);
  }
  ProcDecl* const outer = std::exchange(procedure_, &procedure);
  const int loops_do = std::exchange(loops_do_, 0);
  const int loops_for = std::exchange(loops_for_, 0);
  const int blocks = std::exchange(blocks_, 0);
  auto body = ast_->arena.list<Stmt*>();
  procedure_block(body);
  procedure.body = ast_->arena.copy(body);
  procedure_ = outer;
  loops_do_ = loops_do;
  loops_for_ = loops_for;
  blocks_ = blocks;
  procedure.end_offset = token().offset;
  expect(Keyword::end, error::expected_end);
  if (procedure.kind == ProcKind::sub) {
    expect(Keyword::sub, error::expected_sub);
  } else if (procedure.kind == ProcKind::function) {
    expect(Keyword::function, error::expected_function);
  } else {
    expect(Keyword::property, error::expected_property);
  }
}

// Class name { member } End Class
void Parser::class_declaration() {
  if (procedure_ != &ast_->main || blocks_ > 0) fail(error::syntax);
  auto declared = std::make_unique<ClassDecl>();
  advance();
  declared->name_offset = token().offset;
  declared->symbol = expect_name();
  expect_statement_end();
  while (!at(Keyword::end)) {
    class_member(*declared);
    if (!at_end_of(Keyword::class_)) expect_statement_end();
  }
  advance();
  expect(Keyword::class_, error::expected_class);
  check_class(*declared);
  ast_->classes.push_back(std::move(declared));
}

// member: [ Public | Private ] ( [ Default ] procedure | variables ) | Dim variables
void Parser::class_member(ClassDecl& declaration) {
  if (accept(Keyword::dim)) return class_fields(declaration, true);
  const bool visible = at(Keyword::public_) || at(Keyword::private_);
  const bool is_public = !at(Keyword::private_);
  if (visible) advance();
  bool is_default = false;
  if (at_word(Keyword::default_) && (ahead().kind == TokenKind::keyword || ahead().kind == TokenKind::name)) {
    if (!visible || !is_public) fail(error::default_not_public);
    advance();
    is_default = true;
  }
  const bool is_property =
      at_word(Keyword::property) && (ahead().kind == TokenKind::keyword || ahead().kind == TokenKind::name);
  if (at(Keyword::sub) || at(Keyword::function) || is_property) {
    declaration.procedures.push_back(procedure_declaration(is_public, is_default));
    return;
  }
  if (is_default) fail(error::misplaced_default);
  if (!visible) fail(error::expected_end);
  class_fields(declaration, is_public);
}

void Parser::class_fields(ClassDecl& declaration, bool is_public) {
  do {
    declaration.fields.push_back(variable(is_public));
  } while (accept(TokenKind::comma));
}

void Parser::check_class(const ClassDecl& declaration) const {
  std::unordered_set<SymbolId> fields;
  for (const VariableDecl& field : declaration.fields) fields.insert(symbols_.canonical(field.symbol));
  std::unordered_multimap<SymbolId, const ProcDecl*> before;
  const ProcDecl* default_procedure = nullptr;
  for (const auto& declared : declaration.procedures) {
    const ProcDecl& procedure = *declared;
    const SymbolId name = symbols_.canonical(procedure.symbol);
    const bool accessor = procedure.kind >= ProcKind::get;
    const bool writes = procedure.kind == ProcKind::let || procedure.kind == ProcKind::set;
    if (is_event(symbols_.name(name)) && !procedure.parameters.empty()) {
      fail(error::class_event_arguments, procedure.name_offset);
    }
    if (procedure.is_default) {
      if (writes) fail(error::default_only_get, procedure.name_offset);
      if (default_procedure) fail(error::several_defaults, procedure.name_offset);
      default_procedure = &procedure;
    }
    if (fields.contains(name)) fail(error::name_redefined, procedure.name_offset);
    const auto [first, end] = before.equal_range(name);
    for (auto same = first; same != end; ++same) {
      const ProcDecl& other = *same->second;
      if (!accessor || other.kind < ProcKind::get || other.kind == procedure.kind) {
        fail(error::name_redefined, procedure.name_offset);
      }
      const bool other_writes = other.kind == ProcKind::let || other.kind == ProcKind::set;
      if (procedure.parameters.size() - (writes ? 1 : 0) !=
          other.parameters.size() - (other_writes ? 1 : 0)) {
        fail(error::inconsistent_arguments, procedure.name_offset);
      }
    }
    before.emplace(name, &procedure);
  }
  fields.clear();
  for (const VariableDecl& field : declaration.fields) {
    if (!fields.insert(symbols_.canonical(field.symbol)).second) fail(error::name_redefined, field.offset);
  }
}

}  // namespace zrl::vbs
