#pragma once

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// WScript: Echo and Quit, for scripts on the command line.
class WScriptObject final : public NativeObject {
 public:
  std::string_view type_name() const override { return "Object"; }
  std::span<const NativeMember> members() const override;
};

}  // namespace zrl::vbs
