#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "components/block_lists/block_list_components.h"

namespace zrl {

// The zones of a table, in the order of its rows, each once and at most `most` of them. Entries that
// are no names of domains are left out; so are those beyond `most`; both are reported.
std::vector<std::string> read_zones(const BlockListSettings& settings, Literal table,
                                    std::size_t most = most_zones);

// Which names are listed in which zones.
class Listings {
 public:
  // Asks for every name under every zone, all at the same time, and returns when the last answer has
  // come or the time is up. A zone that does not answer, or gives an answer that is no listing, lists
  // nothing and is reported once. Raises zrl::Error if there is no server to ask.
  Listings(const BlockListSettings& settings, const std::vector<std::string>& names,
           const std::vector<std::string>& zones);

  bool has(std::size_t name, std::size_t zone) const { return listed_[name * zones_ + zone]; }

 private:
  std::size_t zones_;
  std::vector<bool> listed_;
};

}  // namespace zrl
