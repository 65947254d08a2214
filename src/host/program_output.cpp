#include "host/program_output.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/text/error.h"
#include "host/program_starter.h"

namespace zrl {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr std::size_t most_output = std::size_t{64} << 10;
constexpr milliseconds pause_for_the_end{2};

class Pipe {
 public:
  Pipe() {
    if (::pipe2(ends_, O_CLOEXEC) != 0) throw Error(errno, std::strerror(errno));
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    close_writing();
    ::close(ends_[0]);
  }

  int reading() const { return ends_[0]; }
  int writing() const { return ends_[1]; }
  void close_writing() {
    if (ends_[1] >= 0) ::close(ends_[1]);
    ends_[1] = -1;
  }

 private:
  int ends_[2] = {-1, -1};
};

// A process of ours, which does not outlive this object.
class Child {
 public:
  explicit Child(pid_t process) : process_(process) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (ended_) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }

  bool has_ended() {
    if (!ended_) ended_ = ::waitpid(process_, &status_, WNOHANG) != 0;
    return ended_;
  }
  // As shells count it: 128 and the signal if one ended it.
  int exit_status() const {
    constexpr int signals = 128;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : signals + WTERMSIG(status_);
  }

 private:
  pid_t process_;
  int status_ = -1;
  bool ended_ = false;
};

[[noreturn]] void fail_late(const ProgramStart& program) {
  throw Error(ETIMEDOUT, program_of(program.program) + ": " + std::strerror(ETIMEDOUT));
}

int milliseconds_until(Clock::time_point end) {
  return static_cast<int>(
      std::max(std::chrono::ceil<milliseconds>(end - Clock::now()), milliseconds(0)).count());
}

// False if the time was over before the output ended.
bool read_all(int file, Clock::time_point end, std::string& text) {
  char buffer[4096];
  for (;;) {
    pollfd waiting{file, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, milliseconds_until(end));
    if (ready == 0 || Clock::now() >= end) return false;
    if (ready < 0) continue;  // a signal came
    const ssize_t count = ::read(file, buffer, sizeof buffer);
    if (count <= 0) return true;
    text.append(buffer, std::min(static_cast<std::size_t>(count), most_output - text.size()));
  }
}

}  // namespace

service::ProgramResult program_output(const ProgramStart& program, milliseconds time_limit) {
  const Clock::time_point end = Clock::now() + time_limit;
  Pipe pipe;
  const auto open_files = [&pipe](posix_spawn_file_actions_t& actions) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, pipe.writing(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, pipe.writing(), STDERR_FILENO);
  };
  Child child(spawn(program, {.open_files = open_files, .environment = environ}));
  pipe.close_writing();
  service::ProgramResult result;
  if (!read_all(pipe.reading(), end, result.text)) fail_late(program);
  while (!child.has_ended()) {
    if (Clock::now() >= end) fail_late(program);
    ::usleep(static_cast<useconds_t>(std::chrono::microseconds(pause_for_the_end).count()));
  }
  result.exit_status = child.exit_status();
  return result;
}

}  // namespace zrl
