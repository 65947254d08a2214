#include "components/dns/ip_address.h"

#include <algorithm>

#include <arpa/inet.h>

namespace zrl::dns {

namespace {

constexpr int family_number(IpAddress::Family family) {
  return family == IpAddress::Family::v4 ? AF_INET : AF_INET6;
}

IpAddress unmapped(const IpAddress& address) {
  static const IpAddress mapped(IpAddress::Bytes6{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF});
  if (address.family() == IpAddress::Family::v4 || !address.in(mapped, 96)) return address;
  IpAddress::Bytes4 bytes{};
  std::copy_n(address.data() + 12, bytes.size(), bytes.begin());
  return IpAddress(bytes);
}

}  // namespace

IpAddress::IpAddress(const Bytes4& bytes) {
  std::ranges::copy(bytes, bytes_.begin());
}

std::optional<IpAddress> IpAddress::parse(std::string_view text, Family family) {
  if (text.find('\0') != text.npos) return std::nullopt;
  IpAddress address;
  address.family_ = family;
  if (::inet_pton(family_number(family), std::string(text).c_str(), address.bytes_.data()) != 1) {
    return std::nullopt;
  }
  return address;
}

std::optional<IpAddress> IpAddress::parse(std::string_view text) {
  if (const auto address = parse(text, Family::v4)) return address;
  const auto address = parse(text, Family::v6);
  return address ? unmapped(*address) : address;
}

bool IpAddress::in(const IpAddress& network, unsigned prefix) const {
  if (family_ != network.family_) return false;
  const unsigned whole = prefix / 8;
  if (!std::equal(bytes_.begin(), bytes_.begin() + whole, network.bytes_.begin())) return false;
  const unsigned rest = prefix % 8;
  return rest == 0 || ((bytes_.at(whole) ^ network.bytes_.at(whole)) >> (8 - rest)) == 0;
}

std::string IpAddress::text() const {
  std::array<char, INET6_ADDRSTRLEN> text{};
  ::inet_ntop(family_number(family_), bytes_.data(), text.data(), text.size());
  return text.data();
}

std::string IpAddress::dotted() const {
  if (family_ == Family::v4) return text();
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  for (const std::uint8_t byte : bytes_) {
    if (!result.empty()) result += '.';
    result.append({digits[byte >> 4], '.', digits[byte & 0xF]});
  }
  return result;
}

std::string IpAddress::reverse_name() const {
  if (family_ == Family::v6) {
    const std::string forwards = dotted();
    return std::string(forwards.rbegin(), forwards.rend()) + ".ip6.arpa";
  }
  std::string name;
  for (int i = 3; i >= 0; --i) name += std::to_string(bytes_.at(static_cast<std::size_t>(i))) + ".";
  return name + "in-addr.arpa";
}

}  // namespace zrl::dns
