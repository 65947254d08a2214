#pragma once

#include <span>

#include "host/command/command_line.h"

namespace zrl::command {

// Runs the web host until SIGINT or SIGTERM comes; prints the address to open and, while there is
// no account, the secret that chooses the first one. Raises std::exception if it cannot start.
int serve(const ServeOptions& options, std::span<const PageEntry> pages);

}  // namespace zrl::command
