#pragma once

#include <memory>

#include "core/contracts/dns_client.h"
#include "core/database_client.h"
#include "scripting/vbscript/engine.h"

namespace zrl {

// The questions of scripts, asked as the console's pages ask them: names of the servers that the console
// asks, entries of its database. Failures are recorded and read as no answer. Needs no database before
// has_entry().
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
