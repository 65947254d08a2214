#include "host/web/inbox.h"

namespace zrl::web {

bool Inbox::push(Incoming item) {
  bool room = true;
  const bool ends = item.kind == Incoming::Kind::ended || item.kind == Incoming::Kind::stopping;
  {
    const std::scoped_lock lock(mutex_);
    bytes_ += item.text.size();
    items_.push_back(std::move(item));
    full_ = full_ || items_.size() >= max_messages || bytes_ >= max_bytes;
    room = !full_;
  }
  arrived_.notify_one();
  if (ends) ending_.request_stop();
  return room;
}

std::optional<Incoming> Inbox::pop(Clock::time_point deadline) {
  std::optional<Incoming> item;
  bool room_again = false;
  {
    std::unique_lock lock(mutex_);
    const auto is_there = [this] { return !items_.empty(); };
    if (deadline == Clock::time_point::max()) {
      arrived_.wait(lock, is_there);
    } else if (items_.empty() &&
               (deadline <= Clock::now() || !arrived_.wait_until(lock, deadline, is_there))) {
      return item;
    }
    item = std::move(items_.front());
    items_.pop_front();
    bytes_ -= item->text.size();
    room_again = full_ && items_.size() < max_messages / 2 && bytes_ < max_bytes / 2;
    if (room_again) full_ = false;
  }
  if (room_again) on_room_();
  return item;
}

}  // namespace zrl::web
