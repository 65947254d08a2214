#pragma once

#include "core/console.h"

namespace zrl::sample {

// Writes every option that a page knows, and the registry values that belong to them. Returns the number of
// options. Raises zrl::Error.
std::size_t write_options(Console& console, Database& database, ConnectionHandle& conn);

}  // namespace zrl::sample
