#include "host/web/session_console.h"

#include <algorithm>
#include <utility>

#include "core/contracts/registry.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::web {

namespace {

using std::chrono::milliseconds;

// Handlers within handlers; beyond that, events wait for one of them to end.
constexpr int max_depth = 16;
constexpr int max_modal_depth = 8;
constexpr milliseconds flush_interval{50};
constexpr milliseconds progress_interval{100};
constexpr std::uint64_t unaudited_entries = 1000;
constexpr auto at_once = std::chrono::steady_clock::time_point::min();
constexpr auto never = std::chrono::steady_clock::time_point::max();

}  // namespace

// While it lives, the thread waits for the browser and is not busy.
class SessionConsole::BusyPause {
 public:
  explicit BusyPause(SessionConsole& session) : session_(session), busy_(std::exchange(session.busy_, 0)) {
    if (busy_ > 0) session_.output_.action_ended();
  }
  BusyPause(const BusyPause&) = delete;
  BusyPause& operator=(const BusyPause&) = delete;
  ~BusyPause() {
    session_.busy_ = busy_;
    if (busy_ > 0) session_.output_.action_began();
  }

 private:
  SessionConsole& session_;
  int busy_;
};

SessionConsole::SessionConsole(const ConsoleSettings& settings, std::string account, Inbox& inbox,
                               OfferedFiles& offered, SessionOutput& output)
    : settings_(settings),
      account_(std::move(account)),
      inbox_(inbox),
      offered_(offered),
      output_(output),
      audit_log_(settings.folder / "audit.log", account_),
      terminals_(settings.folder, [&output](std::uint64_t connection, std::string message) {
        output.send(connection, std::move(message));
      }) {}

SessionConsole::~SessionConsole() = default;

void SessionConsole::run() {
  start_console();
  while (!ending_) step(Level::top, never);
  leave_page();
  console_.reset();
}

void SessionConsole::start_console() {
  console_ = std::make_unique<Console>(settings_.folder, *this);
  if (settings_.register_components) settings_.register_components(*console_);
  language_at_start_ = language_setting();
  reported_ = reported_failures_ = audited_ = 0;
  captions_.clear();
  const std::string language = console_->localisation().current_language();
  output_.language_is(language.empty() ? "english" : language);
}

bool SessionConsole::step(Level level, Clock::time_point deadline) {
  if (handle_waiting(level)) {
    ticked_last_ = false;
    return true;
  }
  if (level != Level::box) {
    // Ticks and messages take turns, so that neither keeps the other from being handled.
    if (!ticked_last_ && tick()) return ticked_last_ = true;
    if (deadline != at_once) deadline = std::min(deadline, next_tick());
  }
  std::optional<Incoming> item = inbox_.pop(ticked_last_ ? std::min(deadline, Clock::now()) : deadline);
  ticked_last_ = false;
  if (!item) return false;
  accept(*item);
  return true;
}

void SessionConsole::step_until(Level level, Clock::time_point deadline) {
  while (!ending_ && Clock::now() < deadline) step(level, deadline);
}

SessionConsole::Level SessionConsole::nested_level() const {
  return depth_ < max_depth ? Level::nested : Level::box;
}

bool SessionConsole::tick() {
  const Clock::time_point now = Clock::now();
  for (const std::shared_ptr<ShownForm>& form : shown_) {
    const std::shared_ptr<ShownForm> shown = form;  // the list may change
    Timer* timer = shown->timers.take_due(now);
    if (timer == nullptr) continue;
    run_action([timer] { timer->user_tick(); });
    shown->timers.ticked(*timer);
    return true;
  }
  return false;
}

SessionConsole::Clock::time_point SessionConsole::next_tick() {
  const Clock::time_point now = Clock::now();
  Clock::time_point next = never;
  for (const std::shared_ptr<ShownForm>& shown : shown_) next = std::min(next, shown->timers.next(now));
  return next;
}

BoxReply SessionConsole::message_box(const MessageBox& box) {
  const BoxReply unanswered = box.asks() ? BoxReply::cancel : BoxReply::ok;
  if (ending_) return unanswered;
  flush();
  const BusyPause pause(*this);
  box_ = OpenBox{++last_box_, &box, {}};
  send(box_message(box_->id, box));
  while (!box_->reply && !ending_) step(Level::box, never);
  const OpenBox answered = *std::exchange(box_, std::nullopt);
  send(unbox_message(answered.id));
  return answered.reply.value_or(unanswered);
}

void SessionConsole::show(Form& dialog) {
  const auto& dialogs = console_->dialogs();
  const auto found = std::find_if(dialogs.begin(), dialogs.end(),
                                  [&](const std::shared_ptr<Form>& open) { return open.get() == &dialog; });
  if (found == dialogs.end()) throw Error(error_number::object_not_set, "the dialog is not open");
  if (ending_ || modal_depth_ == max_modal_depth) {
    dialog.close();
    if (ending_) return;
    throw Error(error_number::cannot_create_object, "too many dialogs are open");
  }
  std::string id = dialog.name();
  for (int i = 2; find_form(id); ++i) id = dialog.name() + "#" + std::to_string(i);
  shown_.push_back(std::make_shared<ShownForm>(id, *found, true, !settings_.modeless_dialogs));
  flush();
  if (settings_.modeless_dialogs) return;
  const BusyPause pause(*this);
  ++modal_depth_;
  while (dialog.is_open() && !ending_) step(Level::nested, never);
  --modal_depth_;
  if (dialog.is_open()) dialog.run([&] { dialog.close(); });
  drop_closed_forms();
}

void SessionConsole::process_events() {
  for (std::size_t i = 0; i < Inbox::max_messages && step(nested_level(), at_once); ++i) {
    if (stopping_) break;
  }
  if (stopping_) throw Error(error_number::object_not_set, "the console is being stopped");
  if (Clock::now() - flushed_ >= flush_interval) flush();
  if (console_->activity().total() - audited_ > unaudited_entries) audit();
}

void SessionConsole::wait(milliseconds time) {
  const Clock::time_point end = Clock::now() + time;
  flush();
  step_until(nested_level(), end);
  if (stopping_) throw Error(error_number::object_not_set, "the console is being stopped");
}

void SessionConsole::show_progress(const Progress& progress) {
  const Clock::time_point now = Clock::now();
  if (progress.done != progress.total && now - progressed_ < progress_interval) return;
  progressed_ = now;
  output_.progress(std::string(progress.text), progress.done, progress.total);
}

void SessionConsole::run_action(const std::function<void()>& action) {
  ++depth_;
  if (busy_++ == 0) output_.action_began();
  try {
    action();
  } catch (const Refused&) {
    report();
    throw;
  } catch (...) {
    console_->record_escaped(page_name());
  }
  report();
}

void SessionConsole::report() {
  flush();
  const ActivityRecord& record = console_->activity();
  if (record.total() > reported_) {
    send(activity_message(record, reported_, record.failures() - reported_failures_, page_name(), showing_));
    reported_ = record.total();
    reported_failures_ = record.failures();
  }
  audit();
  const bool was_busy = busy_ > 0;
  if (was_busy) --busy_;
  if (was_busy && busy_ == 0) output_.action_ended();
  if (--depth_ == 0) closed_.clear();
}

void SessionConsole::audit() {
  audited_ = audit_log_.append(console_->activity(), audited_, page_name());
}

void SessionConsole::flush() {
  flushed_ = Clock::now();
  drop_closed_forms();
  for (const std::shared_ptr<ShownForm>& shown : shown_) {
    if (!shown->announced) {
      send(form_message(*shown, caption_of(*shown)));
    } else if (auto message = change_message(*shown, newest_handled_, caption_of(*shown))) {
      send(std::move(*message));
    }
  }
}

void SessionConsole::drop_closed_forms() {
  for (std::size_t i = 0; i < shown_.size();) {
    const std::shared_ptr<ShownForm> shown = shown_[i];
    if (!shown->dialog || shown->form->is_open()) {
      ++i;
      continue;
    }
    shown_.erase(shown_.begin() + static_cast<std::ptrdiff_t>(i));
    closed_.push_back(shown);
    if (shown->announced) send(closed_message(shown->id));
  }
  (void)console_->dialogs();  // drops its own hold on them
}

std::string SessionConsole::language_setting() {
  if (!console_->components().has(Registry::program_id)) return {};
  return lower(trim(console_->settings().regread(console_->settings().language_path())));
}

const std::string& SessionConsole::caption_of(ShownForm& shown) {
  if (shown.own_caption != shown.form->caption()) {
    shown.own_caption = shown.form->caption();
    shown.caption = console_->localisation().translate(shown.own_caption);
  }
  return shown.caption;
}

std::string_view SessionConsole::page_name() const {
  return page_ ? std::string_view(page_->name()) : std::string_view();
}

}  // namespace zrl::web
