#pragma once

#include <chrono>
#include <cstddef>

namespace zrl::vbs {

// What scripts may use. A limit that is reached is an error of the call; the engine stays usable.
struct Limits {
  std::chrono::milliseconds call_time{10'000};       // of one call from outside, loading included
  std::size_t memory = std::size_t{64} << 20;        // bytes of strings, arrays and objects
  std::size_t string_units = std::size_t{12} << 20;  // 16-bit units of one string
  std::size_t call_depth = 10'000;                   // procedures that wait for each other
};

}  // namespace zrl::vbs
