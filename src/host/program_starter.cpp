#include "host/program_starter.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include "core/error.h"
#include "core/paths.h"
#include "core/text.h"

namespace zrl {

namespace {

// What the program finds when it starts: an empty input, none of our files and sockets, its folder,
// and signals as any program expects them.
struct Surroundings {
  explicit Surroundings(const ProgramStart& program) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (!program.folder.empty()) {
      posix_spawn_file_actions_addchdir_np(&actions, to_file_path(program.folder).c_str());
    }
    sigset_t signals;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
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

void start_program(const ProgramStart& program) {
  std::vector<std::string> words{program_of(program.program)};
  words.insert(words.end(), program.operands.begin(), program.operands.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);

  const Surroundings surroundings(program);
  pid_t child = 0;
  const int failure = posix_spawnp(&child, arguments[0], &surroundings.actions, &surroundings.attributes,
                                   arguments.data(), environ);
  if (failure != 0) throw Error(failure, words[0] + ": " + std::strerror(failure));
}

}  // namespace zrl
