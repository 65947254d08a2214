#pragma once

#include <string>
#include <vector>

#include "components/dns/dns_queries.h"
#include "components/dns/ip_address.h"

// Reads the records of a reply. Each function appends to a list and returns a status of c-ares: the status of
// a reply that failed, and ARES_ENODATA if the reply has no record of the kind. Names have no trailing dot.
namespace zrl::dns {

int read_addresses(const DnsQueries::Reply& reply, IpAddress::Family family, std::vector<IpAddress>& found);
// The host names in the reply to a PTR query for the address's reverse name.
int read_host_names(const DnsQueries::Reply& reply, const IpAddress& address,
                    std::vector<std::string>& found);
int read_exchangers(const DnsQueries::Reply& reply, std::vector<std::string>& found);
// The TXT records, the strings of each joined (RFC 7208, section 3.3).
int read_texts(const DnsQueries::Reply& reply, std::vector<std::string>& found);

}  // namespace zrl::dns
