#include "components/block_lists/zones.h"

#include <cstdint>
#include <set>

#include <ares.h>

#include "components/block_lists/domain_name.h"
#include "components/dns/dns_answers.h"
#include "core/contracts/database.h"
#include "core/text/domain_names.h"
#include "core/text/utf8.h"

namespace zrl::block_lists {

namespace {

using dns::DnsQueries;
using dns::IpAddress;

constexpr int type_address = 1;
constexpr std::size_t starts_between_pauses = 64;
constexpr std::size_t longest_quotation = 100;

// What an answer says about the name.
struct Verdict {
  bool listed = false;
  std::string problem = {};  // why the answer cannot be trusted; empty if it can
};

// A listing is an address in 127.0.0.0/8. Any other comes from a zone that is no list, or no longer
// one: its domain was sold and answers every name with the address of a web server. In 127.255.255.0/24
// are the codes by which public lists refuse queries, mostly those that come through a public resolver.
Verdict verdict_on(const IpAddress& address) {
  constexpr std::uint8_t loopback = 127;
  constexpr std::uint8_t refusal = 255;
  const std::uint8_t* bytes = address.data();
  if (bytes[0] != loopback) return {false, "the answer is no listing: " + address.text()};
  if (bytes[1] == refusal && bytes[2] == refusal)
    return {false, "the zone refuses queries: " + address.text()};
  return {true};
}

Verdict verdict_on(const DnsQueries::Reply& reply) {
  std::vector<IpAddress> addresses;
  const int status = dns::read_addresses(reply, IpAddress::Family::v4, addresses);
  if (status == ARES_ENOTFOUND || status == ARES_ENODATA) return {};
  if (status != ARES_SUCCESS) return {false, dns::dns_status_text(status)};
  Verdict verdict;
  for (const IpAddress& address : addresses) {
    verdict = verdict_on(address);
    if (verdict.listed) break;
  }
  return verdict;
}

// Entries can be any text, of any length.
std::string quoted(std::string_view entry) {
  return "\"" + beginning_of(entry, longest_quotation) + "\"";
}

StringList entries_of(ConsoleServices& console, Literal table) {
  const auto database = console.components().create<Database>();
  ConnectionHandle connection = database->open_database(console.data_provider());
  StringList entries = database->get_db_array(connection, table, "entry", {});
  entries.pop_back();  // the element beyond the rows
  return entries;
}

void report_left_out(ConsoleServices& console, Literal table, std::size_t count, std::string_view first,
                     std::string_view why) {
  if (count == 0) return;
  report(console, table.text(),
         "left out: " + quoted(first) + (count == 1 ? "" : " and " + std::to_string(count - 1) + " more") +
             ", " + std::string(why));
}

}  // namespace

void report(ConsoleServices& console, std::string_view what, std::string_view problem) {
  console.record_failure("block list " + std::string(what), problem);
}

std::vector<std::string> read_zones(ConsoleServices& console, Literal table, std::size_t most) {
  const StringList entries = entries_of(console, table);
  std::vector<std::string> zones;
  std::set<std::string> seen;
  std::size_t wrong = 0;
  std::size_t beyond = 0;
  std::string_view first_wrong;
  std::string_view first_beyond;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    std::string zone = domain_name(entries[i]);
    if (zone.empty()) {
      if (wrong++ == 0) first_wrong = entries[i];
    } else if (seen.contains(zone)) {
      continue;
    } else if (zones.size() < most) {
      zones.push_back(*seen.insert(std::move(zone)).first);
    } else if (beyond++ == 0) {
      first_beyond = entries[i];
    }
  }
  report_left_out(console, table, wrong, first_wrong, "no name of a zone");
  report_left_out(console, table, beyond, first_beyond, "too many zones");
  return zones;
}

Listings::Listings(ConsoleServices& console, const std::vector<std::string>& names,
                   const std::vector<std::string>& zones)
    : zones_(zones.size()), listed_(names.size() * zones.size()) {
  if (listed_.empty()) return;
  DnsQueries queries(console);
  std::vector<std::size_t> asked;  // for each query, its place in listed_
  std::vector<std::string> problems(zones.size());
  for (std::size_t i = 0; i < listed_.size(); ++i) {
    const std::string name = names[i / zones_] + "." + zones[i % zones_];
    if (name.size() > longest_domain_name) {
      problems[i % zones_] = "too long for a query: " + name;
      continue;
    }
    queries.start(name, type_address);
    asked.push_back(i);
    if (asked.size() % starts_between_pauses == 0) queries.pause();
  }
  queries.finish();
  answered_ = false;
  for (std::size_t query = 0; query < asked.size(); ++query) {
    Verdict verdict = verdict_on(queries[query]);
    listed_[asked[query]] = verdict.listed;
    if (verdict.listed || verdict.problem.empty()) answered_ = true;
    if (!verdict.problem.empty()) problems[asked[query] % zones_] = std::move(verdict.problem);
  }
  for (std::size_t zone = 0; zone < zones_; ++zone) {
    if (!problems[zone].empty()) report(console, zones[zone], problems[zone]);
  }
}

}  // namespace zrl::block_lists
