#pragma once

#include "pages/installed.h"

// Logs such as a busy proxy leaves behind.
namespace zrl::bench {

inline constexpr int log_rows = 10'000'000;    // of a month
inline constexpr int rows_of_day = 1'000'000;  // of its last 24 hours

// A console whose logs have these rows, up to now; made at the first call, which takes a minute or two. The
// variable ZRL_BENCH_LOG_ROWS sets another number for trying.
Installed& busy_console();

// Fills the logs of a database that has none; its indexes are made when it is next opened.
void fill_logs(const Installed& installed, int rows, int last_day);

void add_overview(Suite& suite);
void add_messages(Suite& suite);
void add_insertions(Suite& suite);

}  // namespace zrl::bench
