#pragma once

#include "core/text/dns_fields.h"

namespace zrl {

// Whether the message, which may be anything, is an answer to the query (RFC 5452, section 9.1): a response
// to a standard query, with the query's identifier and its one question. Its records of the type that was
// asked for, as far as they can be read, must belong to the name in the question, or to one that aliases lead
// to from there. Case is ignored in names.
bool is_dns_answer(DnsBytes message, DnsBytes query);

}  // namespace zrl
