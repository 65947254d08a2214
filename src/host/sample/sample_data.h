#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string_view>

#include "core/console.h"

namespace zrl::sample {

// Fills the console's database with what a busy proxy leaves behind: lists, options, logs and archived mails
// of the 30 days up to `end`, which is in the proxy's local time, accounts and scripts. Each run makes the
// same rows but for their times and the mails' IDs, and exactly the same ones for the same `end`. All names
// and addresses are in domains and ranges that are reserved for examples (RFC 2606, RFC 5737).
//
// This is one transaction, all or nothing. A database that already holds data is left as it is, and the
// result is false. `report` is called for each table that was filled. Raises zrl::Error.
bool fill_sample_data(Console& console, std::chrono::local_seconds end,
                      const std::function<void(std::string_view table, std::size_t rows)>& report);

}  // namespace zrl::sample
