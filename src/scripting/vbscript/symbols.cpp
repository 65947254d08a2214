#include "scripting/vbscript/symbols.h"

#include "scripting/vbscript/unicode.h"

namespace zrl::vbs {

namespace {

std::uint32_t hash_of(std::u16string_view name) {
  std::uint32_t hash = 2166136261U;
  for (const char16_t unit : name) hash = (hash ^ unit) * 16777619U;
  return hash ^ hash >> 15;
}

}  // namespace

Symbols::Symbols() : slots_(1024) {
  entries_.push_back({{}, 0});
  canonical_.push_back(0);
}

std::size_t Symbols::slot_of(std::u16string_view name, std::uint32_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  std::size_t slot = hash & mask;
  while (slots_[slot] != none) {
    const Entry& entry = entries_[slots_[slot]];
    if (entry.hash == hash && entry.name == name) break;
    slot = (slot + 1) & mask;
  }
  return slot;
}

void Symbols::grow() {
  slots_.assign(slots_.size() * 2, none);
  for (SymbolId id = 1; id < entries_.size(); ++id) {
    slots_[slot_of(entries_[id].name, entries_[id].hash)] = id;
  }
}

SymbolId Symbols::intern(std::u16string_view name) {
  const std::uint32_t hash = hash_of(name);
  std::size_t slot = slot_of(name, hash);
  if (slots_[slot] != none) return slots_[slot];
  if (entries_.size() * 2 >= slots_.size()) {
    grow();
    slot = slot_of(name, hash);
  }
  const auto id = static_cast<SymbolId>(entries_.size());
  entries_.push_back({std::u16string(name), hash});
  canonical_.push_back(id);
  slots_[slot] = id;
  std::u16string lower = lower_cased(name);
  if (lower != name) {
    const SymbolId canonical = intern(lower);
    canonical_[id] = canonical;
  }
  return id;
}

SymbolId Symbols::intern_ascii(std::string_view lower_case_name) {
  return intern(ascii(lower_case_name));
}

SymbolId Symbols::find(std::u16string_view name) const {
  const std::u16string lower = lower_cased(name);
  return slots_[slot_of(lower, hash_of(lower))];
}

}  // namespace zrl::vbs
