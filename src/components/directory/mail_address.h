#pragma once

#include <string>
#include <string_view>

namespace zrl::directory {

// The address in a value of the attributes `mail` and `proxyAddresses`: without the prefix "smtp:",
// in lower case. Empty if the value is an address of another kind ("x400:...", "sip:..."), or no address that
// mail can be sent to.
std::string address_in(std::string_view value);

}  // namespace zrl::directory
