#pragma once

#include <string>
#include <string_view>

#include "core/host.h"

namespace zrl {

// The name under which a program of the product is looked up here: without the ending ".exe".
std::string program_of(std::string_view word);

// Starts the program without a shell, its standard input empty, and does not wait for it. Raises
// zrl::Error if it is not found or cannot be started.
void start_program(const ProgramStart& program);

}  // namespace zrl
