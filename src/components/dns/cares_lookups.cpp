#include "components/dns/cares_lookups.h"

#include <algorithm>

#include <ares.h>

#include "components/dns/dns_answers.h"
#include "core/text/domain_names.h"

namespace zrl::dns {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Reply = DnsQueries::Reply;

namespace type {
constexpr int a = 1;
constexpr int ptr = 12;
constexpr int mx = 15;
constexpr int txt = 16;
constexpr int aaaa = 28;
}  // namespace type

// By a call that fills the list and returns a status.
template <typename Record, typename Read>
Records<Record> read_with(const Read& read) {
  Records<Record> records;
  const int status = read(records.found);
  records.failed = status != ARES_SUCCESS && status != ARES_ENODATA && status != ARES_ENOTFOUND;
  if (records.failed) records.found.clear();
  return records;
}

}  // namespace

CaresLookups::CaresLookups(ConsoleServices& console, milliseconds time)
    : console_(console), end_(Clock::now() + time) {}

Records<std::string> CaresLookups::texts(const std::string& name) {
  const Reply reply = ask({name}, type::txt).front();
  return read_with<std::string>([&](auto& found) { return read_texts(reply, found); });
}

std::vector<Records<IpAddress>> CaresLookups::addresses(const std::vector<std::string>& names,
                                                        IpAddress::Family family) {
  std::vector<Records<IpAddress>> result;
  for (const Reply& reply : ask(names, family == IpAddress::Family::v4 ? type::a : type::aaaa)) {
    result.push_back(read_with<IpAddress>([&](auto& found) { return read_addresses(reply, family, found); }));
  }
  return result;
}

Records<std::string> CaresLookups::exchangers(const std::string& name) {
  const Reply reply = ask({name}, type::mx).front();
  return read_with<std::string>([&](auto& found) { return read_exchangers(reply, found); });
}

Records<std::string> CaresLookups::names_of(const IpAddress& address) {
  const Reply reply = ask({address.reverse_name()}, type::ptr).front();
  return read_with<std::string>([&](auto& found) { return read_host_names(reply, address, found); });
}

std::vector<Reply> CaresLookups::ask(const std::vector<std::string>& names, int type) const {
  std::vector<Reply> replies(names.size(), Reply{ARES_ETIMEOUT, {}});
  const auto left = std::chrono::duration_cast<milliseconds>(end_ - Clock::now());
  if (left <= milliseconds(0)) return replies;

  DnsQueries queries(console_, left);
  std::vector<std::size_t> asked;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (is_dns_name(names[i])) {
      asked.push_back(i);
      queries.start(names[i], type);
    } else {
      replies[i].status = ARES_ENOTFOUND;
    }
  }
  queries.finish();
  for (std::size_t query = 0; query < asked.size(); ++query) replies[asked[query]] = queries[query];
  return replies;
}

}  // namespace zrl::dns
