#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "scripting/vbscript/ast.h"
#include "scripting/vbscript/symbols.h"
#include "scripting/vbscript/value.h"

// What the compiler makes and the machine runs.
namespace zrl::vbs {

enum class Op : std::uint16_t {
#define OPCODE(name, operands, words) name,
#include "scripting/vbscript/opcodes.def"
#undef OPCODE
};

inline constexpr std::uint16_t no_register = 0xffff;

struct Instr {
  Op op;
  std::uint16_t a;
  std::uint16_t b;
  std::uint16_t c;

  // The fields b and c together.
  std::int32_t wide() const {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(b) | static_cast<std::uint32_t>(c) << 16);
  }
  void set_wide(std::int32_t value) {
    b = static_cast<std::uint16_t>(static_cast<std::uint32_t>(value) & 0xffff);
    c = static_cast<std::uint16_t>(static_cast<std::uint32_t>(value) >> 16);
  }
};

static_assert(sizeof(Instr) == 8);

// Where a statement begins in code and text, and where the machine goes on when it fails under
// On Error Resume Next.
struct Place {
  std::uint32_t pc;
  std::uint32_t offset;
  std::uint32_t resume;      // 0: at the next place
  std::uint32_t first_temp;  // registers from here on hold nothing that outlives the statement
};

struct Module;
struct ClassInfo;

// A variable that may be one of another scope: a name without a declaration, or an outer variable of
// executed code. Bound when the procedure begins.
struct Binding {
  SymbolId symbol;  // canonical
  std::uint16_t reg;
  bool declared = false;
};

// A piece of the text.
struct Extent {
  std::uint32_t offset = 0;
  std::uint32_t length = 0;
};

// What an instruction is about, for the report of an error that nobody handled.
struct Subject {
  std::uint32_t pc = 0;
  bool of_member = false;
  Extent object;  // whose member or element is meant
  Extent index;   // the name of the variable that is the index
};

struct Proc {
  explicit Proc(Heap& heap)
      : code(HeapAllocator<Instr>(heap)),
        places(HeapAllocator<Place>(heap)),
        subjects(HeapAllocator<Subject>(heap)) {}

  Module* module = nullptr;
  ProcKind kind = ProcKind::main;
  SymbolId symbol = Symbols::none;
  bool is_public = true;
  bool global_frame = false;  // registers are the global variables
  bool any_by_value = false;
  bool plain = false;     // begins without looking at its arguments or names
  bool executed = false;  // by Execute in a procedure: its outer variables are bound by name
  std::uint16_t parameters = 0;
  std::uint32_t registers = 1;  // register 0 is the result, then the parameters
  std::uint32_t first_temp = 0;
  std::uint64_t by_value = 0;  // of the first 64 parameters; all others are looked up
  std::vector<Parameter> parameter_list;
  HeapVector<Instr> code;
  HeapVector<Place> places;
  HeapVector<Subject> subjects;  // by pc
  std::vector<Binding> implicit;
  std::vector<Binding> locals;  // names for Execute and Eval
  const Value* constants = nullptr;
};

// A member of a class: a field or up to three procedures.
struct Member {
  SymbolId symbol = Symbols::none;
  bool is_field = false;
  bool is_public = true;
  std::uint16_t field = 0;
  const Proc* get = nullptr;  // also methods
  const Proc* let = nullptr;
  const Proc* set = nullptr;
};

struct ClassInfo {
  SymbolId symbol = Symbols::none;
  std::vector<Member> members;
  std::vector<std::uint32_t> slots;  // open addressing by symbol: index + 1
  struct ArrayField {
    std::uint16_t field;
    std::vector<std::int64_t> bounds;
  };
  std::vector<ArrayField> arrays;
  std::uint16_t fields = 0;
  const Proc* initialise = nullptr;
  const Proc* terminate = nullptr;
  const Member* default_member = nullptr;

  const Member* find(SymbolId canonical) const {
    if (slots.empty()) return nullptr;
    const std::size_t mask = slots.size() - 1;
    for (std::size_t slot = canonical & mask;; slot = (slot + 1) & mask) {
      if (slots[slot] == 0) return nullptr;
      const Member& member = members[slots[slot] - 1];
      if (member.symbol == canonical) return &member;
    }
  }
  void index_members();
};

// A compiled text.
struct Module {
  std::string name;
  std::u16string text;
  std::vector<Value> constants;
  std::vector<std::unique_ptr<Proc>> procedures;
  std::vector<std::unique_ptr<ClassInfo>> classes;
  Proc* main = nullptr;
  bool option_explicit = false;
  std::size_t charged = 0;  // bytes, at the heap
  // Of a text that Execute or its kin ran: the text of a file that did so, and the place of the statement.
  // Files outlive what they run.
  const Module* origin = nullptr;
  std::uint32_t origin_offset = 0;
};

// What a name means in the global name space.
struct GlobalName {
  enum class Kind : std::uint8_t { undefined, variable, constant, procedure, class_type };
  Kind kind = Kind::undefined;
  bool declared = false;  // of a variable: by Dim
  std::uint16_t slot = 0;
  const Proc* procedure = nullptr;
  ClassInfo* class_type = nullptr;
  Value constant;
};

// The global variables, and for each name what it means. The registers of code at the top level are the
// global variables too, followed by its temporary values.
class Globals {
 public:
  static constexpr std::size_t most = 60'000;

  Globals();

  GlobalName& name(SymbolId canonical) {
    if (canonical >= names_.size()) names_.resize(canonical + 64 + canonical / 2);
    return names_[canonical];
  }
  const GlobalName* find(SymbolId canonical) const {
    return canonical < names_.size() ? &names_[canonical] : nullptr;
  }
  // Of a name that was entered before.
  const GlobalName& known(SymbolId canonical) const { return names_[canonical]; }
  Value* values() { return values_.get(); }
  // Raises CompileFailure when there are too many.
  std::uint16_t add_slots(std::size_t count);
  std::size_t used() const { return used_; }
  void shrink(std::size_t used) { used_ = used; }
  // A variable that did not exist before. Returns its slot.
  std::uint16_t declare(SymbolId canonical);
  // The variable of that name, where there is one. What nobody declares comes into being with its first
  // value: until then the name is free for procedures.
  Value* existing(SymbolId canonical);
  std::vector<SymbolId> take_new_variables() { return std::move(new_variables_); }
  bool has_new_variables() const { return !new_variables_.empty(); }

 private:
  struct Free {
    void operator()(Value* values) const;
  };
  std::unique_ptr<Value, Free> values_;
  std::size_t used_ = 0;
  std::vector<GlobalName> names_;
  std::vector<SymbolId> new_variables_;
};

}  // namespace zrl::vbs
