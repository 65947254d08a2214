#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

// Loops, and With, whose object lives as long as its block.
namespace zrl::vbs {

void ProcedureCompiler::do_loop(const Stmt& stmt) {
  Label start;
  Label exit;
  const bool is_do = true;
  loops_.push_back({!is_do, &exit});
  bind(start);
  const auto test = [&](Label& leave) {
    if (!stmt.flag) return condition(*stmt.value, leave);
    // Until: goes on where the condition is not true.
    Label stay;
    condition(*stmt.value, stay);
    jump(Op::jump, 0, leave);
    bind(stay);
  };
  if (stmt.value && !stmt.at_end) test(exit);
  block(stmt.body);
  place(stmt.end_offset);
  if (stmt.value && stmt.at_end) test(exit);
  jump(Op::loop, 0, start);
  bind(exit);
  loops_.pop_back();
}

ProcedureCompiler::Register ProcedureCompiler::loop_variable(const Expr& target) {
  Register variable = 0;
  if (direct_register(target, variable)) return variable;
  const Meaning known = meaning(target.symbol);
  if (known.kind == Meaning::Kind::variable) return static_cast<Register>(known.index);
  variable = temp();
  variable_reference(target, variable);
  return variable;
}

void ProcedureCompiler::for_loop(const Stmt& stmt) {
  const std::size_t outer = persistent_;
  const Register base = temp(2);
  const Register variable = loop_variable(*stmt.target);
  persistent_ = top_;
  emit(Op::clear, base, 2);
  const Register from = temp();
  into(*stmt.value, from);
  into(*stmt.to, base);
  if (stmt.step) {
    into(*stmt.step, static_cast<Register>(base + 1));
  } else {
    load(Value::integer(1), static_cast<Register>(base + 1));
  }
  Label exit;
  Label body;
  jump_extended(Op::for_prepare, variable, base, from, exit);
  end_statement();
  release_to(persistent_);
  loops_.push_back({true, &exit});
  bind(body);
  block(stmt.body);
  place(stmt.end_offset);
  jump_extended(Op::for_next, variable, base, 0, body);
  bind(exit);
  loops_.pop_back();
  persistent_ = outer;
}

void ProcedureCompiler::for_each(const Stmt& stmt) {
  const std::size_t outer = persistent_;
  const Register base = temp(2);
  const Register variable = loop_variable(*stmt.target);
  persistent_ = top_;
  emit(Op::clear, base, 2);
  const Register collection = reference_or_value(*stmt.value);
  emit(Op::each_prepare, base, collection);
  end_statement();
  release_to(persistent_);
  Label exit;
  Label next;
  Label body;
  loops_.push_back({true, &exit});
  jump(Op::jump, 0, next);
  bind(body);
  block(stmt.body);
  place(stmt.end_offset);
  bind(next);
  jump_extended(Op::each_next, variable, base, 0, body);
  bind(exit);
  place(stmt.end_offset);
  emit(Op::clear, base, 2);
  loops_.pop_back();
  persistent_ = outer;
}

void ProcedureCompiler::with(const Stmt& stmt) {
  const std::size_t outer = persistent_;
  const Register object = temp();
  persistent_ = top_;
  emit(Op::clear, object, 1);
  const std::size_t top = top_;
  const Register value = reference_or_value(*stmt.value);
  emit(Op::set, object, value);
  end_statement();
  release_to(top);
  withs_.push_back(object);
  block(stmt.body);
  withs_.pop_back();
  place(stmt.end_offset);
  emit(Op::clear, object, 1);
  persistent_ = outer;
}

void ProcedureCompiler::exit(const Stmt& stmt) {
  const bool is_for = stmt.kind == StmtKind::exit_for;
  for (auto loop = loops_.rbegin(); loop != loops_.rend(); ++loop) {
    if (loop->is_for == is_for) return jump(Op::jump, 0, *loop->exit);
  }
  throw CompileFailure{error::invalid_exit, stmt.offset};
}

}  // namespace zrl::vbs
