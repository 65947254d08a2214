#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

#include <sys/types.h>

#include "core/contracts/host.h"

namespace zrl::web {

// Closes a file descriptor when it goes.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_ = -1;
};

// A program that runs on a pseudo-terminal of its own, in a session and process group of its own,
// with a clean environment. None of the calls waits.
class Terminal {
 public:
  struct End {
    bool signalled;  // else it exited
    int number;      // of the signal, or the exit status
  };
  enum class Read : std::uint8_t { some, nothing, over };

  // The program runs in `folder` unless it names one itself. Raises zrl::Error if it cannot be started.
  Terminal(const ProgramStart& program, const std::filesystem::path& folder);
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  // Kills the processes that still run.
  ~Terminal();

  // To be polled: the terminal, and what becomes readable when the program has ended.
  int descriptor() const { return terminal_.get(); }
  int process_descriptor() const { return process_.get(); }

  // Reads up to `size` bytes, and sets `size` to the number read. `over` means that nothing can follow.
  Read read(char* data, std::size_t& size);
  // Returns how many bytes the terminal accepted, perhaps 0.
  std::size_t write(std::string_view text);
  void resize(std::uint16_t columns, std::uint16_t rows);

  // Asks the program and its children to end (SIGHUP), or kills them.
  void hang_up();
  void kill();
  // How it ended, once it has; what is left of its process group is killed.
  std::optional<End> end();

 private:
  void signal_all(int signal);

  Descriptor terminal_;
  Descriptor process_;
  pid_t child_ = -1;
  std::optional<End> end_;
};

}  // namespace zrl::web
