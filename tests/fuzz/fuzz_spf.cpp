// SPF records. The first line is the record, the others are what the DNS holds. Whatever they say, the
// check ends with a result after a bounded number of queries, for names of the length of names.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "components/dns/spf_check.h"
#include "core/text/domain_names.h"
#include "support/zone_lookups.h"

namespace {

// Ten terms of one query and ten names each, the host names of a macro, the explanation.
constexpr std::size_t most_queries = 10 * 11 + 11 + 1;

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::size_t end = std::min(input.find('\n'), input.size());
  for (const char* client : {"192.0.2.1", "2001:db8::1"}) {
    zrl::test::ZoneLookups lookups(input.substr(end));
    const zrl::SenderCheck found =
        zrl::dns::check_spf({*zrl::dns::IpAddress::parse(client), "example.com",
                             std::string(input.substr(0, end)), "postmaster@example.com"},
                            lookups);
    require(found.authorised == found.reason.starts_with("pass: "));
    require(found.reason.find(": ") != std::string::npos);
    require(lookups.queries.size() <= most_queries);
    for (const std::string& query : lookups.queries) {
      const std::size_t name = query.size() - query.find(' ') - 1;
      if (query.starts_with("TXT ") || query.starts_with("MX ")) require(name <= zrl::longest_domain_name);
    }
  }
  return 0;
}
