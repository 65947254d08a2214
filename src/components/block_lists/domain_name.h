#pragma once

#include <string>
#include <string_view>

namespace zrl::block_lists {

// The text as the name of a domain: trimmed, in small letters, without a dot at its end. Empty if it is
// none (is_domain_name() of domain_names.h).
std::string domain_name(std::string_view text);

// The part of a host name that somebody registered: "www.shop.example" becomes "shop.example", and
// "www.shop.co.uk" "shop.co.uk". Empty if the name has no such part: a single label, or the domain of a
// registry. The name is one as domain_name() makes them. Registries are those of the list of public suffixes
// that libpsl has built in, without its part for private ones (hosting services, "co.com"): block lists have
// their names as a whole. Under a domain that the list does not know, the last two labels count.
std::string_view registrable_domain(std::string_view host);

// An IPv4 address by its bytes, an IPv6 address by its half bytes, in reverse and with dots between
// (RFC 5782, sections 2.1 and 2.4). An IPv4 address in the form of an IPv6 one counts as IPv4. Empty if
// the text is neither.
std::string reversed_address(std::string_view text);

}  // namespace zrl::block_lists
