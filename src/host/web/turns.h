#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

#include "host/web/form_stack.h"
#include "host/web/inbox.h"
#include "host/web/messages.h"
#include "host/web/session_output.h"

namespace zrl::web {

// What a session does with arrivals, and with events whose turn has come.
class TurnHandler {
 public:
  virtual ~TurnHandler() = default;

  // An item has come through the inbox; handlers may be running. What has to wait for its turn is passed to
  // Turns::wait().
  virtual void arrived(const Incoming& item) = 0;
  // It has waited, and its turn has come.
  virtual void handle(const BrowserMessage& message) = 0;
  virtual void tick(Timer& timer) = 0;
};

// The event loop of a session: decides what its thread does next. Arrivals are looked at in their order, at
// once; events, changes of page and timers take turns. At the top level everything may have its turn. A
// handler that waits for the browser runs a nested loop, in which the others keep their order and wait:
//
// - within a handler, changes of page wait, and what follows them too unless it is for an open dialog;
// - while a message box is open, everything but arrivals waits.
//
// Messages and timers alternate, so that neither keeps the other from its turn. All calls are made on the
// session's thread; what the constructor is given must outlive it.
class Turns {
 public:
  using Clock = std::chrono::steady_clock;

  static constexpr std::size_t most_waiting = Inbox::max_messages;
  static constexpr std::size_t most_waiting_bytes = Inbox::max_bytes;
  static constexpr int deepest = 16;  // handlers within handlers; beyond, events wait for one of them to end

  // While one lives, a handler runs, and the thread is busy.
  class Action {
   public:
    explicit Action(Turns& turns);
    Action(const Action&) = delete;
    Action& operator=(const Action&) = delete;
    ~Action();

   private:
    Turns& turns_;
  };

  // While one lives, the handler waits for the browser, and the thread is not busy.
  class Pause {
   public:
    explicit Pause(Turns& turns);
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause();

   private:
    Turns& turns_;
    int busy_;
  };

  Turns(Inbox& inbox, FormStack& forms, SessionOutput& output, TurnHandler& handler)
      : inbox_(inbox), forms_(forms), output_(output), handler_(handler) {}

  // The loop at the top; returns when the session ends.
  void run();

  // The loops within a handler. The first two return early when the session ends; the others raise
  // zrl::Error when the program is being stopped, so that the action ends.
  void serve_until_answered(const std::optional<BoxReply>& reply);
  void serve_until_closed(const Form& dialog);
  void serve_pending();
  void serve_until(Clock::time_point end);

  // The message waits for its turn. False: too much waits already, and it was dropped.
  bool wait(BrowserMessage message);
  void forget_waiting();

  // No more turns; actions may run to their end unless the program is being stopped.
  void end(bool stopping);
  bool ending() const { return ending_; }
  // Whether no handler runs.
  bool idle() const { return depth_ == 0; }

 private:
  enum class Level : std::uint8_t { top, nested, box };

  // Does the next thing, waiting for it until the deadline. False if there was none.
  bool step(Level level, Clock::time_point deadline);
  bool tick();
  std::optional<BrowserMessage> take_waiting(Level level);
  Level nested_level() const;
  void check_stopping() const;

  Inbox& inbox_;
  FormStack& forms_;
  SessionOutput& output_;
  TurnHandler& handler_;

  std::deque<BrowserMessage> waiting_;
  std::size_t waiting_bytes_ = 0;
  int depth_ = 0;  // handlers on the stack
  int busy_ = 0;   // those of them that do not wait for the browser
  bool ticked_last_ = false;
  bool ending_ = false;
  bool stopping_ = false;
};

}  // namespace zrl::web
