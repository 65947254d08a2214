#pragma once

#include <string>
#include <string_view>

namespace zrl::directory {

struct ServerAddress {
  std::string url;   // "ldap://host:389"
  std::string base;  // where to search; empty if the address does not say

  // Takes "host", "host:port", and the same after "ldap://" or "ldaps://", with a base after a slash (RFC
  // 4516). Raises zrl::Error for anything else.
  static ServerAddress parse(std::string_view text);
};

}  // namespace zrl::directory
