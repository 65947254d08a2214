#include "scripting/vbscript/code.h"

#include <bit>
#include <cstdlib>
#include <new>

#include "scripting/vbscript/errors.h"

namespace zrl::vbs {

void ClassInfo::index_members() {
  slots.assign(std::bit_ceil(members.size() * 2 + 1), 0);
  const std::size_t mask = slots.size() - 1;
  for (std::size_t i = 0; i < members.size(); ++i) {
    std::size_t slot = members[i].symbol & mask;
    while (slots[slot] != 0) slot = (slot + 1) & mask;
    slots[slot] = static_cast<std::uint32_t>(i + 1);
  }
}

// Zeroes are Empty, and cost nothing before they are touched.
Globals::Globals() : values_(static_cast<Value*>(std::calloc(most, sizeof(Value)))) {
  if (!values_) throw std::bad_alloc();
}

void Globals::Free::operator()(Value* values) const {
  std::free(values);
}

std::uint16_t Globals::add_slots(std::size_t count) {
  if (count > most - used_) throw CompileFailure{1001, 0};
  const std::size_t first = used_;
  used_ += count;
  return static_cast<std::uint16_t>(first);
}

std::uint16_t Globals::declare(SymbolId canonical) {
  const std::uint16_t slot = add_slots(1);
  GlobalName& entry = name(canonical);
  entry.kind = GlobalName::Kind::variable;
  entry.slot = slot;
  new_variables_.push_back(canonical);
  return slot;
}

Value* Globals::existing(SymbolId canonical) {
  const GlobalName* name = find(canonical);
  if (!name || name->kind != GlobalName::Kind::variable) return nullptr;
  Value& value = values_.get()[name->slot];
  return name->declared || !value.is(Type::empty) ? &value : nullptr;
}

}  // namespace zrl::vbs
