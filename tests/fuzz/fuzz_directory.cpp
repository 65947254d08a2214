// Values that directory servers send: an address is one that the list of users may hold, a domain
// one that fits into a statement.
#include <cstdint>
#include <cstdlib>

#include "components/directory/domain_name.h"
#include "components/directory/mail_address.h"
#include "core/contracts/statement.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string value(reinterpret_cast<const char*>(data), size);
  const std::string address = zrl::directory::address_in(value);
  const bool is_address = address.find('@') != address.npos && address == zrl::lower(zrl::trim(address)) &&
                          address.find_first_of(std::string_view("\n\0", 2)) == address.npos &&
                          zrl::is_valid_utf8(address);
  if (!address.empty() && !is_address) std::abort();
  const std::string domain = zrl::directory::domain_of(value);
  const bool is_storable = domain.empty() || zrl::insert_into("mydomain", "entry", domain).fault().empty();
  if (domain.size() > 253 || !is_storable) std::abort();
  return 0;
}
