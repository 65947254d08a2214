#pragma once

#include <string>

namespace zrl::web {

// 256 bits from the system's secure random source, as 64 hexadecimal digits.
std::string random_token();

}  // namespace zrl::web
