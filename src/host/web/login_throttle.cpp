#include "host/web/login_throttle.h"

#include <algorithm>

#include <sodium.h>

#include "host/web/client_network.h"

namespace zrl::web {

namespace {

using std::chrono::seconds;

constexpr seconds forgotten_after{3600};
constexpr int longest_exponent = 20;

}  // namespace

LoginThrottle::LoginThrottle() {
  ::randombytes_buf(key_.data(), key_.size());
}

seconds LoginThrottle::begin_try(const Try& attempt, Clock::time_point now) {
  static constexpr Rule client_rule{4, seconds(900)};
  static constexpr Rule account_rule{4, seconds(30)};
  if (!attempt.device.empty()) {
    const Clock::time_point next = next_of(devices_, attempt.device, now);
    if (next > now) return std::chrono::ceil<seconds>(next - now);
    count(devices_[attempt.device], client_rule, now);
    return seconds(0);
  }
  const std::string network = network_of(attempt.address);
  Clock::time_point next = next_of(strangers_, network, now);
  Failures* const lane = attempt.account.empty() ? nullptr : &lane_of(attempt.account);
  if (lane != nullptr) {
    forget_old(*lane, now);
    next = std::max(next, lane->next);
  }
  if (next > now) return std::chrono::ceil<seconds>(next - now);
  count(strangers_[network], client_rule, now);
  if (lane != nullptr) count(*lane, account_rule, now);
  return seconds(0);
}

void LoginThrottle::succeeded(const Try& attempt) {
  if (!attempt.device.empty()) {
    devices_.erase(attempt.device);
    return;
  }
  strangers_.erase(network_of(attempt.address));
  if (attempt.account.empty()) return;
  Failures& lane = lane_of(attempt.account);
  lane.count = std::max(0, lane.count - 1);
  lane.next = {};
}

LoginThrottle::Failures& LoginThrottle::lane_of(std::string_view account) {
  std::uint64_t hash = 0;
  static_assert(sizeof hash == crypto_shorthash_BYTES && sizeof key_ >= crypto_shorthash_KEYBYTES);
  ::crypto_shorthash(reinterpret_cast<unsigned char*>(&hash),
                     reinterpret_cast<const unsigned char*>(account.data()), account.size(), key_.data());
  return accounts_[hash % account_lanes];
}

void LoginThrottle::count(Failures& failures, const Rule& rule, Clock::time_point now) {
  ++failures.count;
  failures.newest = now;
  const int exponent = std::min(failures.count - rule.forgiven, longest_exponent);
  if (exponent > 0) failures.next = now + std::min(rule.longest, seconds(1LL << (exponent - 1)));
}

void LoginThrottle::forget_old(Failures& failures, Clock::time_point now) {
  if (now - failures.newest > forgotten_after) failures = {};
}

// When the client may try again. Makes room for one that is new.
LoginThrottle::Clock::time_point LoginThrottle::next_of(Table& table, const std::string& key,
                                                        Clock::time_point now) {
  const auto found = table.find(key);
  if (found == table.end()) {
    make_room(table, now);
    return {};
  }
  forget_old(found->second, now);
  return found->second.next;
}

void LoginThrottle::make_room(Table& table, Clock::time_point now) {
  if (table.size() < most_remembered) return;
  std::erase_if(table, [&](const auto& entry) { return now - entry.second.newest > forgotten_after; });
  while (table.size() >= most_remembered) {
    table.erase(std::min_element(table.begin(), table.end(), [](const auto& a, const auto& b) {
      return a.second.newest < b.second.newest;
    }));
  }
}

}  // namespace zrl::web
