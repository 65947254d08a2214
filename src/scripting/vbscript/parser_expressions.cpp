#include <algorithm>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/parser.h"

namespace zrl::vbs {

namespace {

// The compiler walks the tree recursively, but for operators and members in a row.
constexpr int deepest_tree = 1500;
constexpr int longest_chain = 10'000;

// How tightly operators bind: 1 loosest. `Not` is 6 and binds looser than comparisons.
constexpr int precedence_of_not = 6;
constexpr int precedence_of_power = 13;

struct Binary {
  Operator op = Operator::imp;
  int precedence = 0;  // 0: not an operator
};

Binary keyword_operator(Keyword keyword) {
  switch (keyword) {
    case Keyword::imp:
      return {Operator::imp, 1};
    case Keyword::eqv:
      return {Operator::eqv, 2};
    case Keyword::xor_:
      return {Operator::xor_, 3};
    case Keyword::or_:
      return {Operator::or_, 4};
    case Keyword::and_:
      return {Operator::and_, 5};
    case Keyword::is:
      return {Operator::is, 7};
    case Keyword::mod:
      return {Operator::mod, 10};
    default:
      return {};
  }
}

Binary binary_operator(const Token& token) {
  switch (token.kind) {
    case TokenKind::keyword:
      return keyword_operator(token.keyword);
    case TokenKind::equal:
      return {Operator::equal, 7};
    case TokenKind::not_equal:
      return {Operator::not_equal, 7};
    case TokenKind::less:
      return {Operator::less, 7};
    case TokenKind::greater:
      return {Operator::greater, 7};
    case TokenKind::less_equal:
      return {Operator::less_equal, 7};
    case TokenKind::greater_equal:
      return {Operator::greater_equal, 7};
    case TokenKind::ampersand:
      return {Operator::concat, 8};
    case TokenKind::plus:
      return {Operator::add, 9};
    case TokenKind::minus:
      return {Operator::subtract, 9};
    case TokenKind::backslash:
      return {Operator::int_divide, 11};
    case TokenKind::star:
      return {Operator::multiply, 12};
    case TokenKind::slash:
      return {Operator::divide, 12};
    case TokenKind::caret:
      return {Operator::power, precedence_of_power};
    default:
      return {};
  }
}

}  // namespace

Expr* Parser::node(ExprKind kind) {
  Expr* expr = ast_->arena.make<Expr>();
  expr->kind = kind;
  expr->offset = token().offset;
  return expr;
}

InnerExpr* Parser::inner_node(ExprKind kind) {
  auto* expr = ast_->arena.make<InnerExpr>();
  expr->kind = kind;
  expr->inner = true;
  expr->offset = token().offset;
  return expr;
}

// Whether the compiler takes `expr` and its left part in one go.
bool continues_chain(const Expr& expr) {
  const Expr* left = expr.left();
  if (!left || left->kind != expr.kind) return false;
  if (expr.kind == ExprKind::member) return true;
  const bool joined = expr.op == Operator::concat;
  return expr.kind == ExprKind::binary && joined == (left->op == Operator::concat) &&
         !(joined && left->parenthesised);
}

Expr* Parser::finish(Expr* expr) {
  const bool chained = continues_chain(*expr);
  int depth = 0;
  if (expr->left()) depth = expr->left()->depth - (chained ? 1 : 0);
  if (expr->right()) depth = std::max<int>(depth, expr->right()->depth);
  for (const Expr* argument : expr->arguments()) depth = std::max<int>(depth, argument->depth);
  const int chain = chained ? expr->left()->chain + 1 : 0;
  if (depth >= deepest_tree || chain >= longest_chain) fail(error::stack_space);
  expr->depth = static_cast<std::uint16_t>(depth + 1);
  expr->chain = static_cast<std::uint16_t>(chain);
  return expr;
}

// expression: operand { operator operand }, by precedence, all to the left
Expr* Parser::expression() {
  const Nesting nesting(*this, nested_expressions_);
  return binary(operand(), 1);
}

Expr* Parser::binary(Expr* left, int lowest) {
  while (true) {
    const Binary op = binary_operator(token());
    if (op.precedence < lowest || op.precedence == 0) return left;
    InnerExpr* expr = inner_node(ExprKind::binary);
    advance();
    expr->op = op.op;
    expr->left_part = left;
    Expr* right = operand();
    while (true) {
      const Binary next = binary_operator(token());
      if (next.precedence <= op.precedence) break;
      right = binary(right, op.precedence + 1);
    }
    expr->right_part = right;
    left = finish(expr);
  }
}

// operand: Not operand-of-comparisons | unary
Expr* Parser::operand() {
  if (!at(Keyword::not_)) return unary();
  const Nesting nesting(*this, nested_expressions_);
  InnerExpr* expr = inner_node(ExprKind::logical_not);
  advance();
  expr->left_part = binary(operand(), precedence_of_not + 1);
  return finish(expr);
}

// unary: ( + | - ) unary | New name [ .name ... ] | postfix. The sign binds tighter than ^.
Expr* Parser::unary() {
  if (at(TokenKind::minus) || at(TokenKind::plus)) {
    const Nesting nesting(*this, nested_expressions_);
    InnerExpr* expr = inner_node(at(TokenKind::minus) ? ExprKind::negate : ExprKind::plus);
    advance();
    expr->left_part = unary();
    return finish(expr);
  }
  if (at(Keyword::new_)) {
    Expr* expr = node(ExprKind::new_object);
    advance();
    expr->symbol = expect_name();
    return at(TokenKind::dot) ? postfix(expr) : expr;
  }
  return postfix(primary());
}

// primary: name | Me | .name | literal | ( expression )
Expr* Parser::primary() {
  if (at(TokenKind::name)) {
    Expr* expr = node(ExprKind::name);
    expr->symbol = token().symbol;
    advance();
    return expr;
  }
  if (at(Keyword::me)) {
    Expr* expr = node(ExprKind::me);
    advance();
    return expr;
  }
  if (at(TokenKind::dot)) {
    InnerExpr* expr = inner_node(ExprKind::member);
    advance();
    expr->symbol = expect_name();
    return expr;
  }
  if (accept(TokenKind::open)) {
    Expr* expr = expression();
    expect(TokenKind::close, error::expected_close_parenthesis);
    expr->parenthesised = true;
    return expr;
  }
  return literal();
}

// literal: number | string | date | True | False | Null | Empty | Nothing
Expr* Parser::literal() {
  Expr* expr = node(ExprKind::empty);
  const Token& current = token();
  switch (current.kind) {
    case TokenKind::integer:
    case TokenKind::long_int:
      expr->kind = current.kind == TokenKind::integer ? ExprKind::integer : ExprKind::long_int;
      expr->integer = current.integer;
      break;
    case TokenKind::number:
    case TokenKind::date:
      expr->kind = current.kind == TokenKind::number ? ExprKind::number : ExprKind::date;
      expr->number = current.number;
      break;
    case TokenKind::string:
      expr->kind = ExprKind::string;
      expr->string = current.constant;
      break;
    case TokenKind::keyword:
      switch (current.keyword) {
        case Keyword::true_:
        case Keyword::false_:
          expr->kind = ExprKind::boolean;
          expr->integer = current.keyword == Keyword::true_ ? -1 : 0;
          break;
        case Keyword::null:
          expr->kind = ExprKind::null;
          break;
        case Keyword::empty:
          break;
        case Keyword::nothing:
          expr->kind = ExprKind::nothing;
          break;
        default:
          fail(error::syntax);
      }
      break;
    default:
      fail(current.kind == TokenKind::end_of_line || current.kind == TokenKind::end_of_text ||
                   current.kind == TokenKind::colon
               ? error::expected_expression
               : error::syntax);
  }
  advance();
  return expr;
}

// postfix: primary { . name | ( arguments ) }
Expr* Parser::postfix(Expr* expr, bool statement) {
  while (true) {
    if (statement && argument_follows()) return expr;
    if (at(TokenKind::dot)) {
      if (expr->kind >= ExprKind::integer && expr->kind <= ExprKind::empty && !expr->parenthesised)
        return expr;
      InnerExpr* member = inner_node(ExprKind::member);
      advance();
      member->left_part = expr;
      member->symbol = expect_name();
      expr = finish(member);
    } else if (at(TokenKind::open)) {
      if (expr->kind >= ExprKind::integer && expr->kind <= ExprKind::nothing) return expr;
      InnerExpr* call = inner_node(ExprKind::call);
      call->offset = expr->offset;
      call->left_part = expr;
      call->list = arguments_in_parentheses();
      expr = finish(call);
    } else {
      return expr;
    }
  }
}

// In a call statement a blank may end the callee: before the dot of a With, and before an expression
// in parentheses whose member is taken. A dot that begins a continued line goes on with the chain above.
bool Parser::argument_follows() const {
  if (!token().blank_before) return false;
  if (at(TokenKind::dot)) return !token().continued_before;
  if (!at(TokenKind::open)) return false;
  std::size_t place = position_;
  int depth = 0;
  do {
    const TokenKind kind = tokens_[place++].kind;
    if (kind == TokenKind::end_of_line) return false;
    depth += kind == TokenKind::open ? 1 : kind == TokenKind::close ? -1 : 0;
  } while (depth > 0);
  return tokens_[place].kind == TokenKind::dot && !tokens_[place].blank_before;
}

// arguments: ( [ list ] )
std::span<Expr*> Parser::arguments_in_parentheses() {
  advance();
  if (accept(TokenKind::close)) return {};
  const HeapVector<Expr*> list = argument_list();
  expect(TokenKind::close, error::expected_close_parenthesis);
  return ast_->arena.copy(list);
}

// list: [ expression ] { , [ expression ] }
HeapVector<Expr*> Parser::argument_list() {
  auto list = ast_->arena.list<Expr*>();
  do {
    const bool missing =
        at(TokenKind::comma) || at(TokenKind::close) || (at_statement_end() && !list.empty());
    list.push_back(missing ? node(ExprKind::missing) : expression());
  } while (accept(TokenKind::comma));
  return list;
}

}  // namespace zrl::vbs
