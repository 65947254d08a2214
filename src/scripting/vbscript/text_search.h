#pragma once

#include <string_view>

#include "scripting/vbscript/heap.h"

namespace zrl::vbs {

// Where `needle`, which is not empty, lies in `text` at or behind `from`, or npos. Its time grows with
// the sum of the lengths, whatever the texts are; its memory, for a long needle, is charged to the heap.
std::size_t find_text(Heap& heap, std::u16string_view text, std::u16string_view needle, std::size_t from);
std::size_t find_bytes(Heap& heap, std::string_view bytes, std::string_view needle, std::size_t from);
// The last place at or before `last`.
std::size_t find_last_text(Heap& heap, std::u16string_view text, std::u16string_view needle,
                           std::size_t last);

}  // namespace zrl::vbs
