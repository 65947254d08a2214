#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "components/dns/ip_address.h"

namespace zrl::dns {

// What the DNS said. A name that is not there, and one without such records, find nothing.
template <typename Record>
struct Records {
  std::vector<Record> found;
  bool failed = false;  // there was no answer, or none that can be used
};

// What checks of a sender ask the DNS. Names have no dot at their end; asked for what is no name, it
// finds nothing. No call raises an error because of what servers do.
class SenderLookups {
 public:
  virtual ~SenderLookups() = default;

  // The strings of each TXT record, joined.
  virtual Records<std::string> texts(const std::string& name) = 0;
  // Of each of the names, asked for side by side.
  virtual std::vector<Records<IpAddress>> addresses(const std::vector<std::string>& names,
                                                    IpAddress::Family family) = 0;
  // The names of the mail exchangers.
  virtual Records<std::string> exchangers(const std::string& name) = 0;
  // The host names of an address, which are those that its owner claims.
  virtual Records<std::string> names_of(const IpAddress& address) = 0;
};

}  // namespace zrl::dns
