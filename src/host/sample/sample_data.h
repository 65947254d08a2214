#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "core/console.h"

namespace zrl::sample {

// Fills the console's database with what a busy proxy leaves behind: lists, options, a month of
// logs, archived mails, accounts and scripts. Each run makes exactly the same rows. All names lie
// under domains, all addresses in ranges that are reserved for examples.
//
// One transaction: everything or nothing. A database that holds data already is left as it is; the
// result is then false. `report` hears of each table that was filled. Raises zrl::Error.
bool fill_sample_data(Console& console,
                      const std::function<void(std::string_view table, std::size_t rows)>& report);

}  // namespace zrl::sample
