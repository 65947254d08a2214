#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zrl {

// The longest name that fits into a query (RFC 1035, section 2.3.4), written without its last dot.
inline constexpr std::size_t longest_domain_name = 253;

// The text as the name of a domain: trimmed, in small letters, without a dot at its end. Empty if it is
// none: labels of 1 to 63 letters, digits, hyphens and underscores, 253 bytes in all. Names in other
// scripts are written in ASCII (RFC 5890, "xn--...").
std::string domain_name(std::string_view text);

// An IPv4 address by its bytes, an IPv6 address by its half bytes, in reverse and with dots between
// (RFC 5782, sections 2.1 and 2.4). An IPv4 address in the form of an IPv6 one counts as IPv4. Empty if
// the text is neither.
std::string reversed_address(std::string_view text);

}  // namespace zrl
