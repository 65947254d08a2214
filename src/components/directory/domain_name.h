#pragma once

#include <string>

namespace zrl::directory {

// The DNS name of a distinguished name (RFC 2247), in lower case: "corp.example" of "DC=corp,DC=example".
// Empty if the name has parts that are no domain components, or none that a host name may contain.
std::string domain_of(const std::string& distinguished_name);

}  // namespace zrl::directory
