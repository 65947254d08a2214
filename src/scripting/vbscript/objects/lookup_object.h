#pragma once

#include "scripting/vbscript/objects/native.h"

namespace zrl::vbs {

// Console.Lookup: what the product itself asks about a sender, answered by the host's Lookups.
//
//   Address(host), Name(address)   a text, empty where there is none
//   Exchangers(domain)             an array of texts
//   Listed(zone, address)          the list's answer, or an empty text
//   HasEntry(list, entry)          True or False
class LookupObject final : public NativeObject {
 public:
  std::string_view type_name() const override { return "Lookup"; }
  std::span<const NativeMember> members() const override;
};

}  // namespace zrl::vbs
