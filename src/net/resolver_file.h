#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zrl {

// Where a DNS server listens: an IPv4 or IPv6 address and a UDP port.
struct DnsServer {
  std::string address;
  std::uint16_t port = 53;

  // "192.0.2.1:53", "[2001:db8::1]:53".
  std::string text() const;
};

// The supported part of the resolver file, see resolv.conf(5): `nameserver`, and the local domain from
// `domain` or `search` (its first name), of which the last line counts. A server may have a port,
// "127.0.0.1#5353". Lines that are not understood are skipped; no text is an error.
struct ResolverConfiguration {
  std::vector<DnsServer> servers;  // in the order of the file
  std::string domain;              // without a dot at its end
};

ResolverConfiguration parse_resolver_file(std::string_view text);

// The machine's resolver file, or the one that the environment variable ZRL_RESOLV_CONF names.
std::filesystem::path resolver_file_path();

// The machine's hosts file; empty while ZRL_RESOLV_CONF is set, because names then come from the
// servers of that file and from nowhere else.
std::filesystem::path hosts_file_path();

}  // namespace zrl
