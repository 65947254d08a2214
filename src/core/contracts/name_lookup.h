#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/string_list.h"

namespace zrl {

// Looks names up for the console itself: mail exchangers and IPv4 addresses. It also says which servers it
// asks, so that components with a resolver of their own ask the same ones. Calls return after the answer or
// the time-out; the console's event loop is served meanwhile, and may run other look-ups. A console has one
// object, see ConsoleServices::names().
class NameLookup {
 public:
  static constexpr std::string_view program_id = "zrl.names";

  virtual ~NameLookup() = default;

  // The mail exchangers (RFC 5321, section 5.1) of a domain by ascending preference, each with a dot
  // at its end, valid UTF-8; at least one. Raises zrl::Error, whose text says why, if there is none.
  virtual StringList mail_exchangers(std::string_view domain) = 0;

  // The first IPv4 address of a host, dotted; of this machine if the name is blank. Raises zrl::Error
  // if there is none.
  virtual std::string host_address(std::string_view host) = 0;

  // Where the DNS servers listen: "192.0.2.1:53", "[2001:db8::1]:53". Empty if none is known.
  virtual std::vector<std::string> servers() = 0;

  // How long a look-up may take; at least 100 ms.
  virtual std::chrono::milliseconds time_out() = 0;

  // True if names may come only from servers(), so that the system's own look-up, which uses the machine's
  // hosts file and resolver, must not be called.
  virtual bool asks_only_servers() const = 0;
};

}  // namespace zrl
