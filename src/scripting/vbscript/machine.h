#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "scripting/vbscript/builtins.h"
#include "scripting/vbscript/code.h"
#include "scripting/vbscript/context.h"
#include "scripting/vbscript/engine.h"
#include "scripting/vbscript/errors.h"
#include "scripting/vbscript/limits.h"
#include "scripting/vbscript/objects/instance.h"
#include "scripting/vbscript/operators.h"

namespace zrl::vbs {

class KeywordTable;
class NativeObject;

// Variables that Execute made in a procedure that is running.
struct ExtraScope {
  std::vector<Binding> bindings;  // reg counts `values`
  std::vector<std::unique_ptr<Value>> values;
};

// A procedure that runs or waits for one that it called.
struct Frame {
  const Proc* proc = nullptr;
  const Instr* pc = nullptr;  // where it goes on
  Value* base = nullptr;      // its registers
  Value* top = nullptr;       // of the stack, behind its registers
  Instance* me = nullptr;
  Value* result = nullptr;  // where the result goes when it is not register 0 itself
  ExtraScope* extra = nullptr;
  Module* owned = nullptr;  // executed text that goes with the frame
  std::uint32_t owner = 0;  // for executed text: the frame whose variables it sees
  bool resume_next = false;
  bool discard = false;      // nobody wants the result
  bool termination = false;  // a Class_Terminate: its errors end with it
  bool entry = false;        // returns to C++
  bool plain = false;        // nothing is to be done at its end but to drop its registers
};

// Where an error arose, and what it names.
struct ErrorPlace {
  std::string name;
  TextPlace where;
  TextPlace inner;  // in a text that is executed by the statement at `where`
  bool of_member = false;
  std::u16string object;
  std::u16string index;
};

// What scripts see as Err.
struct ErrState {
  std::int32_t number = 0;
  std::u16string source;
  std::u16string description;
  std::u16string help_file;
  std::int32_t help_context = 0;
  std::u16string subject;
  bool own_source = false;  // given by a script, not by the language
  bool own_description = false;
};

// Runs compiled code. One machine a thread at a time; all values that it hands out belong to its heap.
class Machine final : public Context {
 public:
  Machine(EngineHost& host, const Limits& limits, bool with_wscript);
  ~Machine() override;
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // Compiles a text, which it takes, and enters its names. Raises CompileFailure; the text then stays.
  Module& add(std::u16string& text, std::string name);
  void run_main(const Module& module);
  const Proc* find_procedure(std::u16string_view name) const;
  Value call(const Proc& proc, std::span<const Value> arguments);
  // Runs the Class_Terminate of objects that nobody refers to any more; nothing else may run. Raises what
  // stops one of them; other errors end with it.
  void settle();
  // The same where an error is being reported already.
  void settle_silently();
  // The memory that a text of that many units entitles scripts to.
  void allow_for(std::size_t units);
  // Ends all objects; nothing may run.
  void shut_down();

  // Starts the clock of a call from outside.
  void start_clock();
  void check_time() override;
  // One more question to the host's look-ups; raises 17 when the call had its share.
  void count_lookup();
  // Waits; that is time of the call.
  void sleep(std::chrono::milliseconds time);
  // The name of the text whose code runs; empty where none does.
  std::string running_text() const;
  // While one lives, the script waits for a person; that is no time of the call.
  class Pause {
   public:
    explicit Pause(Machine& machine) : machine_(machine) {}
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause() { machine_.deadline_ += std::chrono::steady_clock::now() - begin_; }

   private:
    Machine& machine_;
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
  };
  Value default_value(const Value& object) override;
  [[nodiscard]] ScriptError report(const Failure& failure) const;

  // For built-in functions and objects.
  EngineHost& host() { return host_; }
  const Limits& limits() const { return limits_; }
  Symbols& symbols() { return symbols_; }
  ErrState& err() { return err_; }
  Value create_object(std::u16string_view class_name);
  Value procedure_reference(std::u16string_view name);
  const Value& err_object() const { return err_object_; }
  const Value& wscript_object() const { return wscript_object_; }
  double random(const Value* argument);
  void randomise(const Value* seed);
  // Calls a procedure from C++ and waits for it.
  Value invoke(const Proc& proc, Instance* me, std::span<const Value> arguments);

 private:
  // The dispatch loop (machine.cpp); returns when the frame `bottom`, an entry, has returned.
  void run(std::size_t bottom);
  void run_nested();
  void execute();

  // Frames (machine_calls.cpp).
  Frame& push(const Proc& proc, Value* window, std::size_t count, Instance* me);
  void pop();
  bool finish();  // whether the frame was the entry of a C++ call
  void prepare_arguments(const Proc& proc, Value* window, std::size_t count);
  void bind_names(Frame& frame);
  void bind_executed(Frame& frame);
  Value* find_outer(Frame& owner, const Binding& binding);
  void bind_new_globals();
  void call_symbol(Value* window, std::size_t count, SymbolId symbol);
  void call_unresolved(Value* window, std::size_t count, std::uint16_t local, SymbolId symbol);
  bool get_unresolved(Value& target, std::uint16_t local, SymbolId symbol);
  Value* executed_variable(SymbolId symbol);
  Value& named_variable(SymbolId symbol);
  void call_builtin(Value* window, std::size_t count, std::uint32_t index);
  void run_text(const Value& text, bool global);
  void evaluate_text(const Value& text, Value& target);
  const Module& compile_text(std::u16string text, bool global, bool evaluate, std::unique_ptr<Module>& made);
  void enter_text(std::unique_ptr<Module> module, Value* target, bool global);
  void enter_global(const Proc& proc, Value* target);
  void run_terminations();
  void new_instance(Value& target, SymbolId symbol);

  // Members, indexes (machine_members.cpp).
  void get_member(Value& target, const Value& object, SymbolId symbol, std::size_t target_register);
  void call_member(Value* window, std::size_t count, SymbolId symbol, bool own);
  void call_instance(Value* window, std::size_t count, SymbolId symbol, Instance& instance);
  void put_member(Value* window, std::size_t count, SymbolId symbol, bool set, bool own);
  void put_instance(Value* window, std::size_t count, SymbolId symbol, Instance& instance, bool set);
  void index(Value& target, const Value& callee, const Value& argument);
  void index_many(Value* window, std::size_t count);
  void refer_index(Value* window, std::size_t count, Value& lock);
  void let_index(Value& callee, const Value& argument, const Value& value);
  void put_index(Value* window, std::size_t count, bool set);
  void call_default(Value* window, std::size_t count);
  Value& element(Value& variable, Value* indexes, std::size_t count);
  const Member& member_of(const Instance& instance, SymbolId symbol, bool own) const;
  bool is_module(const Value& object) const;
  static NativeObject& native_of(const Value& object);
  void get_of_module(Value& target, SymbolId symbol);
  void call_of_module(Value* window, std::size_t count, SymbolId symbol);
  void put_of_module(Value* window, std::size_t count, SymbolId symbol, bool set);
  void put_element(Value& element, const Value& value, bool set);

  // Statements (machine_statements.cpp).
  void let(Value& variable, const Value& value);
  void let_taken(Value& variable, Value& value);
  void set(Value& variable, const Value& value);
  bool prepare_for(Value& variable, Value* bounds, const Value& from);
  bool next_for(Value& variable, Value* bounds);
  void prepare_each(Value* state, const Value& collection);
  bool next_each(Value& variable, Value* state);
  void dim(Value& variable, Value* bounds, std::size_t count);
  void redim(Value& variable, Value* bounds, std::size_t count, bool preserve);
  void on_error(bool resume);
  [[noreturn]] void fail(std::int32_t number, SymbolId symbol);

  void terminate(Object& object);
  template <class Action>
  void tell_if_stopped(Action action);

  // Errors (machine_errors.cpp). Whether the machine can go on.
  bool handle(const Failure& failure, std::size_t bottom);
  const Place* place_of(const Frame& frame) const;
  void note_place();
  [[nodiscard]] ErrorPlace error_place() const;
  void count_down();

  Frame& frame() { return frames_[depth_]; }
  std::u16string symbol_text(SymbolId symbol) const { return symbols_.name(symbol); }

  static constexpr std::size_t deepest_nested = 120;
  static constexpr std::int64_t instructions_between_checks = 20'000;
  static constexpr std::int64_t instructions_an_error_costs = 100;

  EngineHost& host_;
  Limits limits_;
  Heap memory_;
  Symbols symbols_;
  std::unique_ptr<KeywordTable> keywords_;
  Builtins builtins_;
  Globals globals_;
  std::vector<std::unique_ptr<Module>> modules_;

  // Zeroes from the start, so that what is not touched costs nothing.
  struct Free {
    void operator()(void* block) const;
  };
  std::unique_ptr<Value, Free> stack_;
  Value* stack_end_ = nullptr;
  std::unique_ptr<Frame[], Free> frames_;
  std::size_t depth_ = 0;  // of the frame that runs; 0 is none
  std::size_t nested_ = 0;

  // Objects that end after the one whose Class_Terminate runs in the frame at `depth`.
  struct Waiting {
    std::size_t depth;
    Heap::Terminations objects;
  };
  std::vector<Waiting> waiting_;

  std::size_t lookups_ = 0;       // in this call
  std::size_t longest_text_ = 0;  // units
  std::int64_t countdown_ = instructions_between_checks;
  std::chrono::steady_clock::time_point deadline_{};
  ErrState err_;
  Value err_object_;
  Value module_object_;
  Value wscript_object_;
  std::uint32_t random_seed_ = 0x50000;

  // Where the last error arose, for the report.
  const Module* error_module_ = nullptr;
  std::uint32_t error_offset_ = 0;
  Subject error_subject_;
  ErrorPlace error_place_;  // once error_module_ is gone
  bool place_noted_ = false;
  bool told_stopped_ = false;
};

}  // namespace zrl::vbs
