#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include <stdlib.h>

#include "support/dns_server.h"
#include "support/temporary_folder.h"

namespace zrl::test {

// While it lives, every console of this process asks the server in it, and nothing else.
class DnsEnvironment {
 public:
  DnsEnvironment() { write(""); }
  DnsEnvironment(const DnsEnvironment&) = delete;
  DnsEnvironment& operator=(const DnsEnvironment&) = delete;
  ~DnsEnvironment() { ::unsetenv("ZRL_RESOLV_CONF"); }

  FakeDnsServer server;

  // Consoles that know a server already do not read the file again.
  void set_local_domain(std::string_view domain) { write("search " + std::string(domain) + "\n"); }

 private:
  void write(const std::string& more) {
    const auto path = folder_.path() / "resolv.conf";
    std::ofstream(path) << server.resolver_file() << more;
    ::setenv("ZRL_RESOLV_CONF", path.c_str(), 1);
  }

  TemporaryFolder folder_;
};

}  // namespace zrl::test
