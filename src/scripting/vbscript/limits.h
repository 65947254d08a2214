#pragma once

#include <chrono>
#include <cstddef>

namespace zrl::vbs {

// What scripts may use. A limit that is reached is an error of the call; the engine stays usable.
//
// Memory follows the longest text that the engine was given since the last reset, a script or the
// argument of a call: what a filter does with a mail takes some copies of it. Then scripts may use
// `memory_per_unit` bytes for each of its 16-bit units, though not more than `most_memory`, and a string may
// be twice as long as that text.
struct Limits {
  std::chrono::milliseconds call_time{10'000};       // of one call from outside, loading included
  std::size_t memory = std::size_t{64} << 20;        // bytes of strings, arrays, objects and code
  std::size_t memory_per_unit = 40;                  // 0: `memory` whatever the text
  std::size_t most_memory = std::size_t{1} << 30;    // bytes
  std::size_t string_units = std::size_t{12} << 20;  // 16-bit units of one string
  std::size_t call_depth = 10'000;                   // procedures that wait for each other
  std::size_t lookups = 100;                         // questions of Console.Lookup in one call from outside
};

}  // namespace zrl::vbs
