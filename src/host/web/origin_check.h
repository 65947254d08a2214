#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/transport.h"

namespace zrl::web {

// Whether a request was meant for this console and comes from its own pages: no foreign site may
// use a browser that can reach it, nor a name that was bent to its address.
class OriginCheck {
 public:
  // `told` are further names, those of reverse proxies say; they may speak TLS for us. Listening on
  // all addresses makes every address in digits one of ours.
  OriginCheck(const std::string& listen_address, const std::vector<std::string>& told);

  bool is_ours(const Request& request) const;

 private:
  bool is_our_host(std::string_view name) const;

  std::set<std::string, std::less<>> hosts_;
  std::set<std::string, std::less<>> told_;
  bool any_address_ = false;
};

}  // namespace zrl::web
