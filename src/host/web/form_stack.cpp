#include "host/web/form_stack.h"

#include <algorithm>
#include <utility>

namespace zrl::web {

void FormStack::show_page(std::shared_ptr<Page> page) {
  page_ = std::move(page);
  shown_.push_back(std::make_shared<ShownForm>(page_->name(), page_, false, false));
}

void FormStack::show_dialog(std::shared_ptr<Form> dialog, bool modal) {
  std::string id = dialog->name();
  for (int i = 2; find(id); ++i) id = dialog->name() + "#" + std::to_string(i);
  shown_.push_back(std::make_shared<ShownForm>(std::move(id), std::move(dialog), true, modal));
}

std::string_view FormStack::page_name() const {
  return page_ ? std::string_view(page_->name()) : std::string_view();
}

std::shared_ptr<ShownForm> FormStack::find(std::string_view id) const {
  for (const std::shared_ptr<ShownForm>& shown : shown_) {
    if (shown->id == id) return shown;
  }
  return nullptr;
}

bool FormStack::is_covered(const ShownForm& shown) const {
  bool covered = false;
  for (const std::shared_ptr<ShownForm>& other : shown_) {
    if (other.get() == &shown) {
      covered = false;
    } else if (other->modal) {
      covered = true;
    }
  }
  return covered;
}

FormStack::Clock::time_point FormStack::next_tick(Clock::time_point now) const {
  Clock::time_point next = Clock::time_point::max();
  for (const std::shared_ptr<ShownForm>& shown : shown_) next = std::min(next, shown->timers.next(now));
  return next;
}

std::optional<FormStack::DueTimer> FormStack::take_due(Clock::time_point now) const {
  for (const std::shared_ptr<ShownForm>& shown : shown_) {
    if (Timer* timer = shown->timers.take_due(now)) return DueTimer{shown, timer};
  }
  return {};
}

std::vector<std::shared_ptr<ShownForm>> FormStack::drop_closed() {
  std::vector<std::shared_ptr<ShownForm>> dropped;
  for (std::size_t i = 0; i < shown_.size();) {
    const std::shared_ptr<ShownForm> shown = shown_[i];
    if (!shown->dialog || shown->form->is_open()) {
      ++i;
      continue;
    }
    shown_.erase(shown_.begin() + static_cast<std::ptrdiff_t>(i));
    closed_.push_back(shown);
    if (shown->announced) dropped.push_back(shown);
  }
  return dropped;
}

void FormStack::close_dialogs() {
  // A closing dialog may take others along.
  for (std::size_t i = shown_.size(); i > 0; i = std::min(i - 1, shown_.size())) {
    const std::shared_ptr<ShownForm> shown = shown_[i - 1];
    if (shown->dialog) shown->form->run([&] { shown->form->close(); });
  }
}

void FormStack::clear() {
  shown_.clear();
  page_.reset();
}

}  // namespace zrl::web
