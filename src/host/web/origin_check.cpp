#include "host/web/origin_check.h"

#include <array>

#include <arpa/inet.h>
#include <unistd.h>

#include "core/text/text.h"

namespace zrl::web {

namespace {

bool is_address(const std::string& text) {
  std::array<unsigned char, 16> bytes{};
  return ::inet_pton(AF_INET, text.c_str(), bytes.data()) == 1 ||
         ::inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1;
}

// The name in "name:port" or "[address]:port"; empty if it is neither.
std::string name_in(std::string_view host) {
  std::string_view port;
  std::string_view name = host;
  if (host.starts_with('[')) {
    const std::size_t end = host.find(']');
    if (end == host.npos) return {};
    name = host.substr(1, end - 1);
    port = host.substr(end + 1);
  } else if (const std::size_t colon = host.find(':'); colon != host.npos) {
    name = host.substr(0, colon);
    port = host.substr(colon);
  }
  if (!port.empty() && (port[0] != ':' || port.find_first_not_of("0123456789", 1) != port.npos)) return {};
  return lower(name);
}

}  // namespace

OriginCheck::OriginCheck(const std::string& listen_address, const std::vector<std::string>& told) {
  const std::string address = lower(listen_address);
  any_address_ = address == "0.0.0.0" || address == "::";
  hosts_.insert(address);
  if (any_address_ || address == "localhost" || address == "::1" || address.starts_with("127.")) {
    hosts_.insert({"localhost", "127.0.0.1", "::1"});
  }
  if (any_address_) {
    std::array<char, 256> name{};
    if (::gethostname(name.data(), name.size() - 1) == 0) hosts_.insert(lower(name.data()));
  }
  for (const std::string& name : told) told_.insert(name_in(name));
}

bool OriginCheck::is_ours(const Request& request) const {
  const std::string name = name_in(request.host);
  if (name.empty()) return false;
  const bool was_told = told_.contains(name);
  if (!was_told && !is_our_host(name)) return false;
  if (request.origin.empty()) return request.method == "GET" && request.path != "/ws";
  const std::string host = lower(request.host);
  const std::string origin = lower(request.origin);
  if (origin == (request.over_tls ? "https://" : "http://") + host) return true;
  return was_told && origin == "https://" + host;
}

bool OriginCheck::is_our_host(std::string_view name) const {
  return hosts_.contains(name) || (any_address_ && is_address(std::string(name)));
}

}  // namespace zrl::web
