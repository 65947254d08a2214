#include <algorithm>
#include <cstdlib>
#include <thread>
#include <utility>

#include "scripting/vbscript/arrays.h"
#include "scripting/vbscript/compiler.h"
#include "scripting/vbscript/conversions.h"
#include "scripting/vbscript/lexer.h"
#include "scripting/vbscript/machine.h"
#include "scripting/vbscript/objects/err_object.h"
#include "scripting/vbscript/objects/module_object.h"
#include "scripting/vbscript/objects/wscript_object.h"
#include "scripting/vbscript/parser.h"
#include "scripting/vbscript/unicode.h"

// The machine's life, its errors and its limits.
namespace zrl::vbs {

namespace {

constexpr std::size_t stack_values = std::size_t{1} << 20;

}  // namespace

void Machine::Free::operator()(void* block) const {
  std::free(block);
}

Machine::Machine(EngineHost& host, const Limits& limits, bool with_wscript)
    : Context(memory_),
      host_(host),
      limits_(limits),
      memory_(limits.memory, limits.string_units),
      symbols_(memory_),
      keywords_(std::make_unique<KeywordTable>(symbols_)),
      builtins_(symbols_, with_wscript),
      // Zeroes are Empty; what is not touched costs nothing.
      stack_(static_cast<Value*>(std::calloc(stack_values, sizeof(Value)))),
      frames_(static_cast<Frame*>(std::calloc(limits.call_depth + 1, sizeof(Frame)))) {
  if (!stack_ || !frames_) throw std::bad_alloc();
  memory_.set_meter(this);
  stack_end_ = stack_.get() + stack_values;
  frames_[0].top = stack_.get();
  err_object_ = Value(Ref<Object>(memory_.make<ErrObject>().get()));
  module_object_ = Value(Ref<Object>(memory_.make<ModuleObject>().get()));
  if (with_wscript) wscript_object_ = Value(Ref<Object>(memory_.make<WScriptObject>().get()));
}

Machine::~Machine() {
  shut_down();
}

void Machine::settle() {
  while (memory_.has_terminations()) {
    Ref<Object> object = memory_.next_termination();
    const Heap::Terminations others = memory_.take_terminations();
    try {
      terminate(*object);
    } catch (const Failure&) {
      memory_.append_terminations(others);
      throw;
    }
    object = {};
    memory_.append_terminations(others);
  }
}

void Machine::settle_silently() {
  while (memory_.has_terminations()) {
    try {
      settle();
    } catch (const Failure&) {
      continue;  // one error is reported already
    }
  }
}

void Machine::terminate(Object& object) {
  auto& instance = static_cast<Instance&>(object);
  instance.mark_terminated();
  check_time();
  place_noted_ = false;
  try {
    invoke(*instance.type().terminate, &instance, {});
  } catch (const Failure& failure) {
    if (failure.final) throw;
  }
}

// Reports to the host, once, what is stopped where no call is left that could fail.
template <class Action>
void Machine::tell_if_stopped(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    if (!failure.quit && !std::exchange(told_stopped_, true)) host_.script_stopped(report(failure));
  }
}

// Objects end in their order of release; what is left, cycles, is taken apart then.
void Machine::shut_down() {
  start_clock();
  tell_if_stopped([this] { settle(); });
  for (std::size_t i = 0; i < globals_.used(); ++i) globals_.values()[i].clear();
  tell_if_stopped([this] { settle(); });
  settle_silently();
  // Members of cycles still want their Class_Terminate.
  std::vector<Ref<Object>> left;
  for (Object* object = memory_.first_object(); object; object = object->next) left.emplace_back(object);
  for (const Ref<Object>& object : left) {
    if (!object->wants_termination()) continue;
    tell_if_stopped([&] { terminate(*object); });
  }
  left.clear();
  err_object_.clear();
  module_object_.clear();
  wscript_object_.clear();
  // Whatever the terminators did, everything goes now, and no script runs any more.
  for (int round = 0; round < 8; ++round) {
    left.clear();
    for (Object* object = memory_.first_object(); object; object = object->next) {
      if (auto* instance = as_instance(object)) instance->mark_terminated();
      left.emplace_back(object);
    }
    if (left.empty()) break;
    for (const Ref<Object>& object : left) object->clear();
    for (std::size_t i = 0; i < globals_.used(); ++i) globals_.values()[i].clear();
  }
  for (auto& module : modules_) memory_.refund(module->charged);
  modules_.clear();
}

void Machine::start_clock() {
  deadline_ = std::chrono::steady_clock::now() + limits_.call_time;
  countdown_ = instructions_between_checks;
  lookups_ = 0;
  told_stopped_ = false;
  place_noted_ = false;
  error_module_ = nullptr;
  error_place_ = {};
}

void Machine::allow_for(std::size_t units) {
  longest_text_ = std::max(longest_text_, units);
  const std::size_t follows =
      longest_text_ > limits_.most_memory ? limits_.most_memory : longest_text_ * limits_.memory_per_unit;
  const bool follows_any = limits_.memory_per_unit > 0;
  memory_.set_limits(std::max(limits_.memory, std::min(follows, limits_.most_memory)),
                     std::max(limits_.string_units, follows_any ? 2 * longest_text_ : 0));
}

void Machine::count_lookup() {
  if (++lookups_ > limits_.lookups) raise(error::cannot_perform);
}

void Machine::sleep(std::chrono::milliseconds time) {
  const auto now = std::chrono::steady_clock::now();
  // The end of the call comes first, should it be nearer.
  std::this_thread::sleep_until(std::min(now + std::min(time, limits_.call_time), deadline_));
  check_time();
}

std::string Machine::running_text() const {
  return depth_ == 0 ? std::string() : frames_[depth_].proc->module->name;
}

void Machine::check_time() {
  if (std::chrono::steady_clock::now() < deadline_) return;
  Failure failure;
  failure.number = error::stopped;
  failure.description = u"The script ran longer than " + ascii(std::to_string(limits_.call_time.count())) +
                        u" milliseconds and was stopped";
  failure.source = u"Microsoft VBScript runtime error";
  failure.final = true;
  throw failure;
}

Module& Machine::add(std::u16string& text, std::string name) {
  const CompileContext context{memory_, symbols_, globals_, builtins_, nullptr, nullptr, nullptr, false};
  error_module_ = nullptr;
  Parser parser(text, symbols_, *keywords_, memory_);
  const std::unique_ptr<Ast> ast = parser.parse();
  modules_.push_back(compile(*ast, text, std::move(name), context));
  return *modules_.back();
}

void Machine::run_main(const Module& module) {
  enter_global(*module.main, nullptr);
  frame().entry = true;
  globals_.take_new_variables();
  run_nested();
}

const Proc* Machine::find_procedure(std::u16string_view name) const {
  const SymbolId symbol = symbols_.find(name);
  const GlobalName* found = symbol == Symbols::none ? nullptr : globals_.find(symbol);
  return found && found->kind == GlobalName::Kind::procedure ? found->procedure : nullptr;
}

Value Machine::call(const Proc& proc, std::span<const Value> arguments) {
  place_noted_ = false;
  error_module_ = nullptr;
  error_place_ = {};
  return invoke(proc, nullptr, arguments.first(std::min<std::size_t>(arguments.size(), proc.parameters)));
}

// The statement that a frame is in.
const Place* Machine::place_of(const Frame& frame) const {
  const bool runs = &frame == &frames_[depth_];
  const auto pc = static_cast<std::uint32_t>(frame.pc - frame.proc->code.data()) - (runs ? 0 : 1);
  const auto& places = frame.proc->places;
  auto after = std::upper_bound(places.begin(), places.end(), pc,
                                [](std::uint32_t at, const Place& place) { return at < place.pc; });
  return after == places.begin() ? nullptr : &*(after - 1);
}

void Machine::note_place() {
  if (place_noted_ || depth_ == 0) return;
  place_noted_ = true;
  error_module_ = frame().proc->module;
  const Place* place = place_of(frame());
  error_offset_ = place ? place->offset : 0;
  error_subject_ = {};
  const auto pc = static_cast<std::uint32_t>(frame().pc - frame().proc->code.data());
  const auto& subjects = frame().proc->subjects;
  const auto found =
      std::lower_bound(subjects.begin(), subjects.end(), pc,
                       [](const Subject& subject, std::uint32_t at) { return subject.pc < at; });
  if (found != subjects.end() && found->pc == pc) error_subject_ = *found;
}

namespace {

// What stands in the text, with (...) for arguments.
std::u16string named(const std::u16string& text, const Extent& extent) {
  std::u16string name;
  int depth = 0;
  for (const char16_t unit : std::u16string_view(text).substr(extent.offset, extent.length)) {
    if (unit == u')') --depth;
    if (depth == 0 && unit > u' ') name += unit;
    if (unit == u'(' && depth++ == 0) name += u"...";
  }
  return name;
}

}  // namespace

ErrorPlace Machine::error_place() const {
  if (!error_module_) return error_place_;
  ErrorPlace place;
  const Module* const origin = error_module_->origin;
  const TextPlace within = place_in(error_module_->text, error_offset_);
  place.name = error_module_->name;
  place.where = origin ? place_in(origin->text, error_module_->origin_offset) : within;
  if (origin) place.inner = within;
  place.of_member = error_subject_.of_member;
  place.object = named(error_module_->text, error_subject_.object);
  place.index = named(error_module_->text, error_subject_.index);
  return place;
}

// Unwinds to the innermost procedure that goes on after errors, and there to the statement that follows.
bool Machine::handle(const Failure& failure, std::size_t bottom) {
  // What was being prepared behind the frame for a call that did not come about.
  constexpr std::ptrdiff_t prepared = 300;
  Value* const behind = frame().top;
  for (Value* value = behind; value < behind + std::min(prepared, stack_end_ - behind); ++value)
    value->clear();
  while (true) {
    Frame& running = frame();
    if (running.resume_next && !failure.final) break;
    const bool last = depth_ == bottom;
    if (running.termination && !failure.final) {
      pop();
      place_noted_ = false;
      return true;
    }
    running.discard = true;
    const Instr* const back = depth_ > 1 ? frames_[depth_ - 1].pc : nullptr;
    pop();
    if (last) return false;
    // The caller's place is that of the call, which lies before where it would have gone on.
    if (back) frame().pc = back - 1;
  }
  err_.number = failure.number;
  err_.source = failure.source;
  err_.description = failure.description;
  err_.help_file = failure.help_file;
  err_.help_context = failure.help_context;
  err_.subject = failure.subject;
  err_.own_source = failure.own_source;
  err_.own_description = failure.own_description;
  place_noted_ = false;
  Frame& running = frame();
  const auto& places = running.proc->places;
  const Place* place = place_of(running);
  std::uint32_t next = place->resume;
  if (next == 0) next = place + 1 < places.data() + places.size() ? place[1].pc : place->pc;
  for (std::size_t reg = place->first_temp; reg < running.proc->registers; ++reg) running.base[reg].clear();
  running.pc = running.proc->code.data() + next;
  return true;
}

namespace {

// What an error is about: the object, its member, a function, an index.
std::u16string subject_of(const Failure& failure, const ErrorPlace& place) {
  switch (failure.number) {
    case error::object_required:
    case error::object_not_set:
      return place.object.empty() ? failure.subject : place.object;
    case error::subscript:
      return place.index.empty() ? failure.subject : place.index;
    case error::type_mismatch:
      return failure.subject.empty() && !place.of_member ? place.object : failure.subject;
    default:
      return place.of_member && !failure.subject.empty() ? place.object + u"." + failure.subject
                                                         : failure.subject;
  }
}

}  // namespace

ScriptError Machine::report(const Failure& failure) const {
  const ErrorPlace place = error_place();
  ScriptError error;
  error.number = failure.number;
  error.description = to_utf8(failure.description);
  const std::u16string subject = subject_of(failure, place);
  if (!subject.empty()) error.description += ": '" + to_utf8(subject) + "'";
  error.source = to_utf8(failure.source);
  if (failure.source == u"Microsoft VBScript compilation error") error.kind = ScriptError::Kind::compilation;
  if (!failure.note.empty()) error.description += " (" + to_utf8(failure.note) + ")";
  const TextPlace inner = failure.inner.line > 0 ? failure.inner : place.inner;
  if (inner.line > 0) {
    error.description += " (line " + std::to_string(inner.line) + ", column " + std::to_string(inner.column) +
                         " of the executed text)";
  }
  error.name = place.name;
  error.line = place.where.line;
  error.column = place.where.column;
  return error;
}

}  // namespace zrl::vbs
