#include "host/web/reporter.h"

#include <algorithm>

#include "host/web/cells_message.h"

namespace zrl::web {

namespace {

using std::chrono::milliseconds;

constexpr int forgiven_violations = 20;
constexpr milliseconds forms_interval{50};
constexpr milliseconds progress_interval{100};
constexpr std::uint64_t unaudited_entries = 1000;

}  // namespace

Reporter::Reporter(SessionOutput& output, FormStack& forms, std::shared_ptr<AuditFile> audit_file,
                   const std::string& account)
    : output_(output), forms_(forms), audit_log_(std::move(audit_file), account) {}

void Reporter::watch(Console& console) {
  console_ = &console;
  reported_ = {};
  audited_ = 0;
}

void Reporter::connected(std::uint64_t connection) {
  connection_ = connection;
  newest_event_ = 0;
  malformed_ = 0;
  for (const std::shared_ptr<ShownForm>& shown : forms_.forms()) shown->announced = false;
}

void Reporter::event_began(std::uint64_t seq) {
  newest_event_ = std::max(newest_event_, seq);
}

void Reporter::refuse(const MessageNumber& number, std::string_view code, std::string_view text) {
  send(error_message(number, code, text));
}

void Reporter::malformed(const Malformed& problem) {
  refuse({.seq = problem.seq}, "malformed", problem.why);
  if (++malformed_ == forgiven_violations) output_.violated(connection_);
}

void Reporter::forms() {
  forms_sent_ = Clock::now();
  closed_forms();
  for (const std::shared_ptr<ShownForm>& shown : forms_.forms()) {
    if (!shown->announced) {
      send(form_message(*shown, caption_of(*shown)));
    } else if (auto message = change_message(*shown, newest_event_, caption_of(*shown))) {
      send(std::move(*message));
    }
  }
}

void Reporter::closed_forms() {
  for (const std::shared_ptr<ShownForm>& shown : forms_.drop_closed()) send(closed_message(*shown));
  (void)console_->dialogs();  // drops its own hold on them
}

void Reporter::all_gone() {
  for (const std::shared_ptr<ShownForm>& shown : forms_.forms()) send(closed_message(*shown));
  forms_.clear();
}

void Reporter::rows(const BrowserMessage& asked) {
  const MessageNumber number{.request = asked.request};
  const std::shared_ptr<ShownForm> shown = forms_.find(asked.form);
  if (!shown) {
    refuse(number, "no_form", asked.form);
    return;
  }
  const Control* control = shown->form->find(asked.control);
  if (control == nullptr || !control->has(Property::items)) {
    refuse(number, "refused", "no such list: " + asked.control);
    return;
  }
  const auto& list = static_cast<const ItemsControl&>(*control);
  std::optional<Sought> sought;
  if (asked.sought) sought = Sought{asked.sought};
  if (asked.sought_text) sought = Sought{row_with(list.items(), *asked.sought_text)};
  send(rows_message(*shown, list, asked.request, {asked.start, asked.count}, {asked.text, asked.order},
                    sought));
}

void Reporter::cells(const BrowserMessage& asked) {
  const MessageNumber number{.request = asked.request};
  const std::shared_ptr<ShownForm> shown = forms_.find(asked.form);
  if (!shown) {
    refuse(number, "no_form", asked.form);
    return;
  }
  Control* control = shown->form->find(asked.control);
  if (control == nullptr || control->kind() != ControlKind::table) {
    refuse(number, "refused", "no such table: " + asked.control);
    return;
  }
  const Revision before = shown->form->revision();
  send(cells_message(shown->id, static_cast<Table&>(*control), asked.request, {asked.start, asked.count},
                     asked.sought_text));
  // Reading may find that rows have moved.
  if (shown->form->revision() != before) forms();
}

void Reporter::record(const BrowserMessage& asked) {
  send(record_message(console_->activity(), asked.request, {asked.start, asked.count}));
}

void Reporter::action() {
  forms();
  const ActivityRecord& record = console_->activity();
  if (record.total() > reported_.entries || record.total_said() > reported_.said) {
    send(activity_message(record, reported_, forms_.page_name(), showing_));
    reported_ = {record.total(), record.failures(), record.total_said()};
  }
  audit();
}

void Reporter::meanwhile() {
  if (Clock::now() - forms_sent_ >= forms_interval) forms();
  if (console_->activity().total() - audited_ > unaudited_entries) audit();
}

void Reporter::progress(const Progress& progress) {
  const Clock::time_point now = Clock::now();
  if (progress.done != progress.total && now - progressed_ < progress_interval) return;
  progressed_ = now;
  output_.progress(std::string(progress.text), progress.done, progress.total);
}

void Reporter::note(std::string_view kind, std::string_view text, std::string_view error) {
  audit_log_.note(forms_.page_name(), kind, text, error);
  tell_lost();
}

void Reporter::audit() {
  audited_ = audit_log_.append(console_->activity(), audited_, forms_.page_name());
  tell_lost();
}

void Reporter::tell_lost() {
  if (audit_log_.take_lost()) refuse({}, "not_recorded", "the audit log cannot be written");
}

const std::string& Reporter::caption_of(ShownForm& shown) {
  if (shown.own_caption != shown.form->caption()) {
    shown.own_caption = shown.form->caption();
    shown.caption = console_->localisation().translate(shown.own_caption);
  }
  return shown.caption;
}

}  // namespace zrl::web
