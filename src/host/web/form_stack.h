#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/page.h"
#include "host/web/shown_form.h"

namespace zrl::web {

// The forms that a session shows: its page and above it the dialogs, the topmost last. Belongs to the
// thread of their console, and must be emptied or destroyed before it. It shares the ownership of each form;
// the list may change whenever a handler runs.
class FormStack {
 public:
  using Clock = FormTimers::Clock;

  // A timer whose time has come, with the form that has it.
  struct DueTimer {
    std::shared_ptr<ShownForm> shown;
    Timer* timer;
  };

  // The page becomes the lowest form. Only an empty stack takes one.
  void show_page(std::shared_ptr<Page> page);
  // The dialog becomes the topmost form. Its id is its own name, or "name#2" and so on if an open form has
  // that name.
  void show_dialog(std::shared_ptr<Form> dialog, bool modal);

  // Null while there is no page.
  Page* page() const { return page_.get(); }
  // Empty while there is no page.
  std::string_view page_name() const;
  const std::vector<std::shared_ptr<ShownForm>>& forms() const { return shown_; }
  // The open form with this id; null if there is none.
  std::shared_ptr<ShownForm> find(std::string_view id) const;
  // Whether a modal dialog above the form has to be answered before it can be used.
  bool is_covered(const ShownForm& shown) const;

  // When the next timer is due; Clock::time_point::max() if none is on.
  Clock::time_point next_tick(Clock::time_point now) const;
  // A timer that is due, of the lowest form that has one. It does not tick again before FormTimers::ticked()
  // is called for it.
  std::optional<DueTimer> take_due(Clock::time_point now) const;

  // Takes closed dialogs off the stack. They stay alive until forget_closed(), because their handlers may
  // still run. Returns those that the browser knows.
  std::vector<std::shared_ptr<ShownForm>> drop_closed();
  // Releases the closed dialogs. To be called when no handler is running.
  void forget_closed() { closed_.clear(); }

  // Closes the dialogs from the topmost down, each with its events.
  void close_dialogs();
  // Releases the page and the forms above it, without events.
  void clear();

 private:
  std::shared_ptr<Page> page_;
  std::vector<std::shared_ptr<ShownForm>> shown_;
  std::vector<std::shared_ptr<ShownForm>> closed_;
};

}  // namespace zrl::web
