#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <spawn.h>
#include <sys/types.h>

#include "core/contracts/host.h"

namespace zrl {

// The name under which one of the product's programs is looked up on this platform: without ".exe".
std::string program_of(std::string_view word);

// What differs between the callers of spawn().
struct SpawnOptions {
  short flags = 0;  // POSIX_SPAWN_..., in addition to those for signals
  // Opens the standard input, output and error in the new process.
  std::function<void(posix_spawn_file_actions_t&)> open_files;
  char* const* environment = nullptr;
};

// Starts the program without a shell, in the folder that it names. It inherits only the three standard files,
// and has all signals unblocked and at their defaults. The caller must wait for the process (waitpid), whose
// id is returned. Raises zrl::Error if the program is not found or cannot be started.
pid_t spawn(const ProgramStart& program, const SpawnOptions& options);

// Starts the program with an empty standard input and does not wait for it; the caller has no duties. Raises
// zrl::Error as spawn() does.
void start_program(const ProgramStart& program);

}  // namespace zrl
