#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zrl::sample {

struct Script {
  std::string_view name;  // also that of its function
  std::string_view position;
  int priority;
  bool visible;
  std::string_view source;  // lines end with LF

  // As the table stores it.
  std::string stored() const;
};

// An operator's scripts: at least one for every position, and those that they share.
std::span<const Script> scripts();

}  // namespace zrl::sample
