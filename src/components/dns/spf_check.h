#pragma once

#include <optional>
#include <string>

#include "components/dns/sender_check.h"
#include "components/dns/sender_lookups.h"
#include "core/contracts/dns_client.h"

namespace zrl::dns {

// Evaluates the record (RFC 7208, with the limits of section 4.6.4): at most ten terms may look names up, two
// of them without a result, and each uses at most ten mail exchangers or host names. The reason begins with
// the result: "softfail: ~all in the record of example.com". If macros in the record's terms ask for more
// than the question says, it ends with what was assumed: (assumed: local part "postmaster", greeting
// "example.com"). Whatever the records and the servers say, it raises no error. `lookups` bounds the time.
SenderCheck check_spf(const SenderQuestion& question, SenderLookups& lookups);

// The SPF record that the domain publishes; nothing if there is none. Raises SenderFault if there are
// several, or no answer.
std::optional<std::string> published_spf(const std::string& domain, SenderLookups& lookups);

}  // namespace zrl::dns
