#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zrl::dns {

// An IPv4 or IPv6 address.
class IpAddress {
 public:
  enum class Family : std::uint8_t { v4, v6 };
  using Bytes4 = std::array<std::uint8_t, 4>;
  using Bytes6 = std::array<std::uint8_t, 16>;

  IpAddress() = default;  // 0.0.0.0
  explicit IpAddress(const Bytes4& bytes);
  explicit IpAddress(const Bytes6& bytes) : family_(Family::v6), bytes_(bytes) {}

  // Reads four decimal numbers without leading zeros, or an IPv6 address (RFC 4291, section 2.2). Nothing if
  // the text is no address of the family.
  static std::optional<IpAddress> parse(std::string_view text, Family family);
  // The same for either family; an IPv4-mapped IPv6 address (::ffff:192.0.2.1) becomes an IPv4 one.
  static std::optional<IpAddress> parse(std::string_view text);

  Family family() const { return family_; }
  static constexpr unsigned bits(Family family) { return family == Family::v4 ? 32 : 128; }

  bool operator==(const IpAddress&) const = default;
  // Whether the first `prefix` bits are those of `network`, which is of the same family.
  bool in(const IpAddress& network, unsigned prefix) const;

  std::string text() const;
  // "192.0.2.1", or the 32 hexadecimal digits of an IPv6 address with dots between them.
  std::string dotted() const;
  // "1.2.0.192.in-addr.arpa", the digits of an IPv6 address backwards under "ip6.arpa".
  std::string reverse_name() const;

  const std::uint8_t* data() const { return bytes_.data(); }
  int size() const { return static_cast<int>(bits(family_) / 8); }

 private:
  Family family_ = Family::v4;
  Bytes6 bytes_{};  // those of an IPv4 address first, the rest 0
};

}  // namespace zrl::dns
