#pragma once

#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/name_lookup.h"

namespace zrl {

// The look-up of names on this machine: the resolver asks the DNS, and the hosts file goes before it for
// addresses. The resolver's servers are looked for again as long as none is known.
std::shared_ptr<NameLookup> make_name_lookup(ConsoleServices& services);

}  // namespace zrl
