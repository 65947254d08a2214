#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "scripting/vbscript/heap.h"

namespace zrl::vbs {

using SymbolId = std::uint32_t;

// Names as numbers. Names that differ in case are different symbols with one canonical symbol: errors
// show a name as it was written, everything else goes by the canonical one.
class Symbols {
 public:
  // The names count as memory of the heap, which must outlive them; that is when error 7 is raised.
  explicit Symbols(Heap& heap);
  SymbolId intern(std::u16string_view name);
  // The canonical symbol of a name that is written in lower case.
  SymbolId intern_ascii(std::string_view lower_case_name);
  // The canonical symbol if anything interned the name, else `none`.
  SymbolId find(std::u16string_view name) const;

  SymbolId canonical(SymbolId id) const { return canonical_[id]; }
  const std::u16string& name(SymbolId id) const { return entries_[id].name; }
  std::size_t size() const { return entries_.size(); }

  static constexpr SymbolId none = 0;

 private:
  struct Entry {
    std::u16string name;
    std::uint32_t hash;
  };
  std::size_t slot_of(std::u16string_view name, std::uint32_t hash) const;
  void grow();

  Heap& heap_;
  std::deque<Entry> entries_;
  std::vector<SymbolId> canonical_;
  std::vector<SymbolId> slots_;  // open addressing; 0 is free
};

}  // namespace zrl::vbs
