#include "scripting/vbscript/compiler.h"

#include <bit>
#include <map>
#include <unordered_map>

#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/procedure_compiler.h"

namespace zrl::vbs {

Value constant_value(const Expr& expr, const Ast& ast) {
  switch (expr.kind) {
    case ExprKind::integer:
      return Value::integer(expr.integer);
    case ExprKind::long_int:
      return Value::long_integer(expr.integer);
    case ExprKind::number:
      return Value::real(expr.number);
    case ExprKind::date:
      return Value::date(expr.number);
    case ExprKind::boolean:
      return Value::boolean(expr.integer != 0);
    case ExprKind::null:
      return Value::null();
    case ExprKind::nothing:
      return Value::nothing();
    case ExprKind::string:
      return Value(ast.strings[expr.string]);
    case ExprKind::plus:
      return constant_value(*expr.left(), ast);
    case ExprKind::negate: {
      const Value value = constant_value(*expr.left(), ast);
      if (value.is(Type::real) || value.is(Type::date)) return Value::of(value.type(), -value.d());
      if (value.is(Type::boolean)) return Value::integer(-value.i());
      if (value.is(Type::integer) || value.is(Type::long_integer)) return Value::of(value.type(), -value.i());
      throw CompileFailure{error::expected_literal, expr.offset};
    }
    default:
      return {};
  }
}

namespace {

// Compiles a whole text: first the names, then the code, then the names become real.
class TextCompiler {
 public:
  TextCompiler(Ast& ast, Module& module, const CompileContext& context)
      : ast_(ast),
        module_(module),
        context_(context),
        shared_{context, ast, module, ConstantPool(module, ast)} {}

  void compile() {
    check_names();
    try {
      declare();
      compile_procedures();
      compile_main();
    } catch (...) {
      for (auto it = before_.rbegin(); it != before_.rend(); ++it) {
        context_.globals.name(it->first) = std::move(it->second);
      }
      throw;
    }
    for (const auto& proc : module_.procedures) proc->constants = module_.constants.data();
  }

 private:
  SymbolId canonical(SymbolId symbol) const { return context_.symbols.canonical(symbol); }
  bool in_procedure() const { return context_.outer != nullptr; }

  GlobalName& enter(SymbolId symbol) {
    GlobalName& name = context_.globals.name(canonical(symbol));
    before_.emplace_back(canonical(symbol), name);
    return name;
  }

  void check_names() {
    // In the order of the text: the later one of two is the wrong one. Procedures may replace each other.
    struct Declared {
      SymbolId symbol;
      bool procedure;
    };
    std::map<std::uint32_t, Declared> names;
    for (const VariableDecl& variable : ast_.main.variables)
      names[variable.offset] = {variable.symbol, false};
    for (const ConstDecl& constant : ast_.main.constants) names[constant.offset] = {constant.symbol, false};
    for (const auto& declared : ast_.classes) names[declared->name_offset] = {declared->symbol, false};
    for (const auto& declared : ast_.procedures) names[declared->name_offset] = {declared->symbol, true};
    std::unordered_map<SymbolId, bool> known;
    for (const auto& [offset, declared] : names) {
      const auto [first, is_new] = known.try_emplace(canonical(declared.symbol), declared.procedure);
      const bool replaces = declared.procedure && first->second;
      if (!is_new && !replaces) throw CompileFailure{error::name_redefined, offset};
    }
  }

  void declare() {
    if (!in_procedure()) {
      for (const VariableDecl& variable : ast_.main.variables) {
        GlobalName& name = enter(variable.symbol);
        if (name.kind != GlobalName::Kind::variable) context_.globals.declare(canonical(variable.symbol));
        name.declared = true;
      }
      for (const ConstDecl& constant : ast_.main.constants) {
        GlobalName& name = enter(constant.symbol);
        name.kind = GlobalName::Kind::constant;
        name.constant = constant_value(*constant.value, ast_);
      }
    }
    for (const auto& declared : ast_.procedures) {
      GlobalName& name = enter(declared->symbol);
      name.kind = GlobalName::Kind::procedure;
      Proc* proc = add_procedure(*declared);
      name.procedure = proc;
    }
    for (const auto& declared : ast_.classes) declare_class(*declared);
  }

  Proc* add_procedure(const ProcDecl& declared) {
    auto proc = std::make_unique<Proc>(context_.heap);
    proc->module = &module_;
    proc->kind = declared.kind;
    proc->symbol = declared.symbol;
    proc->is_public = declared.is_public;
    module_.procedures.push_back(std::move(proc));
    return module_.procedures.back().get();
  }

  void declare_class(const ClassDecl& declared) {
    auto info = std::make_unique<ClassInfo>();
    info->symbol = declared.symbol;
    for (const VariableDecl& field : declared.fields) {
      Member member;
      member.symbol = canonical(field.symbol);
      member.is_field = true;
      member.is_public = field.is_public;
      if (info->fields == no_register) throw CompileFailure{1001, field.offset};
      member.field = info->fields++;
      info->members.push_back(member);
      if (!field.is_array) continue;
      ClassInfo::ArrayField array{member.field, {}};
      for (const Expr* bound : field.bounds) array.bounds.push_back(bound->integer);
      info->arrays.push_back(std::move(array));
    }
    std::unordered_map<SymbolId, std::size_t> places;
    SymbolId default_symbol = Symbols::none;
    for (const auto& procedure : declared.procedures) {
      Proc* proc = add_procedure(*procedure);
      add_member(*info, places, *procedure, *proc);
      class_procedures_.push_back({procedure.get(), proc, info.get()});
      if (procedure->is_default) default_symbol = canonical(procedure->symbol);
    }
    info->index_members();
    if (default_symbol != Symbols::none) info->default_member = info->find(default_symbol);
    find_events(*info);
    GlobalName& name = enter(declared.symbol);
    name.kind = GlobalName::Kind::class_type;
    name.class_type = info.get();
    module_.classes.push_back(std::move(info));
  }

  // `places` are those of the procedures' names among the members; no field has such a name.
  void add_member(ClassInfo& info, std::unordered_map<SymbolId, std::size_t>& places,
                  const ProcDecl& declared, const Proc& proc) {
    const SymbolId symbol = canonical(declared.symbol);
    const auto [place, is_new] = places.try_emplace(symbol, info.members.size());
    if (is_new) info.members.emplace_back().symbol = symbol;
    Member& member = info.members[place->second];
    if (declared.kind == ProcKind::let) {
      member.let = &proc;
    } else if (declared.kind == ProcKind::set) {
      member.set = &proc;
    } else {
      member.get = &proc;
    }
  }

  void find_events(ClassInfo& info) {
    const auto event = [&](std::string_view name) -> const Proc* {
      const Member* member = info.find(context_.symbols.intern_ascii(name));
      return member && !member->is_field ? member->get : nullptr;
    };
    info.initialise = event("class_initialize");
    info.terminate = event("class_terminate");
  }

  void compile_procedures() {
    std::size_t index = 0;
    for (const auto& declared : ast_.procedures) {
      compile_procedure(*declared, *module_.procedures[index++], nullptr, false);
    }
    for (const auto& [declared, proc, info] : class_procedures_)
      compile_procedure(*declared, *proc, info, false);
  }

  void compile_main() {
    Proc* main = add_procedure(ast_.main);
    main->global_frame = !in_procedure();
    main->executed = in_procedure();
    compile_procedure(ast_.main, *main, in_procedure() ? context_.outer_class : nullptr, !in_procedure());
    module_.main = main;
  }

  void compile_procedure(const ProcDecl& declared, Proc& proc, const ClassInfo* info, bool global_level) {
    ProcedureCompiler(shared_, declared, proc, info, global_level).compile();
  }

  struct ClassProcedure {
    const ProcDecl* declared;
    Proc* proc;
    const ClassInfo* info;
  };

  Ast& ast_;
  Module& module_;
  const CompileContext& context_;
  ModuleCompiler shared_;
  std::vector<ClassProcedure> class_procedures_;
  std::vector<std::pair<SymbolId, GlobalName>> before_;
};

std::size_t size_of(const Module& module) {
  std::size_t bytes =
      sizeof(Module) + module.text.size() * sizeof(char16_t) + module.constants.size() * sizeof(Value);
  for (const auto& proc : module.procedures) {
    bytes += sizeof(Proc) + (proc->implicit.size() + proc->locals.size()) * sizeof(Binding);
  }
  return bytes;
}

}  // namespace

std::unique_ptr<Module> compile(Ast& ast, std::u16string& text, std::string name,
                                const CompileContext& context) {
  auto module = std::make_unique<Module>();
  module->name = std::move(name);
  module->option_explicit = ast.option_explicit;
  TextCompiler(ast, *module, context).compile();
  module->text = std::move(text);
  const std::size_t bytes = size_of(*module);
  context.heap.charge(bytes);
  module->charged = bytes;
  return module;
}

}  // namespace zrl::vbs
