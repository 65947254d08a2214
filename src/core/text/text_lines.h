#pragma once

#include <string_view>

namespace zrl {

// Takes the first line off the text and returns it without its end, a line feed with or without a carriage
// return before it. The last line needs none.
std::string_view take_line(std::string_view& text);

}  // namespace zrl
