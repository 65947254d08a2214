#pragma once

#include "core/console.h"

namespace zrl::sample {

// Writes every option that a page knows, and the registry values that belong to them. Tells how
// many options there are.
std::size_t write_options(Console& console, Database& database, ConnectionHandle& conn);

}  // namespace zrl::sample
