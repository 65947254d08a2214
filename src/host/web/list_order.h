#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/text/string_list.h"

namespace zrl::web {

// The orders in which a browser shows a list. The case of ASCII letters does not count; bytes beyond ASCII
// are compared as they are.
enum class ListOrder : std::uint8_t {
  added,       // as the list has them
  text,        // A to Z
  domain_end,  // by labels from the last to the first, so that the names of a domain stand together; what
               // precedes an at sign counts last, as a whole
};

// "added", "text" and "domain", as messages have it; nothing for another text.
std::optional<ListOrder> list_order_of(std::string_view name);
std::string_view name_of(ListOrder order);

// The indexes of the rows in that order; equal rows stay in the order of the list. By domain, texts that
// agree in their last 256 bytes count as equal. Copies no text; needs 32 bytes a row while it works.
std::vector<std::uint32_t> sorted_rows(const StringList& rows, ListOrder order);

}  // namespace zrl::web
