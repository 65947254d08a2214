#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "host/web/inbox.h"
#include "host/web/offered_files.h"
#include "host/web/session_console.h"
#include "host/web/terminals.h"
#include "host/web/transport.h"
#include "host/web/uploads.h"

namespace zrl::web {

struct SessionTimes {
  std::chrono::milliseconds idle{30 * 60 * 1000};          // without anything that a person did
  std::chrono::milliseconds longest{12 * 60 * 60 * 1000};  // since the log-in
  std::chrono::milliseconds lost{15 * 60 * 1000};          // that a tab's console is kept without a WebSocket
  std::chrono::milliseconds busy_after{150};  // until the browser shows that an action takes long
};

// A tab of a signed-in browser as the I/O thread sees it: its WebSocket, and the thread that runs its
// console, which starts with the first WebSocket. All calls are made on the I/O thread, except those of
// SessionOutput, which the tab's thread makes.
class Tab : public SessionOutput, public std::enable_shared_from_this<Tab> {
 public:
  using Clock = std::chrono::steady_clock;

  // Called on the I/O thread.
  struct Callbacks {
    std::function<void(Tab&)> ended;     // by itself, with an error; not by end()
    std::function<void(Tab&)> finished;  // its thread is over, the tab can go
    std::function<void()> person_acted;
    std::function<void(std::string)> language_is;
  };

  // What is passed by reference must outlive the tab.
  Tab(IoLoop& loop, const ConsoleSettings& settings, const SessionTimes& times, TerminalPlaces& terminals,
      TabIdentity identity, Callbacks callbacks);
  ~Tab() override;

  // The listener for a new WebSocket, which replaces the one before.
  std::shared_ptr<ChannelListener> new_listener();
  bool is_connected() const { return channel_ != nullptr; }
  // Since when it has no WebSocket; nothing while it has one.
  std::optional<Clock::time_point> lost_since() const { return lost_; }
  // Whether the browser said that it left the page, so that nobody may come back.
  bool was_left() const { return lost_ && left_; }

  // The files that its pages have made for the user.
  OfferedFiles& offered() { return offered_; }
  // Gives a file that has arrived to the console; the reply is made when its turn has come.
  void take_upload(UploadTarget target, std::unique_ptr<UploadedFile> file, Reply reply);

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

  struct Busy {
    std::string text;
    std::uint64_t done = 0;
    std::uint64_t total = 0;
    bool is_long = false;
  };

  // The number of the connection.
  std::uint64_t connected(std::shared_ptr<Channel> channel);
  bool received(std::uint64_t connection, std::string text);
  void disconnected(std::uint64_t connection, bool left);

  // Runs the task on the I/O thread, unless the tab has been destroyed by then. From any thread.
  void post(std::function<void(Tab&)> task);
  void start_thread();
  void run_console();
  void tell_busy();
  void tell_no_longer_busy();

  IoLoop& loop_;
  const ConsoleSettings& settings_;
  const SessionTimes& times_;
  TerminalPlaces& terminals_;
  const TabIdentity identity_;
  const Callbacks callbacks_;
  Inbox inbox_;
  OfferedFiles offered_;
  std::thread thread_;

  std::shared_ptr<Channel> channel_;
  std::uint64_t connection_ = 0;
  bool greeted_ = false;  // something has been sent on this connection, a hello first
  std::optional<Clock::time_point> lost_ = Clock::now();
  bool left_ = false;
  std::optional<Busy> busy_;
  std::uint64_t action_ = 0;
  bool ended_ = false;
};

}  // namespace zrl::web
