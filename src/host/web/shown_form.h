#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/controls.h"
#include "core/form.h"
#include "host/web/change_collector.h"
#include "host/web/list_filter.h"

namespace zrl::web {

// The timers of a form, on the thread of its console. A timer does not tick while its own handler
// runs, and starts anew when the form switches it on or changes its interval.
class FormTimers {
 public:
  using Clock = std::chrono::steady_clock;

  explicit FormTimers(const Form& form);

  // When the next one is due; Clock::time_point::max() if none is on.
  Clock::time_point next(Clock::time_point now);
  // The one that has been due for longest, or null. It counts as ticking until ticked().
  Timer* take_due(Clock::time_point now);
  void ticked(const Timer& timer);

 private:
  struct State {
    Timer* timer;
    std::int64_t interval;  // 0 while it is off
    Clock::time_point due;
    bool ticking;
  };

  std::vector<State> states_;
};

// A form that the browser sees.
struct ShownForm {
  // Keeps a dialog alive; a page is kept by its session.
  ShownForm(std::string form_id, std::shared_ptr<Form> shown, bool is_dialog, bool is_modal)
      : id(std::move(form_id)), form(std::move(shown)), dialog(is_dialog), modal(is_modal) {}

  std::string id;  // the form's name in messages
  std::shared_ptr<Form> form;
  bool dialog;
  bool modal;
  std::string own_caption = {};  // the form's caption when it was last looked at
  std::string caption = {};      // its translation
  bool announced = false;        // the browser has been sent the whole form
  ChangeCollector changes{*form};
  ListFilter filter;
  FormTimers timers{*form};
};

}  // namespace zrl::web
