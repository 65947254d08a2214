#include "host/web/login_throttle.h"

#include <algorithm>
#include <array>

#include <arpa/inet.h>

namespace zrl::web {

namespace {

using std::chrono::seconds;

constexpr seconds forgotten_after{3600};
constexpr int longest_exponent = 20;

// A client with IPv6 has a whole network of addresses.
std::string network_of(const std::string& address) {
  std::array<unsigned char, 16> bytes{};
  if (::inet_pton(AF_INET6, address.substr(0, address.find('%')).c_str(), bytes.data()) != 1) return address;
  std::array<char, INET6_ADDRSTRLEN> text{};
  const bool mapped = std::all_of(bytes.begin(), bytes.begin() + 10, [](unsigned char b) { return b == 0; });
  if (!mapped) std::fill(bytes.begin() + 8, bytes.end(), static_cast<unsigned char>(0));
  return ::inet_ntop(AF_INET6, bytes.data(), text.data(), text.size());
}

}  // namespace

seconds LoginThrottle::begin_try(const std::string& address, Clock::time_point now) {
  static constexpr Rule address_rule{4, seconds(900)};
  static constexpr Rule overall_rule{24, seconds(30)};
  if (now - overall_.newest > forgotten_after) overall_ = {};
  const std::string network = network_of(address);
  const auto found = by_address_.find(network);
  if (found != by_address_.end() && now - found->second.newest > forgotten_after) found->second = {};
  const Clock::time_point next =
      std::max(overall_.next, found == by_address_.end() ? Clock::time_point() : found->second.next);
  if (next > now) return std::chrono::ceil<seconds>(next - now);
  if (found == by_address_.end()) make_room(now);
  count(by_address_[network], address_rule, now);
  count(overall_, overall_rule, now);
  return seconds(0);
}

void LoginThrottle::succeeded(const std::string& address) {
  by_address_.erase(network_of(address));
  overall_.count = std::max(0, overall_.count - 1);
  overall_.next = {};
}

void LoginThrottle::count(Failures& failures, const Rule& rule, Clock::time_point now) {
  ++failures.count;
  failures.newest = now;
  const int exponent = std::min(failures.count - rule.forgiven, longest_exponent);
  if (exponent > 0) failures.next = now + std::min(rule.longest, seconds(1LL << (exponent - 1)));
}

void LoginThrottle::make_room(Clock::time_point now) {
  if (by_address_.size() < max_addresses) return;
  std::erase_if(by_address_, [&](const auto& entry) { return now - entry.second.newest > forgotten_after; });
  while (by_address_.size() >= max_addresses) {
    by_address_.erase(
        std::min_element(by_address_.begin(), by_address_.end(),
                         [](const auto& a, const auto& b) { return a.second.newest < b.second.newest; }));
  }
}

}  // namespace zrl::web
