#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>

namespace zrl::web {

// Slows down the guessing of passwords: after a few failures in a row, each try has to wait twice as long as
// the one before. Failures are counted for each address (IPv6 by network), and for all addresses together.
class LoginThrottle {
 public:
  using Clock = std::chrono::steady_clock;

  // Zero if the try may be made now; it then counts as a failure until succeeded() is called. Otherwise the
  // time to wait, and nothing is counted.
  std::chrono::seconds begin_try(const std::string& address, Clock::time_point now);
  void succeeded(const std::string& address);

  std::size_t addresses() const { return by_address_.size(); }

  static constexpr std::size_t max_addresses = 1024;

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

  static void count(Failures& failures, const Rule& rule, Clock::time_point now);
  void make_room(Clock::time_point now);

  std::map<std::string, Failures, std::less<>> by_address_;
  Failures overall_;
};

}  // namespace zrl::web
