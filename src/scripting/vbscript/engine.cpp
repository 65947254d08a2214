#include "scripting/vbscript/engine.h"

#include <algorithm>

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
  error.line = 1;
  std::size_t line_start = 0;
  for (std::size_t i = 0; i < failure.offset && i < text.size(); ++i) {
    const bool ends =
        text[i] == u'\n' || (text[i] == u'\r' && (i + 1 >= text.size() || text[i + 1] != u'\n'));
    if (!ends) continue;
    ++error.line;
    line_start = i + 1;
  }
  error.column = std::min(failure.offset, text.size()) - line_start + 1;
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

  // Runs what may fail; failures become the errors of the interface.
  template <class Action>
  auto guarded(Action action) {
    machine->start_clock();
    struct Settle {
      Machine& settled;
      ~Settle() { settled.settle(); }
    } const settle{*machine};
    try {
      return action();
    } catch (const Failure& failure) {
      if (failure.quit) throw ScriptQuit{failure.number};
      throw machine->report(failure);
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
  const std::u16string text = to_utf16(utf8);
  state_->guarded([&] {
    const Module* module = nullptr;
    try {
      module = &state_->machine->add(text, name);
    } catch (const CompileFailure& failure) {
      throw compile_error(failure, text, name);
    }
    if (mode == Mode::run) state_->machine->run_main(*module);
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
    const Value text(machine.heap.string(to_utf16(argument)));
    const Value value = machine.call(*proc, {&text, 1});
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
