#pragma once

#include <string>
#include <string_view>

#include "core/contracts/check_plugin.h"

namespace zrl {

// Asks the DNS-based lists that the tables `wblserver` (white) and `rblserver` (black) name.
class BlockLists {
 public:
  static constexpr std::string_view program_id = "rblcheck.rbl_check";

  enum class Listing { none = 0, white = 1, black = 2 };

  // The positions of the SMTP conversation.
  static constexpr std::string_view connect = "connect";
  static constexpr std::string_view envelope = "envelope";

  virtual ~BlockLists() = default;

  // Begins a test: reads the zones. Raises zrl::Error if they cannot be read; false if the context
  // names neither an IP address nor a sender's domain.
  virtual bool initmodule(const MessageContext& context) = 0;

  // Asks all zones at once and answers after the slowest, or when the resolver's time is up: a zone
  // that does not answer lists nothing. At "connect" the client's address is looked up, IPv4 or IPv6,
  // at "envelope" the sender's domain. White zones go before black ones, and zones in the order of
  // their rows. `zone` is the one that matched, or empty. Zones that cannot be asked or believed are
  // recorded. The event loop is served meanwhile. Raises zrl::Error on failure, which includes another
  // position, or one whose part of the context is missing.
  virtual void Value(std::string_view position, Listing& listing, std::string& zone) = 0;
};

}  // namespace zrl
