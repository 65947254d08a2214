#include "net/resolver_file.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <optional>

#include <arpa/inet.h>

namespace zrl {

namespace {

constexpr std::string_view blanks = " \t\r";

// The next word of the line, which is taken off it.
std::string_view take_word(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(blanks));
  line.remove_prefix(word.size());
  return word;
}

// An IPv6 address may name its interface, "fe80::1%eth0".
bool is_address(const std::string& text) {
  in_addr v4;
  in6_addr v6;
  return ::inet_pton(AF_INET, text.c_str(), &v4) == 1 ||
         ::inet_pton(AF_INET6, text.substr(0, text.find('%')).c_str(), &v6) == 1;
}

std::optional<DnsServer> parse_server(std::string_view word) {
  DnsServer server;
  const std::size_t mark = word.find('#');
  server.address = word.substr(0, mark);
  if (!is_address(server.address)) return std::nullopt;
  if (mark == word.npos) return server;
  const std::string_view port = word.substr(mark + 1);
  const auto [end, failure] = std::from_chars(port.data(), port.data() + port.size(), server.port);
  const bool whole = failure == std::errc() && end == port.data() + port.size();
  if (!whole || server.port == 0) return std::nullopt;
  return server;
}

}  // namespace

std::string DnsServer::text() const {
  const bool v6 = address.find(':') != address.npos;
  return (v6 ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

ResolverConfiguration parse_resolver_file(std::string_view text) {
  ResolverConfiguration result;
  while (!text.empty()) {
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const std::string_view keyword = take_word(line);
    const std::string_view word = take_word(line);
    if (keyword == "nameserver") {
      if (std::optional<DnsServer> server = parse_server(word)) result.servers.push_back(std::move(*server));
    } else if ((keyword == "domain" || keyword == "search") && !word.empty()) {
      result.domain = word.substr(0, word.size() - (word.ends_with('.') ? 1 : 0));
    }
  }
  return result;
}

std::filesystem::path resolver_file_path() {
  const char* named = std::getenv("ZRL_RESOLV_CONF");
  return named != nullptr && *named != '\0' ? named : "/etc/resolv.conf";
}

std::filesystem::path hosts_file_path() {
  const char* named = std::getenv("ZRL_RESOLV_CONF");
  return named != nullptr && *named != '\0' ? "" : "/etc/hosts";
}

}  // namespace zrl
