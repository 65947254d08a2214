#include <algorithm>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

// What names mean in a procedure: a walk over its body finds them all before code is made, so that
// variables have their registers first.
namespace zrl::vbs {

void ProcedureCompiler::add_local(SymbolId symbol, Meaning meaning) {
  locals_[context_.symbols.canonical(symbol)] = meaning;
}

Register ProcedureCompiler::new_local(SymbolId symbol, Meaning::Kind kind, bool declared) {
  const Register reg = code_.temp();
  add_local(symbol, {kind, reg, Builtins::Kind::none});
  const Binding binding{context_.symbols.canonical(symbol), reg, declared};
  proc_.locals.push_back(binding);
  if (proc_.executed || kind == Meaning::Kind::unknown || (kind == Meaning::Kind::variable && !declared)) {
    proc_.implicit.push_back(binding);
  }
  return reg;
}

void ProcedureCompiler::declare_parameters() {
  const ProcKind kind = declaration_.kind;
  if (kind == ProcKind::function || kind == ProcKind::get) {
    add_local(declaration_.symbol, {Meaning::Kind::local, 0, Builtins::Kind::none});
    proc_.locals.push_back({context_.symbols.canonical(declaration_.symbol), 0, true});
  }
  proc_.parameters = static_cast<std::uint16_t>(declaration_.parameters.size());
  proc_.parameter_list = declaration_.parameters;
  for (std::size_t i = 0; i < declaration_.parameters.size(); ++i) {
    const Parameter& parameter = declaration_.parameters[i];
    const auto meaning = parameter.by_value ? Meaning::Kind::local : Meaning::Kind::variable;
    new_local(parameter.symbol, meaning, true);
    if (!parameter.by_value) continue;
    proc_.any_by_value = true;
    if (i < 64) proc_.by_value |= std::uint64_t{1} << i;
  }
}

void ProcedureCompiler::declare_variables() {
  if (global_level_) return;
  for (const VariableDecl& variable : declaration_.variables) {
    if (locals_.count(context_.symbols.canonical(variable.symbol)) != 0) {
      throw CompileFailure{error::name_redefined, variable.offset};
    }
    new_local(variable.symbol, proc_.executed ? Meaning::Kind::variable : Meaning::Kind::local, true);
  }
}

void ProcedureCompiler::declare_constants() {
  if (global_level_) return;
  for (const ConstDecl& constant : declaration_.constants) {
    if (locals_.count(context_.symbols.canonical(constant.symbol)) != 0) {
      throw CompileFailure{error::name_redefined, constant.offset};
    }
    const Value value = constant_value(*constant.value, shared_.ast);
    add_local(constant.symbol, {Meaning::Kind::constant, shared_.constants.add(value), Builtins::Kind::none});
  }
}

void ProcedureCompiler::note_name(SymbolId symbol, NameUse use) {
  const SymbolId canonical = context_.symbols.canonical(symbol);
  const auto [entry, inserted] = name_index_.try_emplace(canonical, names_.size());
  if (inserted) {
    names_.emplace_back(canonical, use);
  } else {
    NameUse& known = names_[entry->second].second;
    known = std::max(known, use);
  }
}

void ProcedureCompiler::scan_arguments(std::span<Expr*> arguments) {
  // A name alone is passed by reference and may come back changed.
  for (const Expr* argument : arguments) {
    const bool name = argument->kind == ExprKind::name && !argument->parenthesised;
    scan(argument, name ? NameUse::passed : NameUse::read);
  }
}

void ProcedureCompiler::scan(const Expr* expr, NameUse use) {
  while (expr) {
    if (expr->kind == ExprKind::name) note_name(expr->symbol, use);
    use = expr->kind == ExprKind::call ? NameUse::called : NameUse::read;
    if (!expr->arguments().empty()) scan_arguments(expr->arguments());
    if (expr->right()) scan(expr->right(), NameUse::read);
    expr = expr->left();
  }
}

void ProcedureCompiler::scan(Block block) {
  for (const Stmt* stmt : block) scan(*stmt);
}

void ProcedureCompiler::scan(const Stmt& stmt) {
  const bool assigns = stmt.kind == StmtKind::let || stmt.kind == StmtKind::set ||
                       stmt.kind == StmtKind::for_ || stmt.kind == StmtKind::for_each;
  scan(stmt.target, assigns ? NameUse::assigned : NameUse::called);
  for (const Expr* expr : {stmt.value, stmt.parts().to, stmt.parts().step}) scan(expr, NameUse::read);
  scan_arguments(stmt.arguments);
  for (const Branch& branch : stmt.parts().branches) {
    scan(branch.condition, NameUse::read);
    for (const Expr* test : branch.tests) scan(test, NameUse::read);
    scan(branch.body);
  }
  if (stmt.kind == StmtKind::redim) {
    for (const VariableDecl& variable : stmt.parts().declarations) {
      note_name(variable.symbol, NameUse::dimensioned);
      for (const Expr* bound : variable.bounds) scan(bound, NameUse::read);
    }
  }
  scan(stmt.parts().body);
}

// Names without a declaration become variables: of the text's top level, or of the procedure. Where all are
// to be declared, only ReDim does that.
void ProcedureCompiler::settle_names() {
  for (const Stmt* stmt : declaration_.body) scan(*stmt);
  for (const auto& [symbol, use] : names_) {
    if (locals_.count(symbol) != 0) continue;
    if (outside_meaning(symbol).kind != Meaning::Kind::undeclared) continue;
    bool outer = false;
    if (proc_.executed) {
      for (const Binding& binding : context_.outer->locals) outer |= binding.symbol == symbol;
      if (context_.outer_extra) {
        for (const Binding& binding : *context_.outer_extra) outer |= binding.symbol == symbol;
      }
    }
    if (outer) {
      new_local(symbol, Meaning::Kind::variable, false);
    } else if (shared_.ast.option_explicit && use != NameUse::dimensioned) {
      continue;
    } else if (global_level_) {
      if (use < NameUse::passed) continue;
      const std::uint16_t slot = context_.globals.declare(symbol);
      if (use == NameUse::passed) add_local(symbol, {Meaning::Kind::unknown, slot, Builtins::Kind::none});
    } else {
      new_local(symbol, use >= NameUse::assigned ? Meaning::Kind::variable : Meaning::Kind::unknown, false);
    }
  }
}

ProcedureCompiler::Meaning ProcedureCompiler::meaning(SymbolId symbol) const {
  const SymbolId canonical = context_.symbols.canonical(symbol);
  const auto found = locals_.find(canonical);
  return found != locals_.end() ? found->second : outside_meaning(canonical);
}

ProcedureCompiler::Meaning ProcedureCompiler::outside_meaning(SymbolId canonical) const {
  using Kind = Meaning::Kind;
  if (proc_.executed) {
    for (const Binding& binding : context_.outer->locals) {
      if (binding.symbol == canonical) return {};
    }
  }
  if (own_class_) {
    if (const Member* member = own_class_->find(canonical)) {
      if (member->is_field) return {Kind::field, member->field, Builtins::Kind::none};
      return {Kind::own_member, 0, Builtins::Kind::none};
    }
  }
  if (const GlobalName* name = context_.globals.find(canonical)) {
    switch (name->kind) {
      case GlobalName::Kind::variable:
        return {Kind::global, name->slot, Builtins::Kind::none};
      case GlobalName::Kind::constant:
        return {Kind::constant, shared_.constants.named(canonical, name->constant), Builtins::Kind::none};
      case GlobalName::Kind::procedure:
        return {Kind::procedure, 0, Builtins::Kind::none};
      case GlobalName::Kind::class_type:
        return {Kind::class_type, 0, Builtins::Kind::none};
      case GlobalName::Kind::undefined:
        break;
    }
  }
  const Builtins::Entry builtin = context_.builtins.find(canonical);
  if (builtin.kind == Builtins::Kind::none) return {};
  if (builtin.kind == Builtins::Kind::constant) {
    const BuiltinConstant& constant = context_.builtins.constant(builtin.index);
    const Value value =
        constant.text
            ? Value(context_.heap.string({constant.text, static_cast<std::size_t>(constant.number)}))
            : Value::of(constant.type, constant.number);
    return {Kind::constant, shared_.constants.named(canonical, value), Builtins::Kind::none};
  }
  const bool function = builtin.kind == Builtins::Kind::function;
  return {function ? Kind::builtin : Kind::special, builtin.index, builtin.kind};
}

}  // namespace zrl::vbs
