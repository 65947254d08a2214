#include "components/dns/cares_client.h"

#include <array>

#include <ares.h>
#include <arpa/inet.h>
#include <netdb.h>

#include "components/dns/dns_queries.h"
#include "core/error.h"
#include "core/text.h"

namespace zrl {

namespace {

constexpr int type_ptr = 12;

using AddressBytes = std::array<std::uint8_t, 4>;

AddressBytes parse_address(std::string_view text) {
  AddressBytes address{};
  if (::inet_pton(AF_INET, std::string(text).c_str(), address.data()) != 1) {
    throw Error(error_number::invalid_call, "not an IPv4 address: " + std::string(text));
  }
  return address;
}

std::string reverse_name(const AddressBytes& address) {
  std::string name;
  for (auto byte = address.rbegin(); byte != address.rend(); ++byte) name += std::to_string(*byte) + ".";
  return name + "in-addr.arpa";
}

[[noreturn]] void fail(std::string_view address, int status) {
  throw Error(status, "no host name for " + std::string(address) + ": " + dns_status_text(status));
}

// The aliases are the names in the order of the answer; the name itself is the last of them.
const char* first_name(const hostent& host) {
  return host.h_aliases != nullptr && *host.h_aliases != nullptr ? *host.h_aliases : host.h_name;
}

class CaresClient : public DnsClient {
 public:
  explicit CaresClient(DnsSurroundings surroundings) : surroundings_(std::move(surroundings)) {}

  std::string PTR_Query(std::string_view text) override {
    const AddressBytes address = parse_address(trim(text));
    DnsQueries queries(surroundings_);
    const DnsQueries::Reply& reply = queries[queries.start(reverse_name(address), type_ptr)];
    queries.finish();
    if (reply.status != ARES_SUCCESS) fail(text, reply.status);
    hostent* parsed = nullptr;
    const int status =
        ares_parse_ptr_reply(reply.message.data(), static_cast<int>(reply.message.size()), address.data(),
                             static_cast<int>(address.size()), AF_INET, &parsed);
    if (status != ARES_SUCCESS) fail(text, status);
    const std::unique_ptr<hostent, decltype(&ares_free_hostent)> host(parsed, ares_free_hostent);
    std::string name = valid_utf8(first_name(*host));
    if (name.ends_with('.')) name.pop_back();
    if (name.empty()) fail(text, ARES_ENODATA);
    return name;
  }

 private:
  DnsSurroundings surroundings_;
};

}  // namespace

std::shared_ptr<DnsClient> make_dns_client(DnsSurroundings surroundings) {
  return std::make_shared<CaresClient>(std::move(surroundings));
}

}  // namespace zrl
