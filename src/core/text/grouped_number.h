#pragma once

#include <cstdint>
#include <string>

namespace zrl {

// The digits in groups of three, with commas between them, or full stops for German readers.
inline std::string grouped(std::uint64_t number, bool german) {
  std::string digits = std::to_string(number);
  for (std::size_t end = digits.size(); end > 3; end -= 3) digits.insert(end - 3, 1, german ? '.' : ',');
  return digits;
}

}  // namespace zrl
