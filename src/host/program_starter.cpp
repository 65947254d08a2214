#include "host/program_starter.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// The new process's files, folder and signals.
struct Surroundings {
  Surroundings(const ProgramStart& program, const SpawnOptions& options) {
    posix_spawn_file_actions_init(&actions);
    options.open_files(actions);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (!program.folder.empty()) {
      posix_spawn_file_actions_addchdir_np(&actions, to_file_path(program.folder).c_str());
    }
    sigset_t signals;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(
        &attributes, static_cast<short>(options.flags | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
  }
  Surroundings(const Surroundings&) = delete;
  Surroundings& operator=(const Surroundings&) = delete;
  ~Surroundings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

}  // namespace

std::string program_of(std::string_view word) {
  if (lower(word).ends_with(".exe")) word.remove_suffix(4);
  return std::string(word);
}

pid_t spawn(const ProgramStart& program, const SpawnOptions& options) {
  std::vector<std::string> words{program_of(program.program)};
  words.insert(words.end(), program.operands.begin(), program.operands.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  const Surroundings surroundings(program, options);
  pid_t child = 0;
  const int failure = posix_spawnp(&child, arguments[0], &surroundings.actions, &surroundings.attributes,
                                   arguments.data(), options.environment);
  if (failure != 0) throw Error(failure, words[0] + ": " + std::strerror(failure));
  return child;
}

void start_program(const ProgramStart& program) {
  const auto no_input = [](posix_spawn_file_actions_t& actions) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  };
  spawn(program, {.open_files = no_input, .environment = environ});
}

}  // namespace zrl
