#include "host/web/shown_form.h"

#include <algorithm>

namespace zrl::web {

FormTimers::FormTimers(const Form& form) {
  for (Control* control : form.controls()) {
    if (control->kind() == ControlKind::timer)
      states_.push_back({static_cast<Timer*>(control), 0, {}, false});
  }
}

FormTimers::Clock::time_point FormTimers::next(Clock::time_point now) {
  Clock::time_point first = Clock::time_point::max();
  for (State& state : states_) {
    const std::int64_t interval = state.timer->usable() ? state.timer->interval() : 0;
    if (interval != state.interval) {
      state.interval = interval;
      state.due = now + std::chrono::milliseconds(interval);
    }
    if (interval > 0 && !state.ticking) first = std::min(first, state.due);
  }
  return first;
}

Timer* FormTimers::take_due(Clock::time_point now) {
  if (next(now) > now) return nullptr;
  State* oldest = nullptr;
  for (State& state : states_) {
    if (state.interval == 0 || state.ticking || state.due > now) continue;
    if (oldest == nullptr || state.due < oldest->due) oldest = &state;
  }
  if (oldest == nullptr) return nullptr;
  oldest->ticking = true;
  return oldest->timer;
}

void FormTimers::ticked(const Timer& timer) {
  for (State& state : states_) {
    if (state.timer != &timer) continue;
    state.ticking = false;
    state.due = Clock::now() + std::chrono::milliseconds(state.interval);
  }
}

}  // namespace zrl::web
