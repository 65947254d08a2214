#pragma once

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// WScript: what scripts report to whoever runs them, and ask for.
class WScriptObject final : public NativeObject {
 public:
  std::string_view type_name() const override { return "Object"; }
  std::span<const NativeMember> members() const override;
};

}  // namespace zrl::vbs
