// Caller-ID records. The first line is the record, the others are what the DNS holds. What is read of a
// record is bounded by its length, and a check ends after a bounded number of queries.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "components/dns/caller_id_check.h"
#include "components/dns/caller_id_record.h"
#include "core/text/error.h"
#include "core/text/text.h"
#include "support/zone_lookups.h"

namespace {

// The record and ten others: two names for each, the exchangers and their addresses.
constexpr std::size_t most_queries = 11 * (2 + 1 + 10);

void require(bool holds) {
  if (!holds) std::abort();
}

void read(std::string_view text) {
  try {
    const zrl::dns::CallerIdRecord record = zrl::dns::parse_caller_id_record(text);
    require(zrl::trim(text).size() <= zrl::dns::CallerIdRecord::longest);
    require((record.networks.size() + record.indirect.size()) * 4 <= text.size());
    for (const auto& [address, prefix] : record.networks) {
      require(prefix <= zrl::dns::IpAddress::bits(address.family()));
    }
  } catch (const zrl::Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  read(input);
  const std::size_t end = std::min(input.find('\n'), input.size());
  zrl::test::ZoneLookups lookups(input.substr(end));
  const zrl::SenderCheck found =
      zrl::dns::check_caller_id({*zrl::dns::IpAddress::parse("192.0.2.1"), "example.com",
                                 std::string(input.substr(0, end)), "postmaster@example.com"},
                                lookups);
  require(found.authorised == found.reason.starts_with("pass: "));
  require(lookups.queries.size() <= most_queries);
  return 0;
}
