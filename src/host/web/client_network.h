#pragma once

#include <string>

namespace zrl::web {

// What counts as one client: an IPv4 address as it stands, also where it is written as an IPv6 one
// (::ffff:192.0.2.1), and of other IPv6 addresses the network of 64 bits, all of which a client has. A text
// that is no address stays as it is.
std::string network_of(const std::string& address);

}  // namespace zrl::web
