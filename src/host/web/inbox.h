#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>

namespace zrl::web {

struct PendingUpload;

// Something that a session's thread receives from other threads.
struct Incoming {
  enum class Kind : std::uint8_t {
    message,    // from the browser
    connected,  // a WebSocket has been opened; what it is sent begins with a hello
    ended,      // the session is over
    stopping,   // and so is the program: let running actions end early
    upload,     // a file has come for a file list
  };

  Kind kind;
  std::uint64_t connection;
  std::string text;
  std::shared_ptr<PendingUpload> upload = {};
};

// The queue between the I/O thread, which pushes, and a session's thread, which pops. It holds a few
// hundred messages at most: when it is full, push() asks the caller to read no more, and `on_room` is called,
// on the popping thread, once there is room again.
class Inbox {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t max_messages = 256;
  static constexpr std::size_t max_bytes = 4 << 20;

  explicit Inbox(std::function<void()> on_room) : on_room_(std::move(on_room)) {}

  // Never waits. False: the item was taken, but the queue is full now. Kinds other than messages are always
  // taken.
  bool push(Incoming item);

  // Asked to stop as soon as the session's end has been pushed, even if what comes before takes long.
  std::stop_token ending() const { return ending_.get_token(); }

  // The next item, or nothing if none comes until the deadline.
  std::optional<Incoming> pop(Clock::time_point deadline);

 private:
  std::function<void()> on_room_;
  std::stop_source ending_;
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<Incoming> items_;
  std::size_t bytes_ = 0;
  bool full_ = false;
};

}  // namespace zrl::web
