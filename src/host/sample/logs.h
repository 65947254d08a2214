#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string_view>

#include "core/contracts/database.h"
#include "host/sample/lists.h"

namespace zrl::sample {

using Report = std::function<void(std::string_view table, std::size_t rows)>;

// Writes the connections of the 30 days up to `end`, and their outcomes. Every row of the other logs belongs
// to a connection in the IP log; a row's status is the list that the host is on. Raises zrl::Error.
void write_logs(Connection& conn, const Lists& lists, std::chrono::local_seconds end, const Report& report);

}  // namespace zrl::sample
