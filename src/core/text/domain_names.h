#pragma once

#include <cstddef>
#include <string_view>

// Names of hosts and domains in ASCII: labels with dots between them, without a dot at the end. Names in
// other scripts must already be in their ASCII form (RFC 5890, "xn--..."). The empty text is no name.
namespace zrl {

// In bytes (RFC 1035, section 2.3.4).
inline constexpr std::size_t longest_label = 63;
inline constexpr std::size_t longest_domain_name = 253;

// 1 to 63 letters, digits, hyphens and underscores. Underscores are not allowed in host names by the
// standard, but occur in them.
bool is_label(std::string_view text);

// One or more such labels, at most 253 bytes with their dots.
bool is_domain_name(std::string_view text);

// The same where no label begins or ends with a hyphen (RFC 952).
bool is_host_name(std::string_view text);

// What fits into a DNS query: labels of 1 to 63 arbitrary bytes, at most 253 bytes with their dots.
bool has_dns_lengths(std::string_view text);

// The same without zero bytes, which would end the name early in a C interface.
bool is_dns_name(std::string_view text);

}  // namespace zrl
