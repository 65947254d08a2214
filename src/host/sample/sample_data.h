#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "core/console.h"

namespace zrl::sample {

// Fills the console's database with what a busy proxy leaves behind: lists, options, a month of
// logs, archived mails, accounts and scripts. Each run makes exactly the same rows. All names and addresses
// are in domains and ranges that are reserved for examples (RFC 2606, RFC 5737).
//
// This is one transaction, all or nothing. A database that already holds data is left as it is, and the
// result is false. `report` is called for each table that was filled. Raises zrl::Error.
bool fill_sample_data(Console& console,
                      const std::function<void(std::string_view table, std::size_t rows)>& report);

}  // namespace zrl::sample
