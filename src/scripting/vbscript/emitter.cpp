#include "scripting/vbscript/emitter.h"

#include <algorithm>
#include <utility>

#include "scripting/vbscript/errors.h"

namespace zrl::vbs {

std::uint32_t ConstantPool::add(const Value& value) {
  module_.constants.push_back(value);
  return static_cast<std::uint32_t>(module_.constants.size() - 1);
}

std::uint32_t ConstantPool::number(const Value& value) {
  const std::uint64_t key =
      static_cast<std::uint64_t>(value.i()) * 31 + static_cast<std::uint64_t>(value.type());
  const auto found = numbers_.find(key);
  if (found != numbers_.end()) {
    const Value& known = module_.constants[found->second];
    if (known.type() == value.type() && known.i() == value.i()) return found->second;
  }
  return numbers_[key] = add(value);
}

std::uint32_t ConstantPool::literal(std::uint32_t string_of_text) {
  if (literals_.empty()) literals_.resize(ast_.strings.size());
  std::uint32_t& known = literals_[string_of_text];
  if (known == 0) known = add(Value(ast_.strings[string_of_text])) + 1;
  return known - 1;
}

std::uint32_t ConstantPool::named(SymbolId canonical, const Value& value) {
  const auto [entry, inserted] = named_.try_emplace(canonical, 0U);
  if (inserted) entry->second = add(value);
  return entry->second;
}

void Emitter::emit(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  if (a > 0xffff || b > 0xffff || c > 0xffff) throw CompileFailure{1001, 0};
  proc_.code.push_back(
      {op, static_cast<std::uint16_t>(a), static_cast<std::uint16_t>(b), static_cast<std::uint16_t>(c)});
}

void Emitter::emit_wide(Op op, std::uint32_t a, std::int64_t wide) {
  emit(op, a);
  proc_.code.back().set_wide(static_cast<std::int32_t>(wide));
}

void Emitter::emit_extended(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c, std::int64_t extra) {
  emit(op, a, b, c);
  emit_wide(op, 0, extra);
}

void Emitter::jump(Op op, std::uint32_t a, Label& label) {
  if (label.target < 0) label.uses.push_back(proc_.code.size());
  emit_wide(op, a, label.target);
}

void Emitter::jump_extended(Op op, std::uint32_t a, std::uint32_t b, std::uint32_t c, Label& label) {
  if (label.target < 0) label.uses.push_back(proc_.code.size() + 1);
  emit_extended(op, a, b, c, label.target);
}

void Emitter::bind(Label& label) {
  label.target = static_cast<std::int64_t>(proc_.code.size());
  for (const std::size_t use : label.uses) proc_.code[use].set_wide(static_cast<std::int32_t>(label.target));
  label.uses.clear();
}

std::size_t Emitter::place(std::uint32_t offset) {
  proc_.places.push_back(
      {static_cast<std::uint32_t>(proc_.code.size()), offset, 0, static_cast<std::uint32_t>(persistent_)});
  return last_place();
}

void Emitter::resume_at(std::size_t place, const Label& label) {
  proc_.places[place].resume = static_cast<std::uint32_t>(label.target);
}

void Emitter::subject(bool of_member, Extent object, Extent index) {
  proc_.subjects.push_back({static_cast<std::uint32_t>(proc_.code.size()), of_member, object, index});
}

Register Emitter::temp(std::size_t count) {
  const std::size_t first = top_;
  top_ += count;
  most_ = std::max(most_, top_);
  if (top_ >= no_register) throw CompileFailure{1001, 0};
  return static_cast<Register>(first);
}

std::size_t Emitter::keep_below(std::size_t bound) {
  return std::exchange(persistent_, bound);
}

void Emitter::holds(std::size_t reg) {
  if (reg < persistent_) return;
  held_first_ = std::min(held_first_, reg);
  held_end_ = std::max(held_end_, reg + 1);
}

void Emitter::take_back(std::size_t reg) {
  if (held_first_ != reg) return;
  held_first_ = reg + 1;
  if (held_first_ == held_end_) forget_held();
}

void Emitter::forget_held() {
  held_first_ = SIZE_MAX;
  held_end_ = 0;
}

Register Emitter::temp_behind_held() {
  top_ = std::max(top_, held_end_);
  return temp();
}

void Emitter::end_statement() {
  if (holds_any()) {
    emit(Op::clear, static_cast<std::uint32_t>(held_first_), static_cast<std::uint32_t>(held_count()));
  }
  forget_held();
}

}  // namespace zrl::vbs
