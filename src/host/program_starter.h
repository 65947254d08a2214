#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <spawn.h>
#include <sys/types.h>

#include "core/contracts/host.h"

namespace zrl {

// The name under which a program of the product is looked up here: without the ending ".exe".
std::string program_of(std::string_view word);

// What differs between those who start programs.
struct SpawnOptions {
  short flags = 0;  // POSIX_SPAWN_..., beside those about signals
  // Opens the standard input, output and error in the new process.
  std::function<void(posix_spawn_file_actions_t&)> open_files;
  char* const* environment = nullptr;
};

// Starts the program without a shell, in its folder, with none of our files but the three standard
// ones, and with signals as any program expects them. The caller waits for the process. Raises
// zrl::Error if the program is not found or cannot be started.
pid_t spawn(const ProgramStart& program, const SpawnOptions& options);

// Starts the program, its standard input empty, and does not wait for it. Raises zrl::Error.
void start_program(const ProgramStart& program);

}  // namespace zrl
