#pragma once

#include <vector>

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// Scripting.Dictionary: keys of any sub-type but arrays, in the order of their addition.
class Dictionary final : public NativeObject {
 public:
  ~Dictionary() override;
  std::string_view type_name() const override { return "Dictionary"; }
  std::span<const NativeMember> members() const override;
  Value enumerate(Machine& machine) override;
  void clear() override;

  std::size_t count() const { return live_; }
  bool ignores_case() const { return ignores_case_; }
  void set_ignores_case(bool ignores) { ignores_case_ = ignores; }

  // nullptr where there is no such key. Raises 13 for an array.
  Value* find(const Value& key);
  // The key must be new.
  Value& add(const Value& key);
  // Whether it was there. What it held is handed over, so that it ends after the table is in order.
  bool remove(const Value& key, Value& key_removed, Value& item_removed);
  void change_key(const Value& from, const Value& to);
  void remove_all();
  Value list(Machine& machine, bool of_keys) const;

 private:
  struct Entry {
    Value key;
    Value item;
    std::uint32_t hash = 0;
    bool live = false;
  };
  std::uint32_t hash_of(const Value& key) const;
  bool same(const Value& a, const Value& b) const;
  std::size_t slot_of(const Value& key, std::uint32_t hash) const;
  void grow();
  void rebuild(std::size_t slots);

  static constexpr std::uint32_t free_slot = 0;           // else the index of an entry + 1
  static constexpr std::uint32_t left_slot = UINT32_MAX;  // its entry has another key now
  std::vector<Entry> entries_;
  std::vector<std::uint32_t> slots_;
  std::size_t live_ = 0;
  std::size_t left_ = 0;  // slots
  std::size_t charged_ = 0;
  bool ignores_case_ = false;
};

}  // namespace zrl::vbs
