#pragma once

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// System.Collections.ArrayList: a list that grows, with an index from 0.
class ArrayList final : public NativeObject {
 public:
  std::string_view type_name() const override { return "ArrayList"; }
  std::span<const NativeMember> members() const override;
  Value enumerate(Machine& machine) override;
  void clear() override { take_items(); }

  // The items in an array that belongs to the list alone; items from `count` on are Empty.
  Array& items(Heap& memory, std::size_t room);
  const Value& item(std::size_t index) const { return items_.array()->elements[index]; }
  // The list is empty afterwards; what it held ends when the caller lets go of it.
  Value take_items();
  Value list(Machine& machine) const;

  std::size_t count = 0;

 private:
  Value items_;
};

}  // namespace zrl::vbs
