#pragma once

#include <chrono>

#include "components/service/service.h"
#include "core/contracts/host.h"

namespace zrl {

// Runs the program to its end, without a shell and with an empty standard input, and returns the first 64 KiB
// of its standard output and error, and its exit status (128 plus the signal if a signal ended it). Blocks.
// Raises zrl::Error if the program cannot be started; after the time limit, kills it and raises zrl::Error.
service::ProgramResult program_output(const ProgramStart& program, std::chrono::milliseconds time_limit);

}  // namespace zrl
