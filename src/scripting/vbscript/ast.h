#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "scripting/vbscript/symbols.h"
#include "scripting/vbscript/token.h"
#include "scripting/vbscript/value.h"

// What the parser makes and the compiler reads. Nodes live in the arena of their text.
namespace zrl::vbs {

class Arena {
 public:
  // What it holds is charged to the heap.
  explicit Arena(Heap& heap) : chunks_(HeapAllocator<Chunk>(heap)), heap_(heap) {}
  ~Arena();
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  template <class T>
  T* make() {
    return new (take(sizeof(T))) T();
  }
  template <class T>
  HeapVector<T> list() const {
    return HeapVector<T>{HeapAllocator<T>(heap_)};
  }
  template <class T>
  std::span<T> copy(const HeapVector<T>& items) {
    T* first = static_cast<T*>(take(items.size() * sizeof(T)));  // NOLINT(bugprone-sizeof-expression)
    std::uninitialized_copy(items.begin(), items.end(), first);
    return {first, items.size()};
  }

 private:
  void* take(std::size_t bytes);

  struct Chunk {
    std::unique_ptr<std::byte[]> block;
    std::size_t bytes = 0;
  };
  HeapVector<Chunk> chunks_;
  Heap& heap_;
  std::byte* next_ = nullptr;
  std::size_t left_ = 0;
};

enum class ExprKind : std::uint8_t {
  integer,
  long_int,
  number,
  date,
  string,
  boolean,
  null,
  empty,
  nothing,
  me,
  name,         // symbol
  member,       // left . symbol; left is null inside With
  call,         // left ( arguments )
  new_object,   // symbol
  negate,       // left
  plus,         // left
  logical_not,  // left
  binary,       // left op right
  missing,      // an argument that was left out
};

enum class Operator : std::uint8_t {
  imp,
  eqv,
  xor_,
  or_,
  and_,
  equal,
  not_equal,
  less,
  greater,
  less_equal,
  greater_equal,
  is,
  concat,
  add,
  subtract,
  mod,
  int_divide,
  multiply,
  divide,
  power,
};

// Names and literals are most of a text: what they need not have stands in InnerExpr.
struct Expr {
  ExprKind kind = ExprKind::empty;
  Operator op = Operator::imp;
  bool parenthesised = false;
  bool inner = false;       // an InnerExpr
  std::uint16_t depth = 1;  // of the tree below; operators and members in a row count once
  std::uint16_t chain = 0;  // how many of them there are
  std::uint32_t offset = 0;
  SymbolId symbol = Symbols::none;
  union {
    std::int64_t integer = 0;
    double number;
    std::uint32_t string;
  };

  // Null, or none, where the kind has none.
  Expr* left() const;
  Expr* right() const;
  std::span<Expr*> arguments() const;
};

struct InnerExpr : Expr {
  Expr* left_part = nullptr;
  Expr* right_part = nullptr;
  std::span<Expr*> list;
};

inline Expr* Expr::left() const {
  return inner ? static_cast<const InnerExpr*>(this)->left_part : nullptr;
}
inline Expr* Expr::right() const {
  return inner ? static_cast<const InnerExpr*>(this)->right_part : nullptr;
}
inline std::span<Expr*> Expr::arguments() const {
  return inner ? static_cast<const InnerExpr*>(this)->list : std::span<Expr*>();
}

enum class StmtKind : std::uint8_t {
  expression_call,  // target: the callee; arguments
  let,              // target = value
  set,
  dim,  // arrays with bounds, in declarations
  redim,
  erase,     // arguments
  if_,       // branches
  select,    // value, branches
  do_,       // condition (may be null), until, at_end
  while_,    // condition
  for_,      // target, from value, to, step
  for_each,  // target, value
  with,      // value
  exit_do,
  exit_for,
  exit_procedure,
  on_error_resume,
  on_error_stop,
  nothing,  // what only marks a place: Stop, Const
};

struct Stmt;
using Block = std::span<Stmt*>;

struct Branch {
  std::uint32_t offset = 0;
  Expr* condition = nullptr;  // If, ElseIf; null for Else
  std::span<Expr*> tests;     // Case
  Block body;
};

struct VariableDecl {
  SymbolId symbol = Symbols::none;
  std::uint32_t offset = 0;
  bool is_array = false;
  bool is_public = true;    // of classes
  std::span<Expr*> bounds;  // empty: dynamic
};

struct ConstDecl {
  SymbolId symbol = Symbols::none;
  std::uint32_t offset = 0;
  Expr* value = nullptr;
};

// What assignments and calls, which most statements are, do without.
struct StmtParts {
  Expr* to = nullptr;
  Expr* step = nullptr;
  std::span<Branch> branches;
  std::span<VariableDecl> declarations;
  Block body;
};

struct Stmt {
  StmtKind kind = StmtKind::nothing;
  bool flag = false;    // preserve; until
  bool at_end = false;  // the condition of Do stands at Loop
  std::uint32_t offset = 0;
  std::uint32_t end_offset = 0;  // of the line that closes the block
  Expr* target = nullptr;
  Expr* value = nullptr;
  StmtParts* more = nullptr;
  std::span<Expr*> arguments;

  const StmtParts& parts() const {
    static const StmtParts none;
    return more ? *more : none;
  }
};

struct Parameter {
  SymbolId symbol = Symbols::none;
  bool by_value = false;
  bool is_array = false;
};

enum class ProcKind : std::uint8_t { main, sub, function, get, let, set };

struct ProcDecl {
  ProcKind kind = ProcKind::main;
  SymbolId symbol = Symbols::none;
  std::uint32_t offset = 0;
  std::uint32_t name_offset = 0;
  std::uint32_t end_offset = 0;
  bool is_public = true;
  bool is_default = false;
  std::vector<Parameter> parameters;
  std::vector<VariableDecl> variables;
  std::vector<ConstDecl> constants;
  Block body;
};

struct ClassDecl {
  SymbolId symbol = Symbols::none;
  std::uint32_t name_offset = 0;
  std::vector<VariableDecl> fields;
  std::vector<std::unique_ptr<ProcDecl>> procedures;
};

// A parsed text.
struct Ast {
  explicit Ast(Heap& heap) : arena(heap), strings(HeapAllocator<Ref<String>>(heap)) {}

  Arena arena;
  HeapVector<Ref<String>> strings;
  bool option_explicit = false;
  ProcDecl main;
  std::vector<std::unique_ptr<ProcDecl>> procedures;
  std::vector<std::unique_ptr<ClassDecl>> classes;
};

}  // namespace zrl::vbs
