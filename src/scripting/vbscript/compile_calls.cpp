#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

// Calls, their arguments, and references to variables and elements.
namespace zrl::vbs {

// Whether the expression calls what a variable holds, an array say.
bool ProcedureCompiler::indexes_variable(const Expr& expr) const {
  if (expr.kind != ExprKind::call || expr.left()->kind != ExprKind::name) return false;
  const Meaning known = meaning(expr.left()->symbol);
  if (is_own_name(known, expr.left()->symbol)) return false;
  return known.kind == Meaning::Kind::local || known.kind == Meaning::Kind::variable ||
         known.kind == Meaning::Kind::global || known.kind == Meaning::Kind::field;
}

// How many indexes lead from a variable to the element: 2 for v(i)(j), 0 if it is no element of a variable.
std::size_t ProcedureCompiler::element_depth(const Expr& expr) const {
  if (indexes_variable(expr)) return 1;
  if (expr.kind != ExprKind::call || expr.left()->kind != ExprKind::call) return 0;
  const std::size_t outer = element_depth(*expr.left());
  return outer == 0 ? 0 : outer + 1;
}

// The name of the procedure itself is its result, but with arguments it is a call.
bool ProcedureCompiler::is_own_name(const Meaning& known, SymbolId symbol) const {
  if (proc_.executed) {
    const SymbolId outer = context_.symbols.canonical(context_.outer->symbol);
    return known.kind == Meaning::Kind::variable && outer == context_.symbols.canonical(symbol);
  }
  return known.kind == Meaning::Kind::local && known.index == 0;
}

// The name of a function where it is written to: its result, an array say.
bool ProcedureCompiler::is_own_result(const Expr& callee) const {
  return callee.kind == ExprKind::name && declaration_.kind == ProcKind::function &&
         is_own_name(meaning(callee.symbol), callee.symbol);
}

std::size_t ProcedureCompiler::locks_of(std::span<Expr*> list) const {
  std::size_t count = 0;
  for (const Expr* argument : list) {
    if (!argument->parenthesised) count += element_depth(*argument);
  }
  return count;
}

Register ProcedureCompiler::invoke(const Expr& callee, std::span<Expr*> list, std::size_t wanted) {
  const std::size_t locks = locks_of(list);
  const std::size_t outer_locks = locks_.size();
  for (std::size_t i = 0; i < locks; ++i) locks_.push_back(code_.temp());
  const bool in_place = locks == 0 && wanted != SIZE_MAX && wanted + 1 == code_.top();
  const Register window = in_place ? static_cast<Register>(wanted) : code_.temp();
  if (callee.kind == ExprKind::name) {
    invoke_name(callee, list, window);
  } else if (callee.kind == ExprKind::member) {
    // The object itself, not the variable: that may change while the arguments are evaluated.
    if (callee.left()) {
      into(*callee.left(), window);
    } else {
      code_.emit(Op::copy, window, object_of(callee));
    }
    code_.release_to(window + std::size_t{1});
    arguments(list, true);
    subject_of_member(callee);
    code_.emit_extended(Op::call_member, window, static_cast<std::uint32_t>(list.size()), 0, callee.symbol);
  } else {
    if (!reference_into(callee, window)) into(callee, window);
    code_.release_to(window + std::size_t{1});
    arguments(list, true);
    code_.emit(Op::index_many, window, static_cast<std::uint32_t>(list.size()));
  }
  locks_.resize(outer_locks);
  code_.holds(window);
  return window;
}

void ProcedureCompiler::invoke_name(const Expr& callee, std::span<Expr*> list, Register window) {
  const Meaning known = meaning(callee.symbol);
  const auto count = static_cast<std::uint32_t>(list.size());
  switch (known.kind) {
    case Meaning::Kind::procedure:
      arguments(list, true);
      code_.emit_extended(Op::call, window, count, 0, context_.symbols.canonical(callee.symbol));
      return;
    case Meaning::Kind::own_member:
      return invoke_own_name(callee, list, window);
    case Meaning::Kind::builtin: {
      const Builtin& builtin = context_.builtins.function(known.index);
      const bool fits =
          list.size() >= builtin.least && (list.size() <= builtin.most || builtin.most == any_number);
      arguments(list, false);
      if (fits) {
        code_.emit_extended(Op::call_builtin, window, count, 0, known.index);
      } else {
        code_.emit_extended(Op::fail, error::argument_count, 0, 0, callee.symbol);
      }
      return;
    }
    case Meaning::Kind::special:
      if (list.size() != 1) {
        code_.emit_extended(Op::fail, error::argument_count, 0, 0, callee.symbol);
      } else if (known.builtin == Builtins::Kind::eval) {
        arguments(list, false);
        code_.emit(Op::evaluate, window, window + 1U);
      } else {
        arguments(list, false);
        code_.emit(Op::execute, window + 1U, known.builtin == Builtins::Kind::execute_global ? 1 : 0);
      }
      return;
    case Meaning::Kind::local:
    case Meaning::Kind::variable:
      if (is_own_name(known, callee.symbol)) return invoke_own_name(callee, list, window);
      [[fallthrough]];
    case Meaning::Kind::global:
    case Meaning::Kind::field:
      reference_into(callee, window);
      arguments(list, true);
      subject_of_index(callee, count == 1 ? list[0] : nullptr);
      code_.emit(Op::index_many, window, count);
      return;
    case Meaning::Kind::unknown:
    case Meaning::Kind::undeclared:
    case Meaning::Kind::class_type:
      arguments(list, true);
      code_.emit_extended(Op::call_name, window, count,
                          known.kind == Meaning::Kind::unknown ? known.index : no_register, callee.symbol);
      return;
    case Meaning::Kind::constant:
      load_constant(known.index, window);
      arguments(list, true);
      code_.emit(Op::index_many, window, count);
      return;
  }
}

// A member of the class whose procedure this is, or the procedure itself.
void ProcedureCompiler::invoke_own_name(const Expr& callee, std::span<Expr*> list, Register window) {
  const auto count = static_cast<std::uint32_t>(list.size());
  arguments(list, true);
  const SymbolId symbol = own_class_ ? callee.symbol : context_.symbols.canonical(callee.symbol);
  code_.emit_extended(own_class_ ? Op::call_own : Op::call, window, count, 0, symbol);
}

// Arguments into the registers that follow.
void ProcedureCompiler::arguments(std::span<Expr*> list, bool by_reference) {
  for (const Expr* expr : list) argument(*expr, by_reference);
}

void ProcedureCompiler::argument(const Expr& expr, bool by_reference) {
  const Register target = code_.temp();
  bool done = false;
  if (expr.kind == ExprKind::name && (!by_reference || !expr.parenthesised)) {
    done = reference_into(expr, target);
  } else if (by_reference && !expr.parenthesised && element_depth(expr) > 0) {
    refer_index(expr, target);
    done = true;
  }
  if (!done) into(expr, target);
  code_.release_to(target + std::size_t{1});
}

// A reference to a variable that has a name.
bool ProcedureCompiler::reference_into(const Expr& expr, Register target) {
  if (expr.kind != ExprKind::name) return false;
  const Meaning known = meaning(expr.symbol);
  switch (known.kind) {
    case Meaning::Kind::local:
    case Meaning::Kind::variable:
      code_.emit(Op::refer, target, known.index);
      return true;
    case Meaning::Kind::global:
      code_.emit(Op::refer_global, target, known.index);
      return true;
    case Meaning::Kind::field:
      code_.emit(Op::refer_field, target, known.index);
      return true;
    case Meaning::Kind::unknown:
      code_.emit_extended(Op::refer_name_or_get, target, known.index, 0, expr.symbol);
      code_.holds(target);
      return true;
    default:
      return false;
  }
}

// A reference to what variable(indexes) is, or its value where that is no array's element. The arrays on the
// way are locked, each by a register below the window, because the indexes stand directly behind the array.
void ProcedureCompiler::refer_index(const Expr& expr, Register target) {
  const std::size_t depth = element_depth(expr);
  if (locks_.empty()) {
    for (std::size_t i = 0; i < depth; ++i) locks_.push_back(code_.temp());
  }
  const Register lock = locks_.back();
  locks_.pop_back();
  const std::size_t others = locks_.size() - (depth - 1);
  const std::size_t inner = locks_of(expr.arguments());
  for (std::size_t i = 0; i < inner; ++i) locks_.push_back(code_.temp());
  const Register window = inner == 0 && target + std::size_t{1} == code_.top() ? target : code_.temp();
  if (depth > 1) {
    refer_index(*expr.left(), window);
    code_.release_to(window + std::size_t{1});
  } else {
    reference_into(*expr.left(), window);
  }
  arguments(expr.arguments(), true);
  subject_of_index(*expr.left(), expr.arguments().size() == 1 ? expr.arguments()[0] : nullptr);
  code_.emit(Op::refer_index, window, static_cast<std::uint32_t>(expr.arguments().size()), lock);
  locks_.resize(others);
  code_.holds(lock);
  code_.holds(window);
  if (window != target) {
    code_.emit(Op::take, target, window);
    code_.holds(target);
  }
}

// For what is only looked at, an array or an object: no copy where there is a variable.
Register ProcedureCompiler::reference_or_value(const Expr& expr) {
  if (expr.kind != ExprKind::name) {
    const Register target = code_.temp();
    into(expr, target);
    return target;
  }
  const Meaning known = meaning(expr.symbol);
  if (has_register(known)) return static_cast<Register>(known.index);
  const Register target = code_.temp();
  if (!reference_into(expr, target)) into(expr, target);
  return target;
}

}  // namespace zrl::vbs
