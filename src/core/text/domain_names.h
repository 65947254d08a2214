#pragma once

#include <cstddef>
#include <string_view>

// Names of hosts and domains in ASCII: labels with dots between them, without a dot at the end. Names in
// other scripts are written in ASCII before they come here (RFC 5890, "xn--...").
namespace zrl {

// In bytes (RFC 1035, section 2.3.4).
inline constexpr std::size_t longest_label = 63;
inline constexpr std::size_t longest_domain_name = 253;

// 1 to 63 letters, digits, hyphens and underscores. An underscore is not for host names, but some have one.
bool is_label(std::string_view text);

// Such labels, of 253 bytes in all.
bool is_domain_name(std::string_view text);

// The same where no label begins or ends with a hyphen (RFC 952).
bool is_host_name(std::string_view text);

// What fits into a query: labels of 1 to 63 bytes, whichever they are, of 253 in all.
bool has_dns_lengths(std::string_view text);

// The same without zero bytes, which the interfaces of C take for an end.
bool is_dns_name(std::string_view text);

}  // namespace zrl
