#pragma once

#include <string>
#include <string_view>

#include "core/contracts/check_plugin.h"

namespace zrl {

// Asks the DNS-based lists (RFC 5782) that the tables `wblserver` (white) and `rblserver` (black) name. One
// object makes one test after another, all on the console's thread.
class BlockLists {
 public:
  static constexpr std::string_view program_id = "rblcheck.rbl_check";

  // The numbers are part of the contract.
  enum class Listing { none = 0, white = 1, black = 2 };

  // The positions of the SMTP conversation that Value() accepts.
  static constexpr std::string_view connect = "connect";
  static constexpr std::string_view envelope = "envelope";

  virtual ~BlockLists() = default;

  // Begins a test: reads the zones and keeps what it needs of the context. Raises zrl::Error if the zones
  // cannot be read; false if the context names neither an IP address nor a sender's domain.
  virtual bool initmodule(const MessageContext& context) = 0;

  // Asks all zones at once and returns after the slowest answer, or when the resolver's time-out has passed:
  // a zone that does not answer lists nothing, and an error is raised if there are zones and none of them
  // answers. At "connect" the client's address is looked up, IPv4 or IPv6, at "envelope" the sender's domain.
  // White zones take precedence over black ones, and among each kind the order of the rows decides. `zone`
  // becomes the one that matched, or empty. Zones that cannot be asked, or whose answers are not credible,
  // are recorded as failures. The event loop is served meanwhile. Raises zrl::Error on failure, which
  // includes an unknown position, or one whose part of the context is missing.
  virtual void Value(std::string_view position, Listing& listing, std::string& zone) = 0;
};

}  // namespace zrl
