#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/dns_client.h"

namespace zrl::dns {

// Look-ups by c-ares at the servers of the console's own look-up of names, and within its time-out.
// Servers are asked one after the other; what gets lost is repeated. A check of a sender as a whole
// takes at most 20 seconds.
std::shared_ptr<DnsClient> make(ConsoleServices& console);

}  // namespace zrl::dns
