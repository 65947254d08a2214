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
  // The dialog becomes the topmost form. It is called by its own name, or "name#2" and so on where an open
  // form has that name.
  void show_dialog(std::shared_ptr<Form> dialog, bool modal);

  // Null while there is no page.
  Page* page() const { return page_.get(); }
  // Empty while there is no page.
  std::string_view page_name() const;
  const std::vector<std::shared_ptr<ShownForm>>& forms() const { return shown_; }
  // By what the browser calls it; null if there is no such form.
  std::shared_ptr<ShownForm> find(std::string_view id) const;
  // Whether a modal dialog above the form has to be answered before it can be used.
  bool is_covered(const ShownForm& shown) const;

  // When the next timer is due; Clock::time_point::max() if none is on.
  Clock::time_point next_tick(Clock::time_point now) const;
  // Of the lowest form that has one. It does not tick again until its form's timers are told that it has
  // ticked.
  std::optional<DueTimer> take_due(Clock::time_point now) const;

  // Takes dialogs that have been closed off the stack. They stay alive, because their handlers may still run,
  // until forget_closed(). Returns what the browser calls those that it knows.
  std::vector<std::string> drop_closed();
  // No handler runs any more.
  void forget_closed() { closed_.clear(); }

  // Closes the dialogs from the topmost down, each with its events.
  void close_dialogs();
  // Lets go of the page and the forms above it.
  void clear();

 private:
  std::shared_ptr<Page> page_;
  std::vector<std::shared_ptr<ShownForm>> shown_;
  std::vector<std::shared_ptr<ShownForm>> closed_;
};

}  // namespace zrl::web
