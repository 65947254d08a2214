#include "scripting/vbscript/engine.h"

#include "scripting/vbscript/compiler.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

ScriptError compile_error(const CompileFailure& failure, const std::u16string& text,
                          const std::string& name) {
  ScriptError error;
  error.kind = ScriptError::Kind::compilation;
  error.number = failure.number;
  error.description = error_text(failure.number);
  error.source = "Microsoft VBScript compilation error";
  error.name = name;
  const TextPlace place = place_in(text, failure.offset);
  error.line = place.line;
  error.column = place.column;
  return error;
}

}  // namespace

struct Engine::State {
  State(EngineHost& engine_host, const Limits& engine_limits, bool wscript)
      : host(engine_host), limits(engine_limits), with_wscript(wscript) {
    renew();
  }

  void renew() {
    machine.reset();
    machine = std::make_unique<Machine>(host, limits, with_wscript);
  }

  // Runs what may fail; failures become the errors of the interface. Objects that nobody refers to any
  // more end with it.
  template <class Action>
  auto guarded(Action action) {
    machine->start_clock();
    try {
      auto result = action();
      machine->settle();
      return result;
    } catch (const Failure& failure) {
      const ScriptError error = machine->report(failure);
      machine->settle_silently();
      if (failure.quit) throw ScriptQuit{failure.number};
      throw error;
    } catch (...) {
      machine->settle_silently();
      throw;
    }
  }

  EngineHost& host;
  Limits limits;
  bool with_wscript;
  std::unique_ptr<Machine> machine;
};

Engine::Engine(EngineHost& host, const Limits& limits, bool with_wscript)
    : state_(std::make_unique<State>(host, limits, with_wscript)) {}

Engine::~Engine() = default;

void Engine::add_code(const std::string& name, std::string_view utf8, Mode mode) {
  if (utf8.starts_with("\xEF\xBB\xBF")) utf8.remove_prefix(3);
  if (utf8.ends_with('\x1A')) utf8.remove_suffix(1);  // where old editors end a text
  std::u16string text = to_utf16(utf8);
  state_->machine->allow_for(text.size());
  state_->guarded([&] {
    const Module* module = nullptr;
    try {
      module = &state_->machine->add(text, name);
    } catch (const CompileFailure& failure) {
      throw compile_error(failure, text, name);
    }
    if (mode == Mode::run) state_->machine->run_main(*module);
    return true;
  });
}

bool Engine::has_procedure(std::string_view name) const {
  return state_->machine->find_procedure(to_utf16(name)) != nullptr;
}

ScriptValue Engine::call(std::string_view name, std::string_view argument) {
  Machine& machine = *state_->machine;
  return state_->guarded([&] {
    const Proc* proc = machine.find_procedure(to_utf16(name));
    if (!proc) raise(error::type_mismatch, to_utf16(name));
    const Value value = [&] {
      const std::u16string units = to_utf16(argument);
      machine.allow_for(units.size());
      const Value text(machine.heap.string(units));
      return machine.call(*proc, {&text, 1});
    }();
    ScriptValue result;
    if (value.is(Type::empty)) result.number = 0;
    const Value scalar = value.is(Type::object) ? Value() : value;
    if (scalar.is(Type::null) || scalar.is(Type::empty) || scalar.is(Type::array)) return result;
    result.is_empty = false;
    result.text = to_utf8(Text(machine, scalar));
    try {
      result.number = static_cast<std::int32_t>(to_long(machine, scalar));
    } catch (const Failure&) {  // no number
      result.number.reset();
    }
    return result;
  });
}

void Engine::reset() {
  state_->renew();
}

std::size_t Engine::memory_used() const {
  return state_->machine->heap.used();
}

std::string Engine::disassembly(std::string_view procedure) const {
  const Proc* proc = state_->machine->find_procedure(to_utf16(procedure));
  return proc ? disassemble(*proc, state_->machine->symbols()) : std::string();
}

}  // namespace zrl::vbs
