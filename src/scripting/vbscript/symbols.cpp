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

Symbols::Symbols(Heap& heap) : heap_(heap), slots_(1024) {
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
  if (const SymbolId known = slots_[slot_of(name, hash)]; known != none) return known;
  const std::u16string lower = lower_cased(name);
  const SymbolId canonical = lower == name ? none : intern(lower);
  heap_.charge(sizeof(Entry) + 4 * sizeof(SymbolId) + name.size() * sizeof(char16_t));
  if (entries_.size() * 2 >= slots_.size()) grow();
  const auto id = static_cast<SymbolId>(entries_.size());
  entries_.push_back({std::u16string(name), hash});
  canonical_.push_back(canonical == none ? id : canonical);
  slots_[slot_of(name, hash)] = id;
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
