#pragma once

#include <string>

namespace zrl {

class Console;

// The console's clock in local time, as fourteen digits: "20051104173005" is 17:30:05 on 4 November
// 2005.
std::string time_stamp(const Console& console);

}  // namespace zrl
