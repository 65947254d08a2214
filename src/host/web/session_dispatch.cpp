#include <algorithm>

#include "host/web/session_console.h"
#include "host/web/uploads.h"

// What the browser's messages do.
namespace zrl::web {

namespace {

using Type = BrowserMessage::Type;
using Act = BrowserMessage::Act;

constexpr int forgiven_violations = 20;
constexpr std::size_t max_waiting_bytes = Inbox::max_bytes;

std::size_t size_of(const BrowserMessage& message) {
  return sizeof message + message.text.size();
}

}  // namespace

void SessionConsole::accept(const Incoming& item) {
  switch (item.kind) {
    case Incoming::Kind::connected:
      greet(item.connection);
      return;
    case Incoming::Kind::stopping:
      stopping_ = true;
      [[fallthrough]];
    case Incoming::Kind::ended:
      ending_ = true;
      return;
    case Incoming::Kind::upload: {
      BrowserMessage message;
      message.type = Type::upload;
      message.form = item.upload->target.form;
      message.upload = item.upload;
      wait_for_turn(std::move(message));
      return;
    }
    case Incoming::Kind::message:
      break;
  }
  if (item.connection != connection_) return;
  auto parsed = parse_message(item.text);
  if (const auto* problem = std::get_if<Malformed>(&parsed)) {
    malformed(*problem);
  } else {
    accept_message(std::move(std::get<BrowserMessage>(parsed)));
  }
}

// A browser that connects knows nothing: what it is owed on the connection before is forgotten.
void SessionConsole::greet(std::uint64_t connection) {
  connection_ = connection;
  last_seq_ = newest_handled_ = 0;
  malformed_ = 0;
  waiting_.clear();
  waiting_bytes_ = 0;
  send(hello_message(*console_, account_, settings_.pages, page_name()));
  for (const std::shared_ptr<ShownForm>& shown : shown_) shown->announced = false;
  flush();
  if (box_) send(box_message(box_->id, *box_->box));
  send(files_message(offered_.unfetched()));
  terminals_.connected(connection);
}

void SessionConsole::malformed(const Malformed& problem) {
  refuse({.seq = problem.seq}, "malformed", problem.why);
  if (++malformed_ == forgiven_violations) output_.violated(connection_);
}

void SessionConsole::accept_message(BrowserMessage message) {
  if (message.has_seq()) {
    if (message.seq <= last_seq_) {
      malformed({"seq must count up", message.seq});
      return;
    }
    last_seq_ = message.seq;
  }
  switch (message.type) {
    case Type::answer:
      answer(message);
      return;
    case Type::rows:
      send_rows(message);
      return;
    case Type::record:
      send_record(message);
      return;
    case Type::input:
    case Type::resize:
    case Type::taken:
    case Type::end:
      use_terminal(message);
      return;
    default:
      wait_for_turn(std::move(message));
  }
}

void SessionConsole::wait_for_turn(BrowserMessage message) {
  // Not left in the inbox: the answer that everything waits for may lie behind.
  if (waiting_.size() >= Inbox::max_messages || waiting_bytes_ >= max_waiting_bytes) {
    // An upload is answered when it is dropped.
    if (message.has_seq()) refuse({.seq = message.seq}, "busy", "too much is waiting");
    return;
  }
  waiting_bytes_ += size_of(message);
  waiting_.push_back(std::move(message));
}

void SessionConsole::answer(const BrowserMessage& message) {
  if (!box_ || box_->id != message.id) return;  // answered by another tab
  box_->reply = message.ok ? BoxReply::ok : BoxReply::cancel;
}

void SessionConsole::send_rows(const BrowserMessage& message) {
  const MessageNumber number{.request = message.request};
  const std::shared_ptr<ShownForm> shown = find_form(message.form);
  if (!shown) {
    refuse(number, "no_form", message.form);
    return;
  }
  const Control* control = shown->form->find(message.control);
  if (control == nullptr || !control->has(Property::items)) {
    refuse(number, "refused", "no such list: " + message.control);
    return;
  }
  send(rows_message(*shown, static_cast<const ItemsControl&>(*control), message.request,
                    {message.start, message.count}, message.text));
}

void SessionConsole::send_record(const BrowserMessage& message) {
  send(record_message(console_->activity(), message.request, {message.start, message.count}));
}

// Handles the first waiting message that may be handled now.
bool SessionConsole::handle_waiting(Level level) {
  if (level == Level::box) return false;
  bool behind_open = false;
  for (auto it = waiting_.begin(); it != waiting_.end(); ++it) {
    const bool changes_page = it->type == Type::open || it->type == Type::captions;
    bool may = level == Level::top || !changes_page;
    if (may && behind_open) {
      // Meant for the page to come, unless it is for a dialog, which keeps that page from coming.
      const std::shared_ptr<ShownForm> shown = find_form(it->form);
      may = shown && shown->dialog;
    }
    if (may) {
      const BrowserMessage message = std::move(*it);
      waiting_.erase(it);
      waiting_bytes_ -= size_of(message);
      handle(message);
      return true;
    }
    behind_open = behind_open || it->type == Type::open;
  }
  return false;
}

void SessionConsole::handle(const BrowserMessage& message) {
  switch (message.type) {
    case Type::event:
      handle_event(message);
      break;
    case Type::close:
      close_dialog(message);
      break;
    case Type::open:
      open_page(message);
      break;
    case Type::captions:
      if (captions_.empty()) captions_ = captions_message(*console_, settings_.pages);
      send(captions_);
      break;
    case Type::upload:
      handle_upload(*message.upload);
      break;
    default:
      break;
  }
}

void SessionConsole::handle_event(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  newest_handled_ = std::max(newest_handled_, message.seq);
  const std::shared_ptr<ShownForm> shown = find_form(message.form);
  if (!shown) {
    refuse(number, "no_form", message.form);
    return;
  }
  Control* control = shown->form->find(message.control);
  if (control == nullptr) {
    refuse(number, "refused", "there is no " + message.control);
    return;
  }
  if (is_covered(*shown)) {
    shown->changes.tell_again(*control);
    flush();
    refuse(number, "busy", "a dialog has to be answered before");
    return;
  }
  const std::uint64_t connection = connection_;
  try {
    run_action([&] { act_on(*shown, *control, message); });
  } catch (const Refused& refused) {
    shown->changes.tell_again(*control);
    flush();
    refuse(number, "refused", refused.what());
    return;
  }
  output_.send(connection, done_message(message.seq));
}

void SessionConsole::act_on(ShownForm& shown, Control& control, const BrowserMessage& message) {
  switch (message.act) {
    case Act::click:
      control.user_click();
      break;
    case Act::type:
      shown.changes.typed(control, message.text);
      control.user_type(message.text);
      break;
    case Act::choose:
      control.user_choose(message.number);
      break;
    case Act::scroll:
      control.user_scroll(message.number);
      break;
  }
}

void SessionConsole::close_dialog(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  newest_handled_ = std::max(newest_handled_, message.seq);
  const std::shared_ptr<ShownForm> shown = find_form(message.form);
  if (!shown) {
    refuse(number, "no_form", message.form);
  } else if (!shown->dialog) {
    refuse(number, "refused", "a page is not closed");
  } else if (is_covered(*shown)) {
    refuse(number, "busy", "a dialog has to be answered before");
  } else {
    const std::uint64_t connection = connection_;
    run_action([&] { shown->form->run([&] { shown->form->close(); }); });
    output_.send(connection, done_message(message.seq));
  }
}

void SessionConsole::open_page(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  newest_handled_ = std::max(newest_handled_, message.seq);
  const PageEntry* entry = find_page(settings_.pages, message.page);
  if (entry == nullptr) {
    refuse(number, "unknown_page", message.page);
    return;
  }
  const std::uint64_t connection = connection_;
  leave_page();
  if (language_setting() != language_at_start_) {
    console_.reset();
    start_console();
    send(hello_message(*console_, account_, settings_.pages, entry->name));
  }
  show_page(*entry);
  output_.send(connection, page_ ? done_message(message.seq)
                                 : error_message(number, "refused", "the page cannot be made"));
}

void SessionConsole::leave_page() {
  if (!page_) return;
  run_action([this] {
    for (std::size_t i = shown_.size(); i-- > 0;) {
      const std::shared_ptr<ShownForm> shown = shown_[i];
      if (shown->dialog) shown->form->run([&] { shown->form->close(); });
    }
    page_->terminate();
  });
  for (const std::shared_ptr<ShownForm>& shown : shown_) send(closed_message(shown->id));
  shown_.clear();
  page_.reset();
}

void SessionConsole::show_page(const PageEntry& entry) {
  showing_ = true;
  run_action([&] {
    page_ = entry.make(*console_);
    shown_.push_back(std::make_shared<ShownForm>(page_->name(), page_, false, false));
    page_->initialise();
  });
  showing_ = false;
}

void SessionConsole::refuse(const MessageNumber& number, std::string_view code, std::string_view text) {
  send(error_message(number, code, text));
}

std::shared_ptr<ShownForm> SessionConsole::find_form(std::string_view id) const {
  for (const std::shared_ptr<ShownForm>& shown : shown_) {
    if (shown->id == id) return shown;
  }
  return nullptr;
}

bool SessionConsole::is_covered(const ShownForm& shown) const {
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

}  // namespace zrl::web
