#include "host/web/turns.h"

#include <algorithm>
#include <utility>

#include "core/text/error.h"

namespace zrl::web {

namespace {

using Type = BrowserMessage::Type;

constexpr auto at_once = Turns::Clock::time_point::min();
constexpr auto never = Turns::Clock::time_point::max();

std::size_t size_of(const BrowserMessage& message) {
  return sizeof message + message.text.size();
}

}  // namespace

Turns::Action::Action(Turns& turns) : turns_(turns) {
  ++turns_.depth_;
  if (turns_.busy_++ == 0) turns_.output_.action_began();
}

Turns::Action::~Action() {
  if (--turns_.busy_ == 0) turns_.output_.action_ended();
  if (--turns_.depth_ == 0) turns_.forms_.forget_closed();
}

Turns::Pause::Pause(Turns& turns) : turns_(turns), busy_(std::exchange(turns.busy_, 0)) {
  if (busy_ > 0) turns_.output_.action_ended();
}

Turns::Pause::~Pause() {
  turns_.busy_ = busy_;
  if (busy_ > 0) turns_.output_.action_began();
}

void Turns::run() {
  while (!ending_) step(Level::top, never);
}

void Turns::serve_until_answered(const std::optional<BoxReply>& reply) {
  while (!reply && !ending_) step(Level::box, never);
}

void Turns::serve_until_closed(const Form& dialog) {
  while (dialog.is_open() && !ending_) step(Level::nested, never);
}

void Turns::serve_pending() {
  for (std::size_t i = 0; i < Inbox::max_messages && step(nested_level(), at_once); ++i) {
    if (stopping_) break;
  }
  check_stopping();
}

void Turns::serve_until(Clock::time_point end) {
  while (!ending_ && Clock::now() < end) step(nested_level(), end);
  check_stopping();
}

bool Turns::wait(BrowserMessage message) {
  // Not left in the inbox: the answer that everything waits for may lie behind.
  if (waiting_.size() >= most_waiting || waiting_bytes_ >= most_waiting_bytes) return false;
  waiting_bytes_ += size_of(message);
  waiting_.push_back(std::move(message));
  return true;
}

void Turns::forget_waiting() {
  waiting_.clear();
  waiting_bytes_ = 0;
}

void Turns::end(bool stopping) {
  ending_ = true;
  stopping_ = stopping_ || stopping;
}

bool Turns::step(Level level, Clock::time_point deadline) {
  if (const std::optional<BrowserMessage> message = take_waiting(level)) {
    handler_.handle(*message);
    ticked_last_ = false;
    return true;
  }
  if (level != Level::box) {
    if (!ticked_last_ && tick()) return ticked_last_ = true;
    if (deadline != at_once) deadline = std::min(deadline, forms_.next_tick(Clock::now()));
  }
  const std::optional<Incoming> item = inbox_.pop(ticked_last_ ? std::min(deadline, Clock::now()) : deadline);
  ticked_last_ = false;
  if (!item) return false;
  handler_.arrived(*item);
  return true;
}

bool Turns::tick() {
  const std::optional<FormStack::DueTimer> due = forms_.take_due(Clock::now());
  if (!due) return false;
  handler_.tick(*due->timer);
  due->shown->timers.ticked(*due->timer);
  return true;
}

// The first waiting message that may be handled now.
std::optional<BrowserMessage> Turns::take_waiting(Level level) {
  if (level == Level::box) return {};
  bool behind_open = false;
  for (auto it = waiting_.begin(); it != waiting_.end(); ++it) {
    const bool changes_page = it->type == Type::open || it->type == Type::captions;
    bool may = level == Level::top || !changes_page;
    if (may && behind_open) {
      // Meant for the page to come, unless it is for a dialog, which keeps that page from coming.
      const std::shared_ptr<ShownForm> shown = forms_.find(it->form);
      may = shown && shown->dialog;
    }
    if (may) {
      BrowserMessage message = std::move(*it);
      waiting_.erase(it);
      waiting_bytes_ -= size_of(message);
      return message;
    }
    behind_open = behind_open || it->type == Type::open;
  }
  return {};
}

Turns::Level Turns::nested_level() const {
  return depth_ < deepest ? Level::nested : Level::box;
}

void Turns::check_stopping() const {
  if (stopping_) throw Error(error_number::object_not_set, "the console is being stopped");
}

}  // namespace zrl::web
