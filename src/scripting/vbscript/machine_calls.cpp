#include <cstdlib>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/compiler.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/lexer.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/procedure_object.h"
#include "scripting/vbscript/parser.h"
#include "scripting/vbscript/unicode.h"

// Frames: how procedures begin and end.
namespace zrl::vbs {

// Begins a procedure. The window is the place of its result, followed by its arguments.
Frame& Machine::push(const Proc& proc, Value* window, std::size_t count, Instance* me) {
  if (count != proc.parameters) fail(error::argument_count, proc.symbol);
  if (--countdown_ < 0) count_down();
  if (depth_ + 1 >= limits_.call_depth) raise(error::stack_space);
  Value* base = window;
  Value* result = nullptr;
  Value* const globals = globals_.values();
  const bool moved = window >= globals && window < globals + Globals::most;
  if (moved) base = frame().top;
  if (stack_end_ - base < static_cast<std::ptrdiff_t>(proc.registers)) raise(error::stack_space);
  if (moved) {
    // A frame of the top level: its registers are no part of the stack.
    result = window;
    for (std::size_t i = 1; i <= count; ++i) base[i] = std::move(window[i]);
  }
  if (proc.any_by_value) prepare_arguments(proc, base, count);
  base[0].clear();
  for (std::size_t i = count + 1; i < proc.first_temp; ++i) base[i].clear();
  Frame& next = frames_[++depth_];
  next.proc = &proc;
  next.pc = proc.code.data();
  next.base = base;
  next.top = base + proc.registers;
  next.me = me;
  next.result = result;
  next.extra = nullptr;
  next.owned = nullptr;
  next.resume_next = next.discard = next.termination = next.entry = next.plain = false;
  if (me) ++me->references;
  if (!proc.implicit.empty()) bind_names(next);
  return next;
}

void Machine::prepare_arguments(const Proc& proc, Value* window, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const bool by_value = i < 64 ? (proc.by_value >> i & 1) != 0 : proc.parameter_list[i].by_value;
    if (by_value && window[i + 1].is(Type::reference)) window[i + 1] = Value(window[i + 1].get());
  }
}

// Names without a declaration are global variables where there are such.
void Machine::bind_names(Frame& frame) {
  if (frame.proc->executed) return;  // bound by enter_text, which knows the outer frame
  for (const Binding& binding : frame.proc->implicit) {
    if (Value* variable = globals_.existing(binding.symbol)) {
      frame.base[binding.reg] = Value::reference_to(variable);
    }
  }
}

// Global variables that came into being after procedures which name them had begun.
void Machine::bind_new_globals() {
  for (const SymbolId symbol : globals_.take_new_variables()) {
    const GlobalName* name = globals_.find(symbol);
    if (!name || name->kind != GlobalName::Kind::variable) continue;
    for (std::size_t i = 1; i <= depth_; ++i) {
      for (const Binding& binding : frames_[i].proc->implicit) {
        Value& variable = frames_[i].base[binding.reg];
        if (binding.symbol == symbol && variable.is(Type::empty)) {
          variable = Value::reference_to(&globals_.values()[name->slot]);
        }
      }
    }
  }
}

// Ends the frame that runs; its result is where the caller expects it.
void Machine::pop() {
  Frame& done = frame();
  const Proc& proc = *done.proc;
  if (proc.global_frame && done.result) *done.result = std::move(done.base[proc.first_temp]);
  Value* const first = done.base + (proc.global_frame ? proc.first_temp : 1);
  for (Value* value = first; value < done.base + proc.registers; ++value) {
    if (static_cast<int>(value->type()) >= first_counted) value->clear();
  }
  if (proc.global_frame && globals_.used() == proc.registers) globals_.shrink(proc.first_temp);
  if (!proc.global_frame) {
    if (done.discard) {
      done.base[0].clear();
    } else if (done.result) {
      *done.result = std::move(done.base[0]);
    }
  }
  delete done.extra;
  Instance* const me = done.me;
  Module* const owned = done.owned;
  --depth_;
  if (owned) {
    memory_.refund(owned->charged);
    if (error_module_ == owned) {
      // Only an error on its way out is looked at; what is handled costs nothing.
      if (place_noted_) error_place_ = error_place();
      error_module_ = nullptr;
    }
    delete owned;
  }
  if (me) Value(Ref<Object>::adopt(me)).clear();
  if (!waiting_.empty() && waiting_.back().depth > depth_) {
    memory_.append_terminations(waiting_.back().objects);
    waiting_.pop_back();
  }
}

bool Machine::finish() {
  const bool entry = frame().entry;
  pop();
  return entry;
}

void Machine::call_symbol(Value* window, std::size_t count, SymbolId symbol) {
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  if (name->kind != GlobalName::Kind::procedure) return call_unresolved(window, count, no_register, symbol);
  push(*name->procedure, window, count, nullptr);
}

// A variable that Execute made in the procedure that runs, or around the text that runs.
Value* Machine::executed_variable(SymbolId symbol) {
  const Frame& owner = frame().proc->executed ? frames_[frame().owner] : frame();
  if (!owner.extra) return nullptr;
  for (const Binding& extra : owner.extra->bindings) {
    if (extra.symbol == symbols_.canonical(symbol)) return owner.extra->values[extra.reg].get();
  }
  return nullptr;
}

// A variable to write to, whose name had no meaning when the code was compiled.
Value& Machine::named_variable(SymbolId symbol) {
  if (Value* variable = executed_variable(symbol)) return *variable;
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  const bool known = name && name->kind != GlobalName::Kind::undefined;
  if (!known) {
    // Without Option Explicit only an element is written to without making the variable.
    fail(frame().proc->module->option_explicit ? error::undefined_variable : error::type_mismatch, symbol);
  }
  if (name->kind != GlobalName::Kind::variable) fail(error::illegal_assignment, symbol);
  return globals_.values()[name->slot];
}

// A call of a name that had no meaning when the code was compiled.
void Machine::call_unresolved(Value* window, std::size_t count, std::uint16_t local, SymbolId symbol) {
  if (local != no_register && !frame().base[local].get().is(Type::empty)) {
    window[0] = Value::reference_to(&frame().base[local].get());
    return index_many(window, count);
  }
  if (Value* variable = executed_variable(symbol)) {
    window[0] = Value::reference_to(variable);
    return index_many(window, count);
  }
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  const auto kind = name ? name->kind : GlobalName::Kind::undefined;
  switch (kind) {
    case GlobalName::Kind::procedure:
      push(*name->procedure, window, count, nullptr);
      return;
    case GlobalName::Kind::variable:
      window[0] = Value::reference_to(&globals_.values()[name->slot]);
      return index_many(window, count);
    default:
      break;
  }
  const bool declared_only = frame().proc->module->option_explicit;
  fail(
      declared_only && kind == GlobalName::Kind::undefined ? error::undefined_variable : error::type_mismatch,
      symbol);
}

// What a name stands for that had no meaning when the code was compiled.
bool Machine::get_unresolved(Value& target, std::uint16_t local, SymbolId symbol) {
  if (local != no_register) {
    const Value& variable = frame().base[local].get();
    if (!variable.is(Type::empty)) {
      target = variable;
      return true;
    }
  }
  if (const Value* variable = executed_variable(symbol)) {
    target = *variable;
    return true;
  }
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  const auto kind = name ? name->kind : GlobalName::Kind::undefined;
  switch (kind) {
    case GlobalName::Kind::procedure: {
      // The result goes to a register that is not the first one of a window.
      Value* const window = frame().top;
      if (window + 1 >= stack_end_) raise(error::stack_space);
      Frame& next = push(*name->procedure, window, 0, nullptr);
      next.result = &target;
      return true;
    }
    case GlobalName::Kind::variable:
      target = globals_.values()[name->slot];
      return true;
    case GlobalName::Kind::constant:
      target = name->constant;
      return true;
    case GlobalName::Kind::class_type:
      fail(error::type_mismatch, symbol);
    case GlobalName::Kind::undefined:
      break;
  }
  if (frame().proc->module->option_explicit) fail(error::undefined_variable, symbol);
  target.clear();
  return false;
}

void Machine::call_builtin(Value* window, std::size_t count, std::uint32_t index) {
  const Builtin& builtin = builtins_.function(index);
  try {
    window[0] = builtin.function(*this, Arguments(window + 1, count));
    // Texts are scanned, each in a time that goes with its length.
    for (std::size_t i = 0; i <= count; ++i) {
      const Value& value = window[i].get();
      if (value.is(Type::string)) memory_.work(value.string()->length);
    }
  } catch (Failure& failure) {
    const bool names_value = !failure.subject.empty() && failure.subject[0] == u'[';
    if ((failure.subject.empty() || names_value) && !failure.final) failure.subject = ascii(builtin.name);
    throw;
  }
  for (std::size_t i = 1; i <= count; ++i) window[i].clear();
}

// Runs what was entered last, until it returns.
void Machine::run_nested() {
  ++nested_;
  try {
    run(depth_);
  } catch (...) {
    --nested_;
    throw;
  }
  --nested_;
}

Value Machine::invoke(const Proc& proc, Instance* me, std::span<const Value> arguments) {
  if (nested_ >= deepest_nested) raise(error::stack_space);
  Value* const window = frame().top;
  if (stack_end_ - window <= static_cast<std::ptrdiff_t>(arguments.size() + 1)) raise(error::stack_space);
  for (std::size_t i = 0; i < arguments.size(); ++i) window[i + 1] = arguments[i];
  try {
    push(proc, window, arguments.size(), me).entry = true;
  } catch (...) {
    for (std::size_t i = 0; i < arguments.size(); ++i) window[i + 1].clear();
    throw;
  }
  run_nested();
  if (proc.global_frame) return {};
  return std::exchange(window[0], Value());
}

// Class_Terminate of an object that nobody refers to any more runs between two instructions.
void Machine::run_terminations() {
  while (memory_.has_terminations()) {
    const Ref<Object> object = memory_.next_termination();
    auto& instance = static_cast<Instance&>(*object);
    instance.mark_terminated();
    try {
      Frame& next = push(*instance.type().terminate, frame().top, 0, &instance);
      next.discard = true;
      next.termination = true;
      if (memory_.has_terminations()) waiting_.push_back({depth_, memory_.take_terminations()});
      return;
    } catch (const Failure& failure) {
      if (failure.final) throw;
      continue;  // no room to run it: the object goes without
    }
  }
}

void Machine::new_instance(Value& target, SymbolId symbol) {
  // A class of that name does not hide the one that the language brings.
  if (symbols_.name(symbols_.canonical(symbol)) == u"regexp") {
    target = create_object(u"VBScript.RegExp");
    return;
  }
  const GlobalName* name = globals_.find(symbols_.canonical(symbol));
  const bool known = name && name->kind != GlobalName::Kind::undefined;
  if (!known) fail(error::undefined_variable, symbol);
  if (name->kind != GlobalName::Kind::class_type) fail(error::undefined_class, symbol);
  Ref<Instance> instance = Instance::make(memory_, *name->class_type);
  target = Value(Ref<Object>(instance.get()));
  const Proc* initialise = name->class_type->initialise;
  if (initialise) push(*initialise, frame().top, 0, instance.get()).discard = true;
}

// Compiles what Execute and its kin are given, for the frame that runs.
const Module& Machine::compile_text(std::u16string text, bool global, bool evaluate,
                                    std::unique_ptr<Module>& made) {
  const Frame& running = frame();
  const Frame& owner = running.proc->executed ? frames_[running.owner] : running;
  CompileContext context{memory_, symbols_, globals_, builtins_, nullptr, nullptr, nullptr, evaluate};
  if (!global && !owner.proc->global_frame) {
    context.outer = owner.proc;
    context.outer_extra = owner.extra ? &owner.extra->bindings : nullptr;
    context.outer_class = running.me ? &running.me->type() : nullptr;
  }
  const Module& running_module = *running.proc->module;
  memory_.work(text.size() * 16);
  try {
    Parser parser(text, symbols_, *keywords_, memory_);
    const std::unique_ptr<Ast> ast = evaluate ? parser.parse_expression_text() : parser.parse();
    made = compile(*ast, text, running_module.name, context);
  } catch (const CompileFailure& failure) {
    Failure raised;
    raised.inner = place_in(text, failure.offset);
    // In an expression by itself whatever is missing is its syntax.
    const bool incomplete = evaluate && failure.number == error::expected_expression;
    raised.number = incomplete ? error::syntax : failure.number;
    raised.description = to_utf16(error_text(raised.number));
    raised.source =
        failure.number > 1000 ? u"Microsoft VBScript compilation error" : u"Microsoft VBScript runtime error";
    throw raised;
  }
  const Place* const place = place_of(running);
  made->origin = running_module.origin ? running_module.origin : &running_module;
  made->origin_offset = running_module.origin ? running_module.origin_offset : place ? place->offset : 0;
  return *made;
}

void Machine::run_text(const Value& text, bool global) {
  const Value source = text.get().is(Type::object) ? default_value(text) : text.get();
  if (source.is(Type::null)) raise(error::null_use);
  if (!source.is(Type::string)) raise(error::type_mismatch);
  std::unique_ptr<Module> made;
  compile_text(std::u16string(source.text()), global, false, made);
  enter_text(std::move(made), nullptr, global);
}

void Machine::evaluate_text(const Value& text, Value& target) {
  if (!text.get().is(Type::string)) {
    Value same = text.get();
    target = std::move(same);
    return;
  }
  std::unique_ptr<Module> made;
  compile_text(std::u16string(text.get().text()), false, true, made);
  enter_text(std::move(made), &target, false);
}

// Runs a text as a procedure of its own whose variables are those of the frame that runs.
void Machine::enter_text(std::unique_ptr<Module> module, Value* target, bool global) {
  const Proc& proc = *module->main;
  const std::size_t caller = depth_;
  const bool keeps = module->procedures.size() > 1 || !module->classes.empty();
  Module* const owned = module.get();
  if (keeps) {
    modules_.push_back(std::move(module));
  }
  try {
    if (proc.global_frame) {
      enter_global(proc, target);
    } else {
      push(proc, frame().top, 0, global ? nullptr : frame().me);
    }
  } catch (...) {
    if (!keeps) memory_.refund(owned->charged);
    throw;
  }
  Frame& next = frame();
  if (!keeps) next.owned = module.release();
  if (!proc.global_frame) {
    next.owner = static_cast<std::uint32_t>(frames_[caller].proc->executed ? frames_[caller].owner : caller);
    next.discard = target == nullptr;
    next.result = target;
    bind_executed(next);
  }
  if (globals_.has_new_variables()) bind_new_globals();
}

// Code of the top level: its registers are the global variables.
void Machine::enter_global(const Proc& proc, Value* target) {
  if (depth_ + 1 >= limits_.call_depth) raise(error::stack_space);
  if (globals_.used() == proc.first_temp) globals_.add_slots(proc.registers - proc.first_temp);
  Value* const top = frame().top;
  Frame& next = frames_[++depth_];
  next = Frame();
  next.proc = &proc;
  next.pc = proc.code.data();
  next.base = globals_.values();
  next.top = top;
  next.result = target;
}

// The variables of executed text: those of the procedure around it, then global ones; others are new
// there.
void Machine::bind_executed(Frame& frame) {
  Frame& owner = frames_[frame.owner];
  for (const Binding& binding : frame.proc->implicit) {
    Value* found = find_outer(owner, binding);
    frame.base[binding.reg] = Value::reference_to(found);
  }
}

Value* Machine::find_outer(Frame& owner, const Binding& binding) {
  for (const Binding& local : owner.proc->locals) {
    if (local.symbol == binding.symbol) return &owner.base[local.reg].get();
  }
  if (owner.extra) {
    for (const Binding& extra : owner.extra->bindings) {
      if (extra.symbol == binding.symbol) return owner.extra->values[extra.reg].get();
    }
  }
  if (!binding.declared) {
    if (Value* variable = globals_.existing(binding.symbol)) return variable;
  }
  if (!owner.extra) owner.extra = new ExtraScope;
  owner.plain = false;
  ExtraScope& extra = *owner.extra;
  extra.bindings.push_back({binding.symbol, static_cast<std::uint16_t>(extra.values.size()), true});
  extra.values.push_back(std::make_unique<Value>());
  return extra.values.back().get();
}

Value Machine::procedure_reference(std::u16string_view name) {
  const Proc* proc = find_procedure(name);
  if (!proc) raise(error::invalid_call);
  return Value(Ref<Object>(memory_.make<ProcedureObject>(*proc).get()));
}

}  // namespace zrl::vbs
