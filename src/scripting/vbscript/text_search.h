#pragma once

#include <string_view>

namespace zrl::vbs {

// The first place of `needle` at or behind `from`, or npos; in a time that grows with both lengths, not
// with their product.
std::size_t find_text(std::u16string_view text, std::u16string_view needle, std::size_t from);
// The last place that begins at or before `last`.
std::size_t find_last_text(std::u16string_view text, std::u16string_view needle, std::size_t last);

}  // namespace zrl::vbs
