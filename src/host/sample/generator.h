#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zrl::sample {

// Numbers that look random and are the same on every machine and with every compiler: whole-number
// arithmetic only. Callers must not draw twice within one expression whose order is not fixed;
// braced lists, such as those of join(), are read from left to right.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next();

  // From 0 to n - 1, equally distributed; n is not 0.
  std::size_t below(std::size_t n) { return static_cast<std::size_t>(((next() >> 32) * n) >> 32); }

  // From 0 to n - 1, low numbers far more often than high ones, because few senders send most of the mail.
  std::size_t skewed(std::size_t n);

  bool chance(std::size_t percent) { return below(100) < percent; }

  // Digits of a number from 1 to n.
  std::string digits(std::size_t n) { return std::to_string(1 + below(n)); }

  std::string bytes(std::size_t count);

  template <typename Items>
  decltype(auto) pick(const Items& items) {
    return items[below(std::size(items))];
  }

  // The items that come first are the frequent ones.
  template <typename Items>
  decltype(auto) pick_skewed(const Items& items) {
    return items[skewed(std::size(items))];
  }

  template <typename Item>
  void shuffle(std::vector<Item>& items) {
    for (std::size_t i = items.size(); i > 1; --i) std::swap(items[i - 1], items[below(i)]);
  }

 private:
  std::uint64_t state_;
};

std::string join(std::initializer_list<std::string_view> parts);

// A moment in the local time of the proxy, to the second.
class Moment {
 public:
  Moment() = default;
  explicit Moment(std::chrono::local_seconds time) : time_(time) {}

  std::string log_time() const;     // 2026-09-01 08:15:00
  std::string stamp() const;        // 20260901081500
  std::string header_date() const;  // Tue, 01 Sep 2026 08:15:00 +0000

 private:
  std::chrono::local_seconds time_{};
};

// `count` moments of the 30 days up to `end`, in ascending order, busy in office hours and quieter at night
// and at weekends. What it draws from `random` does not depend on `end`.
std::vector<Moment> busy_moments(Generator& random, std::size_t count, std::chrono::local_seconds end);

}  // namespace zrl::sample
