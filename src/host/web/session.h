#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <variant>

#include "host/web/audit.h"
#include "host/web/inbox.h"
#include "host/web/offered_files.h"
#include "host/web/session_console.h"
#include "host/web/transport.h"

namespace zrl::web {

// A signed-in session as the I/O thread sees it: its WebSocket, its time limits, and the thread that runs its
// console, which starts with the first WebSocket. All calls are made on the I/O thread, except those of
// SessionOutput, which the session's thread makes.
class Session : public SessionOutput, public std::enable_shared_from_this<Session> {
 public:
  using Clock = std::chrono::steady_clock;

  struct Times {
    std::chrono::milliseconds idle{30 * 60 * 1000};          // without anything that a person did
    std::chrono::milliseconds longest{12 * 60 * 60 * 1000};  // since the log-in
    std::chrono::milliseconds lost{60 * 1000};               // without a WebSocket
    std::chrono::milliseconds busy_after{150};  // until the browser shows that an action takes long
  };

  // Called on the I/O thread.
  struct Callbacks {
    std::function<void(Session&)> ended;     // by itself, with an error; not by end()
    std::function<void(Session&)> finished;  // its thread is over, the session can go
    std::function<void(std::string)> language_is;
  };

  // `loop` and `settings` must outlive the session.
  Session(IoLoop& loop, const ConsoleSettings& settings, const Times& times, std::string account,
          Callbacks callbacks);
  ~Session() override;

  const std::string& account() const { return account_; }

  // The listener for a new WebSocket, which replaces the one before.
  std::shared_ptr<ChannelListener> new_listener();

  // An offered file, by its token. It stays on offer if only the head of the answer is asked for.
  Response download(std::string_view token, bool head_only = false);
  // What receives the file that a browser sends, or the response that refuses it.
  std::variant<std::monostate, Response, std::shared_ptr<BodySink>> receive_upload(const Request& request);

  // Why the session's time is over; nothing while it is not.
  std::optional<std::string_view> expiry(Clock::time_point now) const;

  enum class Reason { over, stopping };
  // Closes the WebSocket and lets the thread end. `finished` is called, at once or later.
  void end(Reason reason);

  void send(std::uint64_t connection, std::string message) override;
  void violated(std::uint64_t connection) override;
  void person_acted() override;
  void action_began() override;
  void action_ended() override;
  void progress(std::string text, std::uint64_t done, std::uint64_t total) override;
  void language_is(std::string language) override;

 private:
  class Listener;
  class UploadSink;

  static constexpr int most_uploads = 4;  // at a time

  struct Busy {
    std::string text;
    std::uint64_t done = 0;
    std::uint64_t total = 0;
    bool is_long = false;
  };

  // The number of the connection.
  std::uint64_t connected(std::shared_ptr<Channel> channel);
  bool received(std::uint64_t connection, std::string text);
  void disconnected(std::uint64_t connection);

  // Runs the task on the I/O thread, unless the session has been destroyed by then. From any thread.
  void post(std::function<void(Session&)> task);
  void start_thread();
  void run_console();
  void tell_busy();
  void tell_no_longer_busy();

  IoLoop& loop_;
  const ConsoleSettings& settings_;
  const Times& times_;
  const std::string account_;
  const Callbacks callbacks_;
  Inbox inbox_;
  OfferedFiles offered_;
  AuditLog audit_log_;  // of downloads
  int uploads_ = 0;
  std::thread thread_;

  std::shared_ptr<Channel> channel_;
  std::uint64_t connection_ = 0;
  bool greeted_ = false;  // something has been sent on this connection, a hello first
  const Clock::time_point began_ = Clock::now();
  Clock::time_point last_act_ = began_;
  std::optional<Clock::time_point> lost_ = began_;
  std::optional<Busy> busy_;
  std::uint64_t action_ = 0;
  bool ended_ = false;
};

}  // namespace zrl::web
