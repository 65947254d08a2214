#pragma once

#include <chrono>

#include "components/service/service.h"
#include "core/contracts/host.h"

namespace zrl {

// Runs the program to its end, without a shell and its standard input empty, and returns what it
// wrote, at most 64 KiB. Raises zrl::Error if it cannot be started, and kills it and raises when the
// time is over.
service::ProgramResult program_output(const ProgramStart& program, std::chrono::milliseconds time_limit);

}  // namespace zrl
