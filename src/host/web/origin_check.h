#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/transport.h"

namespace zrl::web {

// Checks that a request was meant for this console and comes from its own pages, by the headers Host and
// Origin (RFC 9110, RFC 6454). This stops foreign sites from using a browser that can reach the console, and
// names that somebody else points to its address (DNS rebinding).
class OriginCheck {
 public:
  // `told` are further allowed names, for example those of reverse proxies, which may add TLS. If the host
  // listens on all addresses, every numeric address is allowed.
  OriginCheck(const std::string& listen_address, const std::vector<std::string>& told);

  bool is_ours(const Request& request) const;

 private:
  bool is_our_host(std::string_view name) const;

  std::set<std::string, std::less<>> hosts_;
  std::set<std::string, std::less<>> told_;
  bool any_address_ = false;
};

}  // namespace zrl::web
