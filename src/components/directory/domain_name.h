#pragma once

#include <string>

namespace zrl::directory {

// The DNS name that a distinguished name stands for (RFC 2247): "DC=corp,DC=example" is
// "corp.example", in lower case. Empty if it has other parts, or none that can be in a host name.
std::string domain_of(const std::string& distinguished_name);

}  // namespace zrl::directory
