#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "components/block_lists/block_lists.h"
#include "core/contracts/statement.h"

namespace zrl::block_lists {

// Records what a check left out, or what did not answer, as a failure of the console. Both texts are UTF-8
// and already cut to a bounded length by the caller.
void report(ConsoleServices& console, std::string_view what, std::string_view problem);

// The zones of a table in the order of its rows, in the form of domain_name(), each once and at most `most`
// of them. Entries that are no domain names, and those beyond `most`, are left out and reported. Raises
// zrl::Error if the table cannot be read.
std::vector<std::string> read_zones(ConsoleServices& console, Literal table, std::size_t most = most_zones);

// Which names are listed in which zones.
class Listings {
 public:
  // Looks every name up under every zone, all at the same time, and returns when the last answer has come or
  // the look-up's time-out is over; the console's events are served meanwhile. A zone that does not answer,
  // or whose answer is no listing, lists nothing and is reported once. Raises zrl::Error if there is no
  // server to ask.
  Listings(ConsoleServices& console, const std::vector<std::string>& names,
           const std::vector<std::string>& zones);

  // Whether any zone gave a credible answer, a listing or "not listed"; true if none was asked.
  bool answered() const { return answered_; }
  bool has(std::size_t name, std::size_t zone) const { return listed_[name * zones_ + zone]; }

 private:
  std::size_t zones_;
  std::vector<bool> listed_;
  bool answered_ = true;
};

}  // namespace zrl::block_lists
