#pragma once

#include <unordered_map>
#include <vector>

#include "scripting/vbscript/ast.h"
#include "scripting/vbscript/code.h"

// What the compiler writes with: constants, registers, instructions and the places of statements.
namespace zrl::vbs {

using Register = std::uint16_t;

// The constants of a text, which its procedures share: each number once, each string literal once.
class ConstantPool {
 public:
  ConstantPool(Module& module, const Ast& ast) : module_(module), ast_(ast) {}

  // Return the index of the constant in the module.
  std::uint32_t number(const Value& value);
  std::uint32_t literal(std::uint32_t string_of_text);
  // A constant with a name, by its canonical symbol.
  std::uint32_t named(SymbolId canonical, const Value& value);
  // One that nothing else shares.
  std::uint32_t add(const Value& value);

  const Value& operator[](std::uint32_t index) const { return module_.constants[index]; }

 private:
  Module& module_;
  const Ast& ast_;
  std::unordered_map<std::uint64_t, std::uint32_t> numbers_;  // by type and bits
  std::vector<std::uint32_t> literals_;                       // 0: not yet, else index + 1
  std::unordered_map<SymbolId, std::uint32_t> named_;
};

// A place in the code that jumps lead to; jumps that come before it wait here for its address.
struct Label {
  std::vector<std::size_t> uses;
  std::int64_t target = -1;
};

// Writes the code of one procedure, and hands out its registers: variables first, then temporaries, which
// are a stack. Raises CompileFailure where the procedure grows beyond what instructions can address.
class Emitter {
 public:
  explicit Emitter(Proc& proc) : proc_(proc) {}

  // Instructions.
  void emit(Op op, std::uint32_t a = 0, std::uint32_t b = 0, std::uint32_t c = 0);
  void emit_wide(Op op, std::uint32_t a, std::int64_t wide);
  void emit_extended(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::int64_t extra);

  // Jumps.
  void jump(Op op, std::uint32_t a, Label& label);
  void jump_extended(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c, Label& label);
  void bind(Label& label);

  // Begins a statement, or a part of one where errors are resumed by itself. Returns its number.
  std::size_t place(std::uint32_t offset);
  // Where the machine goes on after an error in that place; without a word, at the next one.
  void resume_at(std::size_t place, const Label& label);
  std::size_t last_place() const { return proc_.places.size() - 1; }
  // What the instruction that comes next is about.
  void subject(bool of_member, Extent object, Extent index);

  // Registers.
  Register temp(std::size_t count = 1);
  std::size_t top() const { return top_; }
  void release_to(std::size_t top) { top_ = top; }
  // All registers below `first` are taken, whatever was handed out before.
  void start_temporaries_at(std::size_t first) { top_ = most_ = first; }
  // One more than the highest register that was ever in use.
  std::size_t most() const { return most_; }
  // Temporaries below outlive the statement; returns the bound that held before.
  std::size_t keep_below(std::size_t bound);
  std::size_t kept() const { return persistent_; }

  // Temporaries that may hold an object, which must not outlive the statement.
  void holds(std::size_t reg);
  // The register was emptied by the code itself.
  void take_back(std::size_t reg);
  bool holds_any() const { return held_first_ < held_end_; }
  bool holds_only(std::size_t reg) const { return held_first_ == reg && held_end_ == reg + 1; }
  bool is_held(std::size_t reg) const { return reg >= held_first_ && reg < held_end_; }
  std::size_t held_count() const { return holds_any() ? held_end_ - held_first_ : 0; }
  void forget_held();
  // A temporary that the clearing of held ones leaves alone.
  Register temp_behind_held();
  // Empties what is held.
  void end_statement();

 private:
  Proc& proc_;
  std::size_t top_ = 1;  // first free register
  std::size_t most_ = 1;
  std::size_t persistent_ = 0;
  std::size_t held_first_ = SIZE_MAX;
  std::size_t held_end_ = 0;
};

}  // namespace zrl::vbs
