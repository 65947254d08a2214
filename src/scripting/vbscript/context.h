#pragma once

#include "scripting/vbscript/heap.h"
#include "scripting/vbscript/locale.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// What conversions and operators need to know of the machine.
class Context : public WorkMeter {
 public:
  explicit Context(Heap& memory) : heap(memory) {}
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  virtual ~Context() = default;
  // The value of an object's default member; raises 91 for Nothing, 438 where there is none. Never an
  // object again.
  virtual Value default_value(const Value& object) = 0;

  Heap& heap;
  const Locale* locale = &american_locale();
};

}  // namespace zrl::vbs
