#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "scripting/vbscript/compiler.h"
#include "scripting/vbscript/emitter.h"

namespace zrl::vbs {

// What all procedures of one text share while they are compiled.
struct ModuleCompiler {
  const CompileContext& context;
  Ast& ast;
  Module& module;
  ConstantPool constants;
};

// The value of a constant's declaration.
Value constant_value(const Expr& expr, const Ast& ast);

// Compiles one procedure, or the top level of a text.
class ProcedureCompiler {
 public:
  ProcedureCompiler(ModuleCompiler& shared, const ProcDecl& declaration, Proc& proc,
                    const ClassInfo* own_class, bool global_level);
  void compile();

 private:
  // What a name means here.
  struct Meaning {
    enum class Kind {
      local,       // a register that is never a reference
      variable,    // a register that may be a reference
      unknown,     // the same; nothing assigns it here, so that it may be a later procedure's name
      constant,    // index of a constant
      field,       // of Me
      own_member,  // another member of the class
      global,      // slot
      procedure,
      class_type,
      builtin,
      special,     // Execute and its kin
      undeclared,  // under Option Explicit, or read only at the top level
    };
    Kind kind = Kind::undeclared;
    std::uint32_t index = 0;
    Builtins::Kind builtin = Builtins::Kind::none;
  };

  struct Loop {
    bool is_for = false;
    Label* exit = nullptr;
  };

  // What a body does with a name; what comes later makes it more of a variable.
  enum class NameUse { called, read, passed, assigned, dimensioned };

  // Names (compile_names.cpp).
  void declare_parameters();
  void declare_variables();
  void declare_constants();
  void scan(Block block);
  void scan(const Stmt& stmt);
  void scan(const Expr* expr, NameUse use);
  void scan_arguments(std::span<Expr*> arguments);
  void note_name(SymbolId symbol, NameUse use);
  void settle_names();
  Meaning meaning(SymbolId symbol) const;
  Meaning outside_meaning(SymbolId canonical) const;
  void add_local(SymbolId symbol, Meaning meaning);
  Register new_local(SymbolId symbol, Meaning::Kind kind, bool declared);

  // What the instruction that comes next is about.
  void subject_of_member(const Expr& member);
  void subject_of_index(const Expr& callee, const Expr* index);

  // Expressions (compile_expressions.cpp).
  Register operand(const Expr& expr);
  void into(const Expr& expr, Register target);
  void load(const Value& value, Register target);
  void load_constant(std::uint32_t index, Register target);
  static bool is_literal(const Expr& expr);
  bool constant_operand(const Expr& expr, std::uint32_t& index);
  bool has_register(const Meaning& known) const;
  bool scalar_result(const Expr& expr) const;
  void name_into(const Expr& expr, Register target);
  void unary_into(Op op, const Expr& expr, Register target);
  void binary_into(const Expr& expr, Register target);
  void operator_into(const Expr& expr, std::optional<Register> left, Register target);
  void arithmetic_into(Op op, Op with_constant, const Expr& expr, std::optional<Register> known_left,
                       Register target);
  void comparison_into(const Expr& expr, std::optional<Register> known_left, Register target);
  void concat_into(const Expr& expr, Register target);
  void member_into(const Expr& expr, Register target);
  void call_into(const Expr& expr, Register target);
  // Returns the register of the result: `wanted` where that is the last temporary.
  Register invoke(const Expr& callee, std::span<Expr*> list, std::size_t wanted);
  void invoke_name(const Expr& callee, std::span<Expr*> list, Register window);
  void invoke_own_name(const Expr& callee, std::span<Expr*> list, Register window);
  std::size_t locks_of(std::span<Expr*> list) const;
  bool is_own_name(const Meaning& known, SymbolId symbol) const;
  bool indexes_variable(const Expr& expr) const;
  std::size_t element_depth(const Expr& expr) const;
  bool is_own_result(const Expr& callee) const;
  bool index_into(const Expr& expr, Register target);
  void arguments(std::span<Expr*> list, bool by_reference);
  void argument(const Expr& expr, bool by_reference);
  bool reference_into(const Expr& expr, Register target);
  void refer_index(const Expr& expr, Register target);
  Register reference_or_value(const Expr& expr);
  Register object_of(const Expr& member);
  void condition(const Expr& expr, Label& unless);

  // Statements (compile_statements.cpp).
  void block(Block block);
  void statement(const Stmt& stmt);
  void call(const Stmt& stmt);
  void execute(const Stmt& stmt, Builtins::Kind kind);
  void assign(const Stmt& stmt);
  void assign_name(const Expr& target, const Expr& value, bool set);
  bool append_to(const Expr& target, const Expr& value);
  void assign_call(const Expr& target, const Expr& value, bool set);
  void assign_member(const Expr& object, SymbolId symbol, std::span<Expr*> arguments, const Expr& value,
                     bool set);
  bool direct_register(const Expr& target, Register& reg) const;
  void variable_reference(const Expr& target, Register target_register);
  void leave_branch(std::uint32_t offset, Label& end);
  void if_statement(const Stmt& stmt);
  void select(const Stmt& stmt);
  void do_loop(const Stmt& stmt);
  // Where the counter or element of a loop lives: its own register, or one that refers to it.
  Register loop_variable(const Expr& target);
  void for_loop(const Stmt& stmt);
  void for_each(const Stmt& stmt);
  void with(const Stmt& stmt);
  void exit(const Stmt& stmt);
  void dim(const Stmt& stmt);
  void redim(const Stmt& stmt);
  void erase(const Stmt& stmt);

  ModuleCompiler& shared_;
  const CompileContext& context_;
  const ProcDecl& declaration_;
  Proc& proc_;
  const ClassInfo* own_class_;
  const bool global_level_;
  Emitter code_;

  std::unordered_map<SymbolId, Meaning> locals_;     // by canonical symbol
  std::vector<std::pair<SymbolId, NameUse>> names_;  // that the body mentions
  std::unordered_map<SymbolId, std::size_t> name_index_;
  std::vector<Loop> loops_;
  std::vector<Register> withs_;
  std::vector<Register> locks_;  // for the arguments that are being compiled
};

}  // namespace zrl::vbs
