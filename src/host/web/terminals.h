#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>

#include "host/web/terminal.h"

namespace zrl::web {

// How many terminals there may be in all tabs of a session, ended ones included. From any thread.
class TerminalPlaces {
 public:
  static constexpr std::size_t most = 8;

  // One of them, until it is destroyed.
  class Place {
   public:
    explicit Place(TerminalPlaces& places) : places_(&places) {}
    Place(Place&& other) noexcept : places_(std::exchange(other.places_, nullptr)) {}
    Place& operator=(Place&& other) noexcept {
      std::swap(places_, other.places_);
      return *this;
    }
    ~Place() {
      if (places_ != nullptr) --places_->taken_;
    }

   private:
    TerminalPlaces* places_;
  };

  // Nothing if all are taken.
  std::optional<Place> take() {
    if (++taken_ <= most) return Place(*this);
    --taken_;
    return {};
  }

 private:
  std::atomic<std::size_t> taken_ = 0;
};

// The programs that the pages of a tab have started, each on a terminal that its browser shows. A
// thread of its own, which begins with the first program, carries bytes both ways, so that neither
// the console nor a program waits for the other. All calls are made on the session's thread.
//
// A program's output is read only a small window ahead of the browser; a program that prints without end is
// held up, as by a slow line. The latest output is kept for a browser that reconnects.
class Terminals {
 public:
  static constexpr std::size_t window = 256 << 10;
  static constexpr std::size_t most_input = 1 << 20;    // typed, and not read yet
  static constexpr std::size_t longest_line = 4 << 10;  // a longer one is noted in pieces

  // Called from both threads; must not wait.
  using Send = std::function<void(std::uint64_t connection, std::string message)>;

  // Gets every line that was typed into a program, and the unfinished one when the program ended or was
  // closed: the program's command line, a colon, and the bytes. On the session's thread.
  using Note = std::function<void(std::string_view text)>;

  // Programs run in `folder` unless they name one. `places` must outlive this object.
  Terminals(std::filesystem::path folder, TerminalPlaces& places, Send send, Note note);
  Terminals(const Terminals&) = delete;
  Terminals& operator=(const Terminals&) = delete;
  // Ends all programs and returns when they have ended.
  ~Terminals();

  // Raises zrl::Error if the program cannot be started, or if too many are running.
  void start(const ProgramStart& program);

  // Messages go to this connection from now on, beginning with the open terminals and their latest output.
  void connected(std::uint64_t connection);

  // Requests of the browser; one for a terminal that no longer exists is ignored. False: the program does not
  // read its input, and the text is lost.
  bool type(std::uint64_t id, std::string_view text);
  void resize(std::uint64_t id, std::uint16_t columns, std::uint16_t rows);
  // The browser has drawn the output up to this position.
  void taken(std::uint64_t id, std::uint64_t position);
  // Ends the program if it runs.
  void close(std::uint64_t id);
  // Ends all programs, and starts no further one; does not wait. From any thread.
  void end_all();

 private:
  using Clock = std::chrono::steady_clock;

  // How a program is made to end.
  enum class Closing : std::uint8_t { ask, kill, leave };

  struct Open {
    TerminalPlaces::Place place;
    std::string title = {};
    std::string withheld = {};                // bytes that never reach it
    std::unique_ptr<Terminal> terminal = {};  // none once all has been read of a program that ended
    std::string input = {};
    std::string history = {};    // the end of its output
    std::uint64_t produced = 0;  // bytes of output ever
    std::uint64_t taken = 0;
    std::optional<Terminal::End> end = {};
    bool closing = false;  // the browser wants no more of it
    bool drained = false;
    Clock::time_point next_read{};
    Closing step = Closing::ask;
    Clock::time_point next_step{};

    bool wants_reading() const;
  };
  using Table = std::map<std::uint64_t, Open>;

  // What of the latest line has not been noted yet.
  struct Typed {
    std::string title;
    std::string line;
  };

  struct Watch {
    std::vector<std::uint64_t> ids;  // two entries of `polled` each, after the first
    std::vector<pollfd> polled;
    int timeout = -1;
  };

  TerminalPlaces::Place make_room();
  void note_typed(std::uint64_t id, std::string_view text);
  void note_rest(std::uint64_t id);
  void run();
  Watch what_to_watch();
  void serve(std::uint64_t id, Open& open);
  void end_by_force(Open& open, Clock::time_point now);
  void pass_output(std::uint64_t id, Open& open);
  void tell(std::string message) { send_(connection_, std::move(message)); }
  void tell_all(std::uint64_t id, Open& open);
  void wake();

  const std::filesystem::path folder_;
  TerminalPlaces& places_;
  const Send send_;
  const Note note_;
  std::map<std::uint64_t, Typed> typed_;  // of open terminals; only for the session's thread
  Descriptor wake_;
  std::mutex mutex_;  // of everything below; only the thread closes what it polls
  Table table_;
  std::uint64_t last_id_ = 0;
  std::uint64_t connection_ = 0;
  bool stopping_ = false;
  std::vector<char> buffer_;
  std::thread thread_;
};

}  // namespace zrl::web
