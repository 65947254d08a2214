#pragma once

#include <memory>

#include "components/dns/dns_surroundings.h"
#include "core/contracts/dns_client.h"

namespace zrl {

// Look-ups by c-ares, which asks one server after the other and repeats what gets lost.
std::shared_ptr<DnsClient> make_dns_client(DnsSurroundings surroundings);

}  // namespace zrl
