#pragma once

#include <string>
#include <string_view>

namespace zrl::directory {

struct ServerAddress {
  std::string url;   // "ldap://host:389"
  std::string base;  // where to search; empty if the address does not say

  // From one of the forms that people write. Raises zrl::Error if it is none of them.
  static ServerAddress parse(std::string_view text);
};

}  // namespace zrl::directory
