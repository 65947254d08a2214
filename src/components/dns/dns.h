#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/dns_client.h"

namespace zrl::dns {

// A DNS client (RFC 1035) on the library c-ares. It asks the servers of the console's own name look-up, one
// after another, and repeats queries that get lost, within the time-out of that look-up for each query. A
// check of a sender, and a look-up of a record that takes several queries, ends after 20 seconds at most.
//
// The client remembers the SPF record that it fetched last, because a record does not say which domain
// published it; use one client for a record and the calls that follow up on it. It belongs to the console's
// thread, whose events are served while it waits, and must not outlive the console.
std::shared_ptr<DnsClient> make(ConsoleServices& console);

}  // namespace zrl::dns
