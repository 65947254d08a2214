#pragma once

#include <cstdint>

namespace zrl::vbs {

// Windows-1252, for Chr and Asc.
char16_t code_page_unit(unsigned char byte);
// 63, a question mark, for what the code page lacks.
std::int64_t code_page_byte(char16_t unit);

}  // namespace zrl::vbs
