#pragma once

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// Err: the last error that a procedure went over.
class ErrObject final : public NativeObject {
 public:
  std::string_view type_name() const override { return "Object"; }
  std::span<const NativeMember> members() const override;
};

}  // namespace zrl::vbs
