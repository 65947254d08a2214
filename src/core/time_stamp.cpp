#include "core/time_stamp.h"

#include <chrono>
#include <ctime>

#include "core/console.h"

namespace zrl {

std::string time_stamp(const Console& console) {
  const std::time_t now = std::chrono::system_clock::to_time_t(console.now());
  std::tm local{};
  if (!::localtime_r(&now, &local)) return {};
  char digits[32];
  return {digits, std::strftime(digits, sizeof digits, "%Y%m%d%H%M%S", &local)};
}

}  // namespace zrl
