#pragma once

#include <string>
#include <vector>

#include "components/dns/dns_queries.h"
#include "components/dns/ip_address.h"

// What answers hold. Each call appends to a list and returns a status of c-ares: that of a reply without
// success, and ARES_ENODATA if there is nothing of the kind in it. Names come without a dot at their end.
namespace zrl::dns {

int read_addresses(const DnsQueries::Reply& reply, IpAddress::Family family, std::vector<IpAddress>& found);
// Of a query for the address's reverse name.
int read_host_names(const DnsQueries::Reply& reply, const IpAddress& address,
                    std::vector<std::string>& found);
int read_exchangers(const DnsQueries::Reply& reply, std::vector<std::string>& found);
// The strings of each record, joined.
int read_texts(const DnsQueries::Reply& reply, std::vector<std::string>& found);

}  // namespace zrl::dns
