#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "components/dns/ip_address.h"

namespace zrl::dns {

// The records found. There are none, without a failure, if the name does not exist or has no such records.
template <typename Record>
struct Records {
  std::vector<Record> found;
  bool failed = false;  // there was no answer, or none that can be used
};

// The DNS look-ups of a sender check; tests replace them. Names have no trailing dot; for a text that is no
// DNS name, nothing is found. A server's failure is `failed`, not an error.
class SenderLookups {
 public:
  virtual ~SenderLookups() = default;

  // The strings of each TXT record, joined.
  virtual Records<std::string> texts(const std::string& name) = 0;
  // The addresses of each of the names, which are looked up at the same time.
  virtual std::vector<Records<IpAddress>> addresses(const std::vector<std::string>& names,
                                                    IpAddress::Family family) = 0;
  // The names of the mail exchangers.
  virtual Records<std::string> exchangers(const std::string& name) = 0;
  // The host names of an address (PTR). They are the claim of the address's owner and not verified.
  virtual Records<std::string> names_of(const IpAddress& address) = 0;
};

}  // namespace zrl::dns
