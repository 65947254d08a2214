#pragma once

#include <memory>

#include "core/contracts/dns_client.h"
#include "core/database_client.h"
#include "scripting/vbscript/engine.h"

namespace zrl {

// The look-ups of scripts, made in the same way as those of the console's pages: names by the console's name
// look-up and its DNS client, entries by its database. Look-ups of names serve the console's events while
// they wait. A failed look-up is recorded and yields an empty answer. The database is opened by the first
// has_entry() and kept; has_entry() searches the lists of addresses, mails, keywords and files, by the names
// of their tables, and raises vbs::ServiceError for any other table or without a database. The console must
// outlive it.
class ConsoleLookups final : public vbs::Lookups, private DatabaseClient {
 public:
  explicit ConsoleLookups(Console& console) : DatabaseClient(console) {}

  std::string address(const std::string& host) override;
  std::string name(const std::string& address) override;
  std::vector<std::string> exchangers(const std::string& domain) override;
  std::string listed(const std::string& zone, const std::string& address) override;
  bool has_entry(const std::string& list, const std::string& entry) override;

 private:
  void ask(const std::string& what, const std::function<void()>& action);

  std::shared_ptr<DnsClient> dns_;
  bool connected_ = false;
};

}  // namespace zrl
