#pragma once

#include <chrono>

#include "components/dns/dns_queries.h"
#include "components/dns/sender_lookups.h"

namespace zrl::dns {

// Look-ups by c-ares. When the time for all of them is over, later ones fail at once. Each raises
// zrl::Error if there is no server to ask, and passes on what the console's events raise while it waits.
class CaresLookups : public SenderLookups {
 public:
  // `time` bounds all look-ups together, from now on; each has the console's time-out too. The console must
  // outlive this.
  CaresLookups(ConsoleServices& console, std::chrono::milliseconds time);

  Records<std::string> texts(const std::string& name) override;
  std::vector<Records<IpAddress>> addresses(const std::vector<std::string>& names,
                                            IpAddress::Family family) override;
  Records<std::string> exchangers(const std::string& name) override;
  Records<std::string> names_of(const IpAddress& address) override;

 private:
  // One reply a name; for a text that is no DNS name, a reply without records.
  std::vector<DnsQueries::Reply> ask(const std::vector<std::string>& names, int type) const;

  ConsoleServices& console_;
  std::chrono::steady_clock::time_point end_;
};

}  // namespace zrl::dns
