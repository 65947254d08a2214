#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "core/contracts/database.h"
#include "host/sample/lists.h"

namespace zrl::sample {

using Report = std::function<void(std::string_view table, std::size_t rows)>;

// Writes a month of connections and what became of them. The later logs tell of connections that
// the IP log holds; a row's status is the list that the host is on.
void write_logs(Connection& conn, const Lists& lists, const Report& report);

}  // namespace zrl::sample
