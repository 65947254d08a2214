#pragma once

#include <string>
#include <string_view>

#include "core/check_plugin.h"

namespace zrl {

// Asks the DNS-based lists that the tables `wblserver` (white) and `rblserver` (black) name.
class BlockLists {
 public:
  static constexpr std::string_view program_id = "rblcheck.rbl_check";

  enum class Listing { none = 0, white = 1, black = 2 };

  virtual ~BlockLists() = default;

  // Begins a test: reads the zones. Raises zrl::Error if they cannot be read; false if the context
  // names neither an address nor a sender's domain.
  virtual bool initmodule(const MessageContext& context) = 0;

  // Asks all zones at once and answers after the slowest, or after the time limit: a zone that does not
  // answer lists nothing. At "connect" the client's address is looked up, at "envelope" the sender's
  // domain. White zones go before black ones, and zones in the order of their rows. `zone` is the one
  // that matched, or empty. The event loop is served meanwhile. Raises zrl::Error on failure.
  virtual void Value(std::string_view position, Listing& listing, std::string& zone) = 0;
};

}  // namespace zrl
