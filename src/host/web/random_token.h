#pragma once

#include <string>

namespace zrl::web {

// 256 random bits as hexadecimal digits: nobody guesses it.
std::string random_token();

}  // namespace zrl::web
