#pragma once

#include "scripting/vbscript/code.h"
#include "scripting/vbscript/value.h"

namespace zrl::vbs {

// What GetRef returns; its default member is the call.
class ProcedureObject final : public Object {
 public:
  explicit ProcedureObject(const Proc& proc) : proc_(proc) {}
  const Proc& proc() const { return proc_; }

 private:
  const Proc& proc_;
};

}  // namespace zrl::vbs
