#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Looks names and addresses up in the DNS. Calls return when the answer or the time-out has come;
// the console's event loop is served meanwhile.
class DnsClient {
 public:
  static constexpr std::string_view program_id = "spf_dns.DNSClass";

  virtual ~DnsClient() = default;

  // The host name of an IPv4 address in dotted form, without a trailing dot (RFC 1035, PTR). Raises
  // zrl::Error if there is none or no server answers.
  virtual std::string PTR_Query(std::string_view address) = 0;
};

}  // namespace zrl
