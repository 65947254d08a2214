#include "host/web/client_network.h"

#include <algorithm>
#include <array>

#include <arpa/inet.h>

namespace zrl::web {

namespace {

constexpr std::size_t network_bytes = 8;
constexpr std::array<unsigned char, 12> mapped_prefix = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};

}  // namespace

std::string network_of(const std::string& address) {
  std::array<unsigned char, 16> bytes{};
  if (::inet_pton(AF_INET6, address.substr(0, address.find('%')).c_str(), bytes.data()) != 1) return address;
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (std::equal(mapped_prefix.begin(), mapped_prefix.end(), bytes.begin())) {
    return ::inet_ntop(AF_INET, bytes.data() + mapped_prefix.size(), text.data(), text.size());
  }
  std::fill(bytes.begin() + network_bytes, bytes.end(), static_cast<unsigned char>(0));
  return ::inet_ntop(AF_INET6, bytes.data(), text.data(), text.size());
}

}  // namespace zrl::web
