#include <algorithm>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

namespace zrl::vbs {

ProcedureCompiler::ProcedureCompiler(ModuleCompiler& shared, const ProcDecl& declaration, Proc& proc,
                                     const ClassInfo* own_class, bool global_level)
    : shared_(shared),
      context_(shared.context),
      declaration_(declaration),
      proc_(proc),
      own_class_(own_class),
      global_level_(global_level),
      code_(proc) {}

void ProcedureCompiler::compile() {
  declare_parameters();
  declare_variables();
  declare_constants();
  settle_names();
  if (global_level_) {
    // Temporary values lie behind the global variables; others may be declared while the code runs.
    code_.start_temporaries_at(context_.globals.used());
  }
  proc_.first_temp = static_cast<std::uint32_t>(code_.top());
  code_.keep_below(code_.top());
  code_.place(declaration_.offset);
  if (context_.evaluate) {
    code_.place(declaration_.body[0]->offset);
    const Register result = code_.temp();
    into(*declaration_.body[0]->value, result);
    code_.emit(Op::take, global_level_ ? proc_.first_temp : 0, result);
  } else {
    for (const Stmt* stmt : declaration_.body) statement(*stmt);
  }
  code_.place(declaration_.end_offset);
  code_.emit(Op::finish);
  proc_.registers = static_cast<std::uint32_t>(code_.most() + 1);
  proc_.plain = !proc_.any_by_value && proc_.implicit.empty() && !proc_.global_frame && !proc_.executed;
  if (global_level_ && code_.most() + 1 > Globals::most) throw CompileFailure{1001, 0};
  if (code_.most() >= no_register) throw CompileFailure{1001, 0};
}

namespace {

std::uint32_t start_of(const Expr& expr) {
  const Expr* first = &expr;
  while (first->left() && (first->kind == ExprKind::member || first->kind == ExprKind::call))
    first = first->left();
  return first->offset;
}

}  // namespace

void ProcedureCompiler::subject_of_member(const Expr& member) {
  if (!member.left()) return;
  const std::uint32_t start = start_of(*member.left());
  code_.subject(true, {start, member.offset - start}, {});
}

void ProcedureCompiler::subject_of_index(const Expr& callee, const Expr* index) {
  if (callee.kind != ExprKind::name) return;
  const auto extent = [&](const Expr& name) -> Extent {
    return {name.offset, static_cast<std::uint32_t>(context_.symbols.name(name.symbol).size())};
  };
  const bool named = index && index->kind == ExprKind::name;
  code_.subject(false, extent(callee), named ? extent(*index) : Extent());
}

void ProcedureCompiler::block(Block block) {
  for (const Stmt* stmt : block) statement(*stmt);
}

void ProcedureCompiler::statement(const Stmt& stmt) {
  const std::size_t top = code_.top();
  code_.place(stmt.offset);
  switch (stmt.kind) {
    case StmtKind::expression_call:
      call(stmt);
      break;
    case StmtKind::let:
    case StmtKind::set:
      assign(stmt);
      break;
    case StmtKind::dim:
      dim(stmt);
      break;
    case StmtKind::redim:
      redim(stmt);
      break;
    case StmtKind::erase:
      erase(stmt);
      break;
    case StmtKind::if_:
      if_statement(stmt);
      break;
    case StmtKind::select:
      select(stmt);
      break;
    case StmtKind::do_:
    case StmtKind::while_:
      do_loop(stmt);
      break;
    case StmtKind::for_:
      for_loop(stmt);
      break;
    case StmtKind::for_each:
      for_each(stmt);
      break;
    case StmtKind::with:
      with(stmt);
      break;
    case StmtKind::exit_do:
    case StmtKind::exit_for:
      exit(stmt);
      break;
    case StmtKind::exit_procedure:
      code_.emit(Op::finish);
      break;
    case StmtKind::on_error_resume:
      code_.emit(Op::on_error, 1);
      break;
    case StmtKind::on_error_stop:
      code_.emit(Op::on_error, 0);
      break;
    case StmtKind::nothing:
      break;
  }
  code_.end_statement();
  code_.release_to(top);
}

void ProcedureCompiler::call(const Stmt& stmt) {
  invoke(*stmt.target, stmt.arguments, SIZE_MAX);
}

// Whether the target is a variable whose register can be written to directly.
bool ProcedureCompiler::direct_register(const Expr& target, Register& reg) const {
  if (target.kind != ExprKind::name) return false;
  const Meaning known = meaning(target.symbol);
  if (global_level_ && known.kind == Meaning::Kind::global) {
    reg = static_cast<Register>(known.index);
    return true;
  }
  if (known.kind != Meaning::Kind::local) return false;
  reg = static_cast<Register>(known.index);
  return true;
}

void ProcedureCompiler::assign(const Stmt& stmt) {
  const bool set = stmt.kind == StmtKind::set;
  const Expr& target = *stmt.target;
  switch (target.kind) {
    case ExprKind::name:
      return assign_name(target, *stmt.value, set);
    case ExprKind::member:
      return assign_member(target, target.symbol, {}, *stmt.value, set);
    case ExprKind::call:
      return assign_call(target, *stmt.value, set);
    default:
      throw CompileFailure{error::syntax, target.offset};
  }
}

// s = s & more
bool ProcedureCompiler::append_to(const Expr& target, const Expr& value) {
  if (value.kind != ExprKind::binary || value.op != Operator::concat) return false;
  const Expr* first = &value;
  std::vector<Expr*> rest;
  while (first->kind == ExprKind::binary && first->op == Operator::concat &&
         (first == &value || !first->parenthesised)) {
    rest.push_back(first->right());
    first = first->left();
  }
  if (first->kind != ExprKind::name ||
      context_.symbols.canonical(first->symbol) != context_.symbols.canonical(target.symbol)) {
    return false;
  }
  const Meaning known = meaning(target.symbol);
  const bool variable = known.kind == Meaning::Kind::local || known.kind == Meaning::Kind::variable ||
                        known.kind == Meaning::Kind::global || known.kind == Meaning::Kind::field;
  if (!variable) return false;
  // The rest first, in one piece; then it is appended in place.
  const Register piece = code_.temp();
  if (rest.size() == 1) {
    if (!reference_into(*rest[0], piece)) into(*rest[0], piece);
  } else {
    for (auto part = rest.rbegin(); part != rest.rend(); ++part) {
      const Register reg = part == rest.rbegin() ? piece : code_.temp();
      if (!reference_into(**part, reg)) into(**part, reg);
      code_.release_to(reg + std::size_t{1});
    }
    code_.emit(Op::concat, piece, piece, static_cast<std::uint32_t>(rest.size()));
  }
  code_.release_to(piece + std::size_t{1});
  Register reg = 0;
  if (!direct_register(target, reg)) {
    reg = code_.temp();
    reference_into(target, reg);
  }
  code_.emit(Op::append, reg, piece);
  return true;
}

void ProcedureCompiler::assign_name(const Expr& target, const Expr& value, bool set) {
  using Kind = Meaning::Kind;
  const Meaning known = meaning(target.symbol);
  if (!set && append_to(target, value)) return;
  Register reg = 0;
  const bool direct = direct_register(target, reg);
  if (direct && !set && scalar_result(value)) return into(value, reg);
  if (!set && value.kind == ExprKind::name && has_register(meaning(value.symbol)) &&
      (direct || known.kind == Kind::variable)) {
    code_.emit(Op::let, direct ? reg : known.index, meaning(value.symbol).index);
    return;
  }
  if (known.kind == Kind::own_member) {
    // A property of the class itself.
    const Register window = code_.temp(2);
    into(value, static_cast<Register>(window + 1));
    code_.emit_extended(Op::put_own, window, 0, set ? 1 : 0, target.symbol);
    return code_.holds(window), code_.holds(window + std::size_t{1});
  }
  const bool assignable = direct || known.kind == Kind::variable || known.kind == Kind::unknown ||
                          known.kind == Kind::global || known.kind == Kind::field;
  const Register from = set || !assignable ? operand(value) : code_.temp();
  if (!set && assignable) into(value, from);
  if (!assignable && known.kind != Kind::undeclared) {
    code_.emit_extended(Op::fail, error::illegal_assignment, 0, 0, target.symbol);
    return;
  }
  if (!set && assignable) {
    if (direct || known.kind == Kind::variable || known.kind == Kind::unknown) {
      code_.emit(Op::let_taken, direct ? reg : known.index, from);
    } else {
      code_.emit(known.kind == Kind::global ? Op::let_global : Op::let_field, known.index, from);
    }
    return code_.take_back(from);
  }
  if (!direct) {
    reg = code_.temp();
    variable_reference(target, reg);
  }
  if (set) subject_of_index(value, nullptr);
  code_.emit(set ? Op::set : Op::let, reg, from);
}

// A reference to the variable that a name stands for, into a temporary.
void ProcedureCompiler::variable_reference(const Expr& target, Register target_register) {
  const Meaning known = meaning(target.symbol);
  if (known.kind == Meaning::Kind::unknown) {
    code_.emit(Op::refer, target_register, known.index);
  } else if (known.kind == Meaning::Kind::undeclared) {
    code_.emit_extended(Op::refer_name, target_register, 0, 0, target.symbol);
  } else if (!reference_into(target, target_register)) {
    code_.emit_extended(Op::fail, error::illegal_assignment, 0, 0, target.symbol);
  }
}

// callee(arguments) = value
void ProcedureCompiler::assign_call(const Expr& target, const Expr& value, bool set) {
  const Expr& callee = *target.left();
  if (callee.kind == ExprKind::member) {
    return assign_member(callee, callee.symbol, target.arguments(), value, set);
  }
  const bool of_variable = indexes_variable(target) || is_own_result(callee);
  if (of_variable && !set && target.arguments().size() == 1 &&
      target.arguments()[0]->kind != ExprKind::missing) {
    const Register array = reference_or_value(callee);
    std::uint32_t constant = 0;
    if (constant_operand(value, constant) && constant <= 0xffff) {
      const Register index = operand(*target.arguments()[0]);
      subject_of_index(callee, target.arguments()[0]);
      code_.emit(Op::let_index_k, array, index, constant);
      return;
    }
    const Register from = operand(value);
    const Register index = operand(*target.arguments()[0]);
    subject_of_index(callee, target.arguments()[0]);
    code_.emit(Op::let_index, array, index, from);
    return;
  }
  const std::size_t count = target.arguments().size();
  if (callee.kind == ExprKind::name && !of_variable) {
    const Meaning known = meaning(callee.symbol);
    if (known.kind == Meaning::Kind::own_member || (known.kind == Meaning::Kind::local && own_class_)) {
      const Register window = code_.temp(count + 2);
      into(value, static_cast<Register>(window + count + 1));
      const std::size_t after = code_.top();
      for (std::size_t i = 0; i < count; ++i) {
        into(*target.arguments()[i], static_cast<Register>(window + 1 + i));
        code_.release_to(after);
      }
      code_.emit_extended(Op::put_own, window, static_cast<std::uint32_t>(count), set ? 1 : 0, callee.symbol);
      for (std::size_t i = 0; i < count + 2; ++i) code_.holds(window + i);
      return;
    }
  }
  const Register window = code_.temp(count + 2);
  const std::size_t after = code_.top();
  if (of_variable || callee.kind != ExprKind::name) {
    if (element_depth(callee) > 0) {
      // An array in an array is changed in place.
      refer_index(callee, window);
    } else if (!reference_into(callee, window)) {
      into(callee, window);
    }
  } else {
    const Meaning known = meaning(callee.symbol);
    const bool called = known.kind == Meaning::Kind::procedure || known.kind == Meaning::Kind::builtin ||
                        known.kind == Meaning::Kind::special;
    if (called) {
      code_.emit_extended(Op::fail, error::illegal_assignment, 0, 0, callee.symbol);
      return;
    }
    if (known.kind == Meaning::Kind::unknown || known.kind == Meaning::Kind::undeclared) {
      variable_reference(callee, window);
    } else {
      into(callee, window);
    }
  }
  code_.holds(window);
  into(value, static_cast<Register>(window + count + 1));
  code_.holds(window + count + 1);
  for (std::size_t i = 0; i < count; ++i) {
    into(*target.arguments()[i], static_cast<Register>(window + 1 + i));
    code_.holds(window + 1 + i);
  }
  code_.release_to(after);
  subject_of_index(callee, nullptr);
  code_.emit(Op::put_index, window, static_cast<std::uint32_t>(count), set ? 1 : 0);
}

// object.symbol(arguments) = value
void ProcedureCompiler::assign_member(const Expr& member, SymbolId symbol, std::span<Expr*> arguments,
                                      const Expr& value, bool set) {
  const std::size_t count = arguments.size();
  const Register window = code_.temp(count + 2);
  const std::size_t after = code_.top();
  const Register object = object_of(member);
  code_.emit(Op::copy, window, object);
  code_.holds(window);
  code_.release_to(after);
  into(value, static_cast<Register>(window + count + 1));
  code_.holds(window + count + 1);
  for (std::size_t i = 0; i < count; ++i) {
    into(*arguments[i], static_cast<Register>(window + 1 + i));
    code_.holds(window + 1 + i);
  }
  code_.release_to(after);
  subject_of_member(member);
  code_.emit_extended(Op::put_member, window, static_cast<std::uint32_t>(count), set ? 1 : 0, symbol);
}

// The way past the other branches is a place of its own: after an error in a branch's last statement the
// machine goes on there, not in the branch that follows.
void ProcedureCompiler::leave_branch(std::uint32_t offset, Label& end) {
  code_.place(offset);
  code_.jump(Op::jump, 0, end);
}

void ProcedureCompiler::if_statement(const Stmt& stmt) {
  Label end;
  for (std::size_t i = 0; i < stmt.parts().branches.size(); ++i) {
    const Branch& branch = stmt.parts().branches[i];
    if (i > 0) code_.place(branch.offset);
    Label next;
    if (branch.condition) condition(*branch.condition, next);
    block(branch.body);
    if (i + 1 < stmt.parts().branches.size()) leave_branch(branch.offset, end);
    code_.bind(next);
  }
  code_.bind(end);
}

void ProcedureCompiler::select(const Stmt& stmt) {
  const std::size_t at_value = code_.last_place();
  const std::size_t outer = code_.kept();
  const Register value = code_.temp();
  const bool value_literal = is_literal(*stmt.value);
  into(*stmt.value, value);
  code_.emit(Op::let, value, value);
  code_.take_back(value);
  code_.keep_below(code_.top());
  code_.end_statement();
  Label end;
  std::vector<std::size_t> to_patch;
  for (const Branch& branch : stmt.parts().branches) {
    Label body;
    Label next;
    if (!branch.tests.empty()) {
      to_patch.clear();
      for (std::size_t i = 0; i < branch.tests.size(); ++i) {
        to_patch.push_back(code_.place(branch.tests[i]->offset));
        const std::size_t top = code_.top();
        const Register test = operand(*branch.tests[i]);
        const Register result = code_.temp_behind_held();
        const int literals = (value_literal ? 1 : 0) | (is_literal(*branch.tests[i]) ? 2 : 0);
        code_.emit_extended(Op::case_equal, result, value, test, literals);
        code_.end_statement();
        if (i + 1 < branch.tests.size()) {
          code_.jump(Op::jump_true, result, body);
        } else {
          code_.jump(Op::jump_false, result, next);
        }
        code_.release_to(top);
      }
    }
    code_.bind(body);
    for (const std::size_t at : to_patch) code_.resume_at(at, body);
    to_patch.clear();
    code_.place(branch.offset);
    block(branch.body);
    leave_branch(branch.offset, end);
    code_.bind(next);
  }
  code_.bind(end);
  code_.resume_at(at_value, end);
  code_.place(stmt.end_offset);
  code_.keep_below(outer);
  code_.emit(Op::clear, value, 1);
}

// Dim name(bounds), for each array
void ProcedureCompiler::dim(const Stmt& stmt) {
  for (const VariableDecl& variable : stmt.parts().declarations) {
    Expr name;
    name.kind = ExprKind::name;
    name.symbol = variable.symbol;
    const std::size_t top = code_.top();
    const Register target = code_.temp();
    variable_reference(name, target);
    const Register first = code_.top() < no_register ? static_cast<Register>(code_.top()) : Register{0};
    for (const Expr* bound : variable.bounds) into(*bound, code_.temp());
    code_.emit(Op::dim, target, first, static_cast<std::uint32_t>(variable.bounds.size()));
    code_.release_to(top);
  }
}

void ProcedureCompiler::redim(const Stmt& stmt) {
  for (const VariableDecl& variable : stmt.parts().declarations) {
    Expr name;
    name.kind = ExprKind::name;
    name.symbol = variable.symbol;
    const std::size_t top = code_.top();
    const Register first = code_.temp(variable.bounds.size());
    for (std::size_t i = 0; i < variable.bounds.size(); ++i) {
      into(*variable.bounds[i], static_cast<Register>(first + i));
    }
    const Register target = code_.temp();
    variable_reference(name, target);
    code_.emit(stmt.flag ? Op::redim_preserve : Op::redim, target, first,
               static_cast<std::uint32_t>(variable.bounds.size()));
    code_.release_to(top);
  }
}

void ProcedureCompiler::erase(const Stmt& stmt) {
  for (const Expr* array : stmt.arguments) {
    const std::size_t top = code_.top();
    const Register target = code_.temp();
    if (element_depth(*array) > 0) {
      refer_index(*array, target);
    } else if (!reference_into(*array, target)) {
      into(*array, target);
    }
    code_.emit(Op::erase, target);
    code_.release_to(top);
  }
}

}  // namespace zrl::vbs
