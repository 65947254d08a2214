#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

namespace zrl::vbs {

namespace {

constexpr std::uint32_t widest_operand = 0xffff;

// `a op b` as `b op' a`.
Operator mirrored(Operator op) {
  switch (op) {
    case Operator::less:
      return Operator::greater;
    case Operator::greater:
      return Operator::less;
    case Operator::less_equal:
      return Operator::greater_equal;
    case Operator::greater_equal:
      return Operator::less_equal;
    default:
      return op;
  }
}

bool is_comparison(const Expr& expr) {
  return expr.kind == ExprKind::binary && expr.op >= Operator::equal && expr.op <= Operator::greater_equal;
}

// The opcode of a comparison, counted from its first one; the table has them in the order of Operator.
Op offset_op(Op first, Operator op) {
  return static_cast<Op>(static_cast<int>(first) + static_cast<int>(op) - static_cast<int>(Operator::equal));
}

}  // namespace

void ProcedureCompiler::load(const Value& value, Register target) {
  load_constant(shared_.constants.number(value), target);
}

void ProcedureCompiler::load_constant(std::uint32_t index, Register target) {
  code_.emit_wide(Op::load, target, index);
}

// A literal decides how a text and a number are compared; a sign or a constant's name makes it none.
bool ProcedureCompiler::is_literal(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::integer:
    case ExprKind::long_int:
    case ExprKind::number:
    case ExprKind::date:
    case ExprKind::boolean:
    case ExprKind::string:
      return true;
    default:
      return false;
  }
}

// Whether the expression is known now, and which constant it is.
bool ProcedureCompiler::constant_operand(const Expr& expr, std::uint32_t& index) {
  switch (expr.kind) {
    case ExprKind::integer:
    case ExprKind::long_int:
    case ExprKind::number:
    case ExprKind::date:
    case ExprKind::boolean:
      index = shared_.constants.number(constant_value(expr, shared_.ast));
      return true;
    case ExprKind::string:
      index = shared_.constants.literal(expr.string);
      return true;
    case ExprKind::negate:
      if (expr.left()->kind != ExprKind::integer && expr.left()->kind != ExprKind::long_int &&
          expr.left()->kind != ExprKind::number) {
        return false;
      }
      index = shared_.constants.number(constant_value(expr, shared_.ast));
      return true;
    case ExprKind::name: {
      const Meaning known = meaning(expr.symbol);
      if (known.kind != Meaning::Kind::constant) return false;
      const Type type = shared_.constants[known.index].type();
      if (type == Type::null || type == Type::empty || type == Type::object) return false;
      index = known.index;
      return true;
    }
    default:
      return false;
  }
}

// Whether the value can never be an object or an array, so that it may go straight into a variable.
bool ProcedureCompiler::scalar_result(const Expr& expr) const {
  switch (expr.kind) {
    case ExprKind::binary:
    case ExprKind::negate:
    case ExprKind::plus:
    case ExprKind::logical_not:
    case ExprKind::integer:
    case ExprKind::long_int:
    case ExprKind::number:
    case ExprKind::date:
    case ExprKind::string:
    case ExprKind::boolean:
    case ExprKind::null:
    case ExprKind::empty:
      return true;
    default:
      return false;
  }
}

// A register to read the value from, at once: a variable's own, or a temporary, which may be a reference.
Register ProcedureCompiler::operand(const Expr& expr) {
  if (expr.kind == ExprKind::name) {
    const Meaning known = meaning(expr.symbol);
    if (has_register(known)) return static_cast<Register>(known.index);
    const Register target = code_.temp();
    if (known.kind == Meaning::Kind::global) {
      code_.emit(Op::get_global, target, known.index);
    } else if (known.kind == Meaning::Kind::field) {
      code_.emit(Op::get_field, target, known.index);
    } else {
      name_into(expr, target);
    }
    return target;
  }
  const Register target = code_.temp();
  into(expr, target);
  return target;
}

bool ProcedureCompiler::has_register(const Meaning& known) const {
  return known.kind == Meaning::Kind::local || known.kind == Meaning::Kind::variable ||
         (global_level_ && known.kind == Meaning::Kind::global);
}

// The value itself into a register; nothing else is written to it before.
void ProcedureCompiler::into(const Expr& expr, Register target) {
  std::uint32_t index = 0;
  switch (expr.kind) {
    case ExprKind::name:
      return name_into(expr, target);
    case ExprKind::member:
      return member_into(expr, target);
    case ExprKind::call:
      return call_into(expr, target);
    case ExprKind::binary:
      return binary_into(expr, target);
    case ExprKind::negate:
      if (constant_operand(expr, index)) return load_constant(index, target);
      return unary_into(Op::negate, expr, target);
    case ExprKind::plus:
      return unary_into(Op::plus, expr, target);
    case ExprKind::logical_not:
      return unary_into(Op::logical_not, expr, target);
    case ExprKind::me:
      code_.emit(Op::me, target);
      return code_.holds(target);
    case ExprKind::new_object:
      code_.emit_extended(Op::new_object, target, 0, 0, expr.symbol);
      return code_.holds(target);
    case ExprKind::missing:
      return load(Value::missing(), target);
    case ExprKind::string:
      return load_constant(shared_.constants.literal(expr.string), target);
    default:
      return load(constant_value(expr, shared_.ast), target);
  }
}

void ProcedureCompiler::name_into(const Expr& expr, Register target) {
  const Meaning known = meaning(expr.symbol);
  switch (known.kind) {
    case Meaning::Kind::local:
    case Meaning::Kind::variable:
      code_.emit(Op::copy, target, known.index);
      return code_.holds(target);
    case Meaning::Kind::unknown:
      code_.emit_extended(Op::get_name, target, known.index, 0, expr.symbol);
      return code_.holds(target);
    case Meaning::Kind::undeclared:
    case Meaning::Kind::class_type:
      code_.emit_extended(Op::get_name, target, no_register, 0, expr.symbol);
      return code_.holds(target);
    case Meaning::Kind::constant:
      return load_constant(known.index, target);
    case Meaning::Kind::global:
      code_.emit(Op::get_global, target, known.index);
      code_.emit(Op::copy, target, target);
      return code_.holds(target);
    case Meaning::Kind::field:
      code_.emit(Op::get_field, target, known.index);
      code_.emit(Op::copy, target, target);
      return code_.holds(target);
    default: {
      const std::size_t top = code_.top();
      const Register result = invoke(expr, {}, target);
      if (result != target) code_.emit(Op::take, target, result);
      code_.release_to(top);
      return code_.holds(target);
    }
  }
}

void ProcedureCompiler::unary_into(Op op, const Expr& expr, Register target) {
  const std::size_t top = code_.top();
  const Register value = operand(*expr.left());
  code_.emit(op, target, value);
  code_.release_to(top);
}

// Operators in a row lean to the left: from the innermost operand outwards, without recursion.
void ProcedureCompiler::binary_into(const Expr& expr, Register target) {
  if (expr.op == Operator::concat) return concat_into(expr, target);
  const std::size_t top = code_.top();
  std::vector<const Expr*> chain{&expr};
  const auto leans = [](const Expr& left) {
    return left.kind == ExprKind::binary && left.op != Operator::concat;
  };
  while (leans(*chain.back()->left())) chain.push_back(chain.back()->left());
  std::optional<Register> left;
  while (chain.size() > 1) {
    const Register result = left ? *left : code_.temp();
    operator_into(*chain.back(), left, result);
    left = result;
    chain.pop_back();
  }
  operator_into(expr, left, target);
  code_.release_to(top);
}

// `left` holds the left operand where that is computed already.
void ProcedureCompiler::operator_into(const Expr& expr, std::optional<Register> left, Register target) {
  switch (expr.op) {
    case Operator::add:
      return arithmetic_into(Op::add, Op::add_k, expr, left, target);
    case Operator::subtract:
      return arithmetic_into(Op::subtract, Op::subtract_k, expr, left, target);
    case Operator::multiply:
      return arithmetic_into(Op::multiply, Op::multiply_k, expr, left, target);
    case Operator::int_divide:
      return arithmetic_into(Op::int_divide, Op::int_divide_k, expr, left, target);
    case Operator::mod:
      return arithmetic_into(Op::mod, Op::mod_k, expr, left, target);
    case Operator::divide:
      return arithmetic_into(Op::divide, Op::divide, expr, left, target);
    case Operator::power:
      return arithmetic_into(Op::power, Op::power, expr, left, target);
    case Operator::and_:
      return arithmetic_into(Op::logical_and, Op::logical_and, expr, left, target);
    case Operator::or_:
      return arithmetic_into(Op::logical_or, Op::logical_or, expr, left, target);
    case Operator::xor_:
      return arithmetic_into(Op::logical_xor, Op::logical_xor, expr, left, target);
    case Operator::eqv:
      return arithmetic_into(Op::logical_eqv, Op::logical_eqv, expr, left, target);
    case Operator::imp:
      return arithmetic_into(Op::logical_imp, Op::logical_imp, expr, left, target);
    case Operator::is:
      return arithmetic_into(Op::is, Op::is, expr, left, target);
    default:
      return comparison_into(expr, left, target);
  }
}

// `with_constant` is for a constant on the right; the same as `op` where there is no such opcode.
void ProcedureCompiler::arithmetic_into(Op op, Op with_constant, const Expr& expr,
                                        std::optional<Register> known_left, Register target) {
  const std::size_t top = code_.top();
  const Register left = known_left ? *known_left : operand(*expr.left());
  std::uint32_t index = 0;
  if (with_constant != op && constant_operand(*expr.right(), index) && index <= widest_operand) {
    code_.emit(with_constant, target, left, index);
  } else {
    const Register right = operand(*expr.right());
    code_.emit(op, target, left, right);
  }
  code_.release_to(top);
}

void ProcedureCompiler::comparison_into(const Expr& expr, std::optional<Register> known_left,
                                        Register target) {
  const std::size_t top = code_.top();
  const bool left_literal = !known_left && is_literal(*expr.left());
  const bool right_literal = is_literal(*expr.right());
  std::uint32_t index = 0;
  if (right_literal && !left_literal && constant_operand(*expr.right(), index) && index <= widest_operand) {
    const Register left = known_left ? *known_left : operand(*expr.left());
    code_.emit(offset_op(Op::equal_k, expr.op), target, left, index);
  } else if (left_literal && !right_literal && constant_operand(*expr.left(), index) &&
             index <= widest_operand) {
    code_.emit(offset_op(Op::equal_k, mirrored(expr.op)), target, operand(*expr.right()), index);
  } else {
    const Register left = known_left ? *known_left : operand(*expr.left());
    const Register right = operand(*expr.right());
    const std::int64_t literals = (left_literal ? 1 : 0) | (right_literal ? 2 : 0);
    if (literals == 0) {
      code_.emit(offset_op(Op::equal, expr.op), target, left, right);
    } else {
      code_.emit_extended(Op::compare_literals, target, left, right,
                          literals << 8 | static_cast<std::int64_t>(expr.op));
    }
  }
  code_.release_to(top);
}

// A chain of & becomes one instruction over registers in a row.
void ProcedureCompiler::concat_into(const Expr& expr, Register target) {
  const std::size_t top = code_.top();
  std::vector<const Expr*> parts;
  const Expr* left = &expr;
  while (left->kind == ExprKind::binary && left->op == Operator::concat &&
         (left == &expr || !left->parenthesised)) {
    parts.push_back(left->right());
    left = left->left();
  }
  parts.push_back(left);
  const Register first = code_.temp();
  for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
    const Register reg = part == parts.rbegin() ? first : code_.temp();
    if (!reference_into(**part, reg)) into(**part, reg);
    code_.release_to(reg + std::size_t{1});
  }
  code_.emit(Op::concat, target, first, static_cast<std::uint32_t>(parts.size()));
  code_.release_to(top);
}

// A register with the object of `object.member`: of the innermost With where nothing stands there.
Register ProcedureCompiler::object_of(const Expr& member) {
  if (member.left()) return reference_or_value(*member.left());
  if (withs_.empty()) {
    const Register none = code_.temp();
    code_.emit_extended(Op::fail, error::unqualified_reference, 0, 0, 0);
    return none;
  }
  return withs_.back();
}

// Members in a row, from the first object on.
void ProcedureCompiler::member_into(const Expr& expr, Register target) {
  const std::size_t top = code_.top();
  std::vector<const Expr*> chain{&expr};
  while (chain.back()->left() && chain.back()->left()->kind == ExprKind::member) {
    chain.push_back(chain.back()->left());
  }
  Register object = object_of(*chain.back());
  while (!chain.empty()) {
    const Register result = chain.size() == 1 ? target : code_.temp();
    subject_of_member(*chain.back());
    code_.emit_extended(Op::get_member, result, object, 0, chain.back()->symbol);
    code_.holds(result);
    object = result;
    chain.pop_back();
  }
  code_.release_to(top);
}

void ProcedureCompiler::call_into(const Expr& expr, Register target) {
  if (index_into(expr, target)) return;
  const std::size_t top = code_.top();
  const Register result = invoke(*expr.left(), expr.arguments(), target);
  if (result != target) code_.emit(Op::take, target, result);
  code_.release_to(top);
  code_.holds(target);
}

// variable(index)
bool ProcedureCompiler::index_into(const Expr& expr, Register target) {
  if (expr.arguments().size() != 1 || !indexes_variable(expr) ||
      expr.arguments()[0]->kind == ExprKind::missing) {
    return false;
  }
  const std::size_t top = code_.top();
  const Register array = reference_or_value(*expr.left());
  const Register index = operand(*expr.arguments()[0]);
  subject_of_index(*expr.left(), expr.arguments()[0]);
  code_.emit(Op::index, target, array, index);
  code_.release_to(top);
  code_.holds(target);
  return true;
}

// Jumps where the condition is not true.
void ProcedureCompiler::condition(const Expr& expr, Label& unless) {
  const std::size_t top = code_.top();
  std::uint32_t index = 0;
  const Expr* left = expr.left();
  const Expr* right = expr.right();
  Operator op = expr.op;
  bool direct = is_comparison(expr);
  bool with_constant = false;
  if (direct) {
    if (is_literal(*left)) {
      std::swap(left, right);
      op = mirrored(op);
    }
    with_constant = is_literal(*right) && constant_operand(*right, index) && index <= widest_operand;
    direct = !is_literal(*left) && with_constant == is_literal(*right);
  }
  if (!direct) {
    const Register value = operand(expr);
    if (code_.holds_only(value)) {
      code_.take_back(value);
      code_.jump(Op::jump_false_taken, value, unless);
    } else if (code_.holds_any()) {
      const Register result = code_.temp_behind_held();
      code_.emit(Op::test, result, value);
      code_.end_statement();
      code_.jump(Op::jump_false, result, unless);
    } else {
      code_.jump(Op::jump_false, value, unless);
    }
    return code_.release_to(top);
  }
  const Register a = operand(*left);
  const Register b = with_constant ? static_cast<Register>(index) : operand(*right);
  // Operands that may hold an object are cleared by the comparison itself, where nothing else is held.
  std::uint32_t clears = 0;
  if (code_.holds_any()) {
    if (code_.is_held(a)) clears |= 1;
    if (!with_constant && code_.is_held(b)) clears |= 2;
    const std::size_t cleared = clears == 3 ? 2 : clears == 0 ? 0 : 1;
    if (cleared == code_.held_count()) code_.forget_held();
  }
  if (code_.holds_any()) {
    const Register result = code_.temp_behind_held();
    code_.emit(offset_op(with_constant ? Op::equal_k : Op::equal, op), result, a, b);
    code_.end_statement();
    code_.jump(Op::jump_false, result, unless);
  } else {
    code_.jump_extended(offset_op(with_constant ? Op::unless_equal_k : Op::unless_equal, op), a, b, clears,
                        unless);
  }
  code_.release_to(top);
}

}  // namespace zrl::vbs
