#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/name_lookup.h"

namespace zrl {

// The look-up of names on this machine: by the DNS, and for addresses by the hosts file first. While no
// server is known, each call reads the resolver file again. The time-out is the registry value `DNSTimeout`,
// in milliseconds, read once.
//
// `services` must outlive the object. The numbers of errors: of mail_exchangers(), the errno of the socket,
// or 0; of host_address(), see machine_sockets.h.
std::shared_ptr<NameLookup> make_name_lookup(ConsoleServices& services);

}  // namespace zrl
