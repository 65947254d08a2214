#pragma once

#include <optional>
#include <string>

#include "components/dns/sender_check.h"
#include "components/dns/sender_lookups.h"
#include "core/contracts/dns_client.h"

namespace zrl::dns {

// Whether the client is one of the servers that the record names, or one of those of the domains that it
// refers to: at most ten domains, each once. The reason begins with the result, in the words of SPF. Whatever
// the records and the servers say, it raises no error. `lookups` bounds the time.
SenderCheck check_caller_id(const SenderQuestion& question, SenderLookups& lookups);

// The Caller-ID record that the domain publishes; nothing if there is none. Raises zrl::Error if there
// are several, or no answer.
std::optional<std::string> published_caller_id(const std::string& domain, SenderLookups& lookups);

}  // namespace zrl::dns
