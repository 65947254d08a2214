#include "host/web/terminal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <utility>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/text/error.h"
#include "core/text/paths.h"
#include "host/web/confined_program.h"

namespace zrl::web {

namespace {

constexpr winsize first_size{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};

[[noreturn]] void raise(const char* what) {
  const int failure = errno;
  throw Error(failure, std::string(what) + ": " + std::strerror(failure));
}

Descriptor open_terminal() {
  Descriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!terminal || ::grantpt(terminal.get()) != 0 || ::unlockpt(terminal.get()) != 0 ||
      ::ioctl(terminal.get(), TIOCSWINSZ, &first_size) != 0) {
    raise("no terminal");
  }
  return terminal;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

Descriptor::~Descriptor() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

Terminal::Terminal(const ProgramStart& program, const std::filesystem::path& folder)
    : terminal_(open_terminal()) {
  std::array<char, 64> name{};
  if (::ptsname_r(terminal_.get(), name.data(), name.size()) != 0) raise("no terminal");
  ProgramStart placed = program;
  if (placed.folder.empty()) placed.folder = to_product_path(folder);
  child_ = start_confined(placed, name.data());
  // Not pidfd_open(): some C libraries declare it so that C++ cannot call it.
  process_ = Descriptor(static_cast<int>(::syscall(SYS_pidfd_open, child_, 0)));
  if (process_) return;
  const int failure = errno;
  ::kill(-child_, SIGKILL);
  ::waitpid(child_, nullptr, 0);
  errno = failure;
  raise("no watch over the program");
}

Terminal::~Terminal() {
  if (end_) return;
  kill();
  ::waitpid(child_, nullptr, WNOHANG);
}

Terminal::Read Terminal::read(char* data, std::size_t& size) {
  ssize_t length = 0;
  do {
    length = ::read(terminal_.get(), data, size);
  } while (length < 0 && errno == EINTR);
  size = length > 0 ? static_cast<std::size_t>(length) : 0;
  if (length > 0) return Read::some;
  // EIO: nobody has the other end open any more.
  return length < 0 && errno == EAGAIN ? Read::nothing : Read::over;
}

std::size_t Terminal::write(std::string_view text) {
  ssize_t length = 0;
  do {
    length = ::write(terminal_.get(), text.data(), text.size());
  } while (length < 0 && errno == EINTR);
  if (length >= 0) return static_cast<std::size_t>(length);
  return errno == EAGAIN ? 0 : text.size();  // nobody will ever read it
}

void Terminal::resize(std::uint16_t columns, std::uint16_t rows) {
  const winsize size{.ws_row = rows, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  ::ioctl(terminal_.get(), TIOCSWINSZ, &size);
}

void Terminal::hang_up() {
  signal_all(SIGHUP);
}

void Terminal::kill() {
  signal_all(SIGKILL);
}

// A program that runs others may have put one of them into the foreground, as a group of its own.
// The program has not been waited for, so its number and its group's are still its own.
void Terminal::signal_all(int signal) {
  if (end_) return;
  pid_t foreground = 0;
  if (::ioctl(terminal_.get(), TIOCGPGRP, &foreground) == 0 && foreground > 1 && foreground != child_) {
    ::kill(-foreground, signal);
    ::kill(-foreground, SIGCONT);
  }
  ::kill(-child_, signal);
  ::kill(-child_, SIGCONT);
}

std::optional<Terminal::End> Terminal::end() {
  if (end_) return end_;
  siginfo_t how{};
  if (::waitid(P_PID, static_cast<id_t>(child_), &how, WEXITED | WNOHANG | WNOWAIT) != 0) {
    // Somebody else has waited for it; how it ended is not known.
    end_ = End{false, 0};
    return end_;
  }
  if (how.si_pid == 0) return {};
  ::kill(-child_, SIGKILL);
  ::waitpid(child_, nullptr, 0);
  end_ = End{how.si_code != CLD_EXITED, how.si_status};
  return end_;
}

}  // namespace zrl::web
