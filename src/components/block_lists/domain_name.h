#pragma once

#include <string>
#include <string_view>

namespace zrl::block_lists {

// The text as a domain name: trimmed, in lower case, without a trailing dot. Empty if it is no domain name
// (see is_domain_name() in domain_names.h).
std::string domain_name(std::string_view text);

// The registrable domain of a host name: "shop.example" of "www.shop.example", "shop.co.uk" of
// "www.shop.co.uk". Empty if the name has none: a single label, or the domain of a registry. The name must be
// in the form of domain_name(); the result is a view into it. Registries are those of the public suffix list
// that is built into libpsl, without its private section (hosting services, "co.com"), because block lists
// list such names as a whole. Under a domain that the list does not know, the last two labels are the result.
std::string_view registrable_domain(std::string_view host);

// The name under which a block list has an address (RFC 5782, sections 2.1 and 2.4): the bytes of an IPv4
// address in decimal, or the half bytes of an IPv6 address in hexadecimal, in reverse and separated by dots.
// An IPv4-mapped IPv6 address counts as IPv4. Empty if the text is no address.
std::string reversed_address(std::string_view text);

}  // namespace zrl::block_lists
