#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zrl::web {

// Slows down the guessing of passwords: after a few failures in a row, each try has to wait twice as long as
// the one before.
//
// Failures of strangers are counted for each address (IPv6 by network) and for each account, so that rotating
// addresses don't help. A browser that signed in to the account before has a lane of its own instead:
// strangers who keep the account's lane full cannot lock it out, and it has no more tries than one address
// has.
//
// Accounts share a fixed number of lanes, by a hash that strangers cannot compute: names that exist and names
// that don't are treated alike, and take no room.
class LoginThrottle {
 public:
  using Clock = std::chrono::steady_clock;

  struct Try {
    std::string address;
    std::string account;  // empty: the try is about no account, only the address counts
    std::string device;   // proven to have signed in to the account before; empty for strangers
  };

  LoginThrottle();

  // Zero if the try may be made now; it then counts as a failure until succeeded() is called. Otherwise the
  // time to wait, and nothing is counted.
  std::chrono::seconds begin_try(const Try& attempt, Clock::time_point now);
  void succeeded(const Try& attempt);

  std::size_t remembered() const { return strangers_.size() + devices_.size(); }

  static constexpr std::size_t most_remembered = 1024;  // addresses, and as many devices
  static constexpr std::size_t account_lanes = 32;

 private:
  struct Failures {
    int count = 0;
    Clock::time_point next{};
    Clock::time_point newest{};
  };
  struct Rule {
    int forgiven;
    std::chrono::seconds longest;
  };
  using Table = std::map<std::string, Failures, std::less<>>;

  Failures& lane_of(std::string_view account);
  static void count(Failures& failures, const Rule& rule, Clock::time_point now);
  static void forget_old(Failures& failures, Clock::time_point now);
  static Clock::time_point next_of(Table& table, const std::string& key, Clock::time_point now);
  static void make_room(Table& table, Clock::time_point now);

  Table strangers_;  // by network
  Table devices_;
  std::array<Failures, account_lanes> accounts_;
  std::array<unsigned char, 32> key_{};
};

}  // namespace zrl::web
