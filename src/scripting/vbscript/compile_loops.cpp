#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

// Loops, and With, whose object lives as long as its block.
namespace zrl::vbs {

void ProcedureCompiler::do_loop(const Stmt& stmt) {
  Label start;
  Label exit;
  // Exit Do in a While leaves the Do around it.
  const bool is_do = stmt.kind == StmtKind::do_;
  if (is_do) loops_.push_back({false, &exit});
  code_.bind(start);
  const auto test = [&](Label& leave) {
    if (!stmt.flag) return condition(*stmt.value, leave);
    // Until: goes on where the condition is not true.
    Label stay;
    condition(*stmt.value, stay);
    code_.jump(Op::jump, 0, leave);
    code_.bind(stay);
  };
  if (stmt.value && !stmt.at_end) test(exit);
  block(stmt.parts().body);
  code_.place(stmt.end_offset);
  if (stmt.value && stmt.at_end) test(exit);
  code_.jump(Op::loop, 0, start);
  code_.bind(exit);
  if (is_do) loops_.pop_back();
}

Register ProcedureCompiler::loop_variable(const Expr& target) {
  Register variable = 0;
  if (direct_register(target, variable)) return variable;
  const Meaning known = meaning(target.symbol);
  if (known.kind == Meaning::Kind::variable) return static_cast<Register>(known.index);
  variable = code_.temp();
  variable_reference(target, variable);
  return variable;
}

void ProcedureCompiler::for_loop(const Stmt& stmt) {
  const std::size_t outer = code_.kept();
  const Register base = code_.temp(2);
  const Register variable = loop_variable(*stmt.target);
  code_.keep_below(code_.top());
  code_.emit(Op::clear, base, 2);
  const Register from = code_.temp();
  into(*stmt.value, from);
  into(*stmt.parts().to, base);
  if (stmt.parts().step) {
    into(*stmt.parts().step, static_cast<Register>(base + 1));
  } else {
    load(Value::integer(1), static_cast<Register>(base + 1));
  }
  Label exit;
  Label body;
  code_.jump_extended(Op::for_prepare, variable, base, from, exit);
  code_.end_statement();
  code_.release_to(code_.kept());
  loops_.push_back({true, &exit});
  code_.bind(body);
  block(stmt.parts().body);
  code_.place(stmt.end_offset);
  code_.jump_extended(Op::for_next, variable, base, 0, body);
  code_.bind(exit);
  loops_.pop_back();
  code_.keep_below(outer);
}

void ProcedureCompiler::for_each(const Stmt& stmt) {
  const std::size_t outer = code_.kept();
  const Register base = code_.temp(2);
  const Register variable = loop_variable(*stmt.target);
  code_.keep_below(code_.top());
  code_.emit(Op::clear, base, 2);
  const Register collection = reference_or_value(*stmt.value);
  code_.emit(Op::each_prepare, base, collection);
  code_.end_statement();
  code_.release_to(code_.kept());
  Label exit;
  Label next;
  Label body;
  loops_.push_back({true, &exit});
  code_.jump(Op::jump, 0, next);
  code_.bind(body);
  block(stmt.parts().body);
  code_.place(stmt.end_offset);
  code_.bind(next);
  code_.jump_extended(Op::each_next, variable, base, 0, body);
  code_.bind(exit);
  code_.place(stmt.end_offset);
  code_.emit(Op::clear, base, 2);
  loops_.pop_back();
  code_.keep_below(outer);
}

void ProcedureCompiler::with(const Stmt& stmt) {
  const std::size_t outer = code_.kept();
  const Register object = code_.temp();
  code_.keep_below(code_.top());
  code_.emit(Op::clear, object, 1);
  const std::size_t top = code_.top();
  const Register value = reference_or_value(*stmt.value);
  code_.emit(Op::set, object, value);
  code_.end_statement();
  code_.release_to(top);
  withs_.push_back(object);
  block(stmt.parts().body);
  withs_.pop_back();
  code_.place(stmt.end_offset);
  code_.emit(Op::clear, object, 1);
  code_.keep_below(outer);
}

void ProcedureCompiler::exit(const Stmt& stmt) {
  const bool is_for = stmt.kind == StmtKind::exit_for;
  for (auto loop = loops_.rbegin(); loop != loops_.rend(); ++loop) {
    if (loop->is_for == is_for) return code_.jump(Op::jump, 0, *loop->exit);
  }
  throw CompileFailure{error::invalid_exit, stmt.offset};
}

}  // namespace zrl::vbs
