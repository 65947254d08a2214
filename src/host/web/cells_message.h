#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/table.h"
#include "host/web/outgoing.h"

namespace zrl::web {

// A window of a table as a message (docs/protocol.md): reads it, as an event of the form. It has fewer rows
// than asked for at their end, and if they are long. With `sought`, the position of the row with this key.
std::string cells_message(std::string_view form, Table& table, std::uint64_t request, WindowOf window,
                          const std::optional<std::string>& sought);

}  // namespace zrl::web
