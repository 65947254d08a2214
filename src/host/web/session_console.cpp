#include "host/web/session_console.h"

#include <algorithm>
#include <utility>

#include "core/input_hint.h"
#include "core/table.h"
#include "core/text/error.h"
#include "host/web/entry_removal.h"

namespace zrl::web {

namespace {

using std::chrono::milliseconds;
using Type = BrowserMessage::Type;
using Act = BrowserMessage::Act;

constexpr int max_modal_depth = 8;

Table& table_of(Control& control) {
  if (control.kind() != ControlKind::table) throw Refused(control.name() + " is no table");
  return static_cast<Table&>(control);
}

}  // namespace

SessionConsole::SessionConsole(const ConsoleSettings& settings, TabIdentity identity,
                               TerminalPlaces& terminals, Inbox& inbox, OfferedFiles& offered,
                               SessionOutput& output)
    : settings_(settings),
      identity_(std::move(identity)),
      output_(output),
      console_(settings, *this, reporter_, output),
      reporter_(output, forms_, settings.audit, identity_.account),
      terminals_(
          settings.folder, terminals,
          [&output](std::uint64_t connection, std::string message) {
            output.send(connection, std::move(message));
          },
          [this](std::string_view text) { reporter_.note("typed", text); }),
      end_programs_(inbox.ending(), [this] { terminals_.end_all(); }),
      turns_(inbox, forms_, output, *this),
      questions_(settings.folder, forms_, reporter_, turns_),
      files_(settings.folder, offered, forms_, reporter_) {}

void SessionConsole::run() {
  console_.start();
  turns_.run();
  leave_page();
  console_.end();
  settings_.lists->tidy();
}

BoxReply SessionConsole::message_box(const MessageBox& box) {
  return questions_.ask(box);
}

void SessionConsole::show(Form& dialog) {
  const auto& dialogs = console_->dialogs();
  const auto found = std::find_if(dialogs.begin(), dialogs.end(),
                                  [&](const std::shared_ptr<Form>& open) { return open.get() == &dialog; });
  if (found == dialogs.end()) throw Error(error_number::object_not_set, "the dialog is not open");
  if (turns_.ending() || modal_depth_ == max_modal_depth) {
    dialog.close();
    if (turns_.ending()) return;
    throw Error(error_number::cannot_create_object, "too many dialogs are open");
  }
  forms_.show_dialog(*found, !settings_.modeless_dialogs);
  reporter_.forms();
  if (settings_.modeless_dialogs) return;
  const Turns::Pause pause(turns_);
  ++modal_depth_;
  turns_.serve_until_closed(dialog);
  --modal_depth_;
  if (dialog.is_open()) dialog.run([&] { dialog.close(); });
  reporter_.closed_forms();
}

void SessionConsole::process_events() {
  turns_.serve_pending();
  reporter_.meanwhile();
}

void SessionConsole::wait(milliseconds time) {
  const auto end = Turns::Clock::now() + time;
  reporter_.forms();
  turns_.serve_until(end);
}

// The only way to a program: an account that may start none is to be refused here.
void SessionConsole::start_program(const ProgramStart& program) {
  terminals_.start(program);
}

void SessionConsole::offer_file(const std::filesystem::path& path) {
  files_.offer(path);
}

// The browser asks for the page as if its user had: what is shown stays until then.
void SessionConsole::open_page(std::string_view page, std::string_view query) {
  reporter_.send(go_message(page, query));
}

void SessionConsole::show_progress(const Progress& progress) {
  reporter_.progress(progress);
}

void SessionConsole::run_action(const std::function<void()>& action) {
  const Turns::Action running(turns_);
  try {
    action();
  } catch (const Refused&) {
    reporter_.action();
    throw;
  } catch (...) {
    console_->record_escaped(forms_.page_name());
  }
  reporter_.action();
}

void SessionConsole::use(Form& form, const std::function<void()>& act) {
  form.run_using([&] {
    const std::uint64_t failures = console_->activity().failures();
    act();
    return console_->activity().failures() == failures;
  });
}

void SessionConsole::tick(Timer& timer) {
  run_action([&timer] { timer.user_tick(); });
}

void SessionConsole::arrived(const Incoming& item) {
  switch (item.kind) {
    case Incoming::Kind::connected:
      greet(item.connection);
      return;
    case Incoming::Kind::ended:
    case Incoming::Kind::stopping:
      turns_.end(item.kind == Incoming::Kind::stopping);
      return;
    case Incoming::Kind::upload: {
      BrowserMessage message;
      message.type = Type::upload;
      message.form = item.upload->target.form;
      message.upload = item.upload;
      turns_.wait(std::move(message));  // answered when it is dropped
      return;
    }
    case Incoming::Kind::message:
      break;
  }
  if (item.connection != reporter_.connection()) return;
  auto parsed = parse_message(item.text);
  if (const auto* problem = std::get_if<Malformed>(&parsed)) {
    reporter_.malformed(*problem);
  } else {
    accept(std::move(std::get<BrowserMessage>(parsed)));
  }
}

std::string_view SessionConsole::shown_query() const {
  return forms_.page() == nullptr ? std::string_view() : forms_.page()->query();
}

// What the browser is owed on the connection before is forgotten.
void SessionConsole::greet(std::uint64_t connection) {
  reporter_.connected(connection);
  last_seq_ = 0;
  turns_.forget_waiting();
  reporter_.send(hello_message(*console_, identity_, settings_.pages, forms_.page_name(), shown_query()));
  reporter_.forms();
  questions_.tell_again();
  files_.tell_again();
  terminals_.connected(connection);
}

void SessionConsole::accept(BrowserMessage message) {
  if (message.is_by_person()) output_.person_acted();
  if (message.has_seq()) {
    if (message.seq <= last_seq_) {
      reporter_.malformed({"seq must count up", message.seq});
      return;
    }
    last_seq_ = message.seq;
  }
  switch (message.type) {
    case Type::answer:
      questions_.answer(message.id, message.reply);
      return;
    case Type::rows:
      reporter_.rows(message);
      return;
    case Type::cells:
      reporter_.cells(message);
      return;
    case Type::record:
      reporter_.record(message);
      return;
    case Type::find:
      reporter_.send(console_.entries().message(message.request, message.text, message.from));
      return;
    case Type::active:
      return;
    case Type::input:
    case Type::resize:
    case Type::taken:
    case Type::end:
      use_terminal(message);
      return;
    default: {
      const MessageNumber number{.seq = message.seq};
      const bool has_seq = message.has_seq();
      if (!turns_.wait(std::move(message)) && has_seq) {
        reporter_.refuse(number, "busy", "too much is waiting");
      }
    }
  }
}

void SessionConsole::use_terminal(const BrowserMessage& message) {
  switch (message.type) {
    case Type::input:
      if (!reporter_.permits_actions()) {
        reporter_.refuse({}, no_audit, why_no_audit);
      } else if (!terminals_.type(message.id, message.text)) {
        reporter_.refuse({}, "busy", "the program does not read");
      }
      break;
    case Type::resize:
      terminals_.resize(message.id, message.columns, message.lines);
      break;
    case Type::taken:
      terminals_.taken(message.id, message.position);
      break;
    default:
      terminals_.close(message.id);
      break;
  }
}

void SessionConsole::handle(const BrowserMessage& message) {
  switch (message.type) {
    case Type::event: {
      const std::uint64_t steps_before = console_->activity().total();
      handle_event(message);
      follow_language(steps_before);
      break;
    }
    case Type::close:
      close_dialog(message);
      break;
    case Type::leave:
      ask_before_sign_out(message);
      break;
    case Type::open:
      change_page(message);
      break;
    case Type::language:
      choose_language(message);
      break;
    case Type::captions:
      reporter_.send(console_.captions());
      break;
    case Type::upload:
      take_upload(*message.upload);
      break;
    case Type::look:
      look_for_changes();
      break;
    default:
      break;
  }
}

void SessionConsole::handle_event(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  reporter_.event_began(message.seq);
  const std::shared_ptr<ShownForm> shown = forms_.find(message.form);
  if (!shown) {
    reporter_.refuse(number, "no_form", message.form);
    return;
  }
  Control* control = shown->form->find(message.control);
  if (control == nullptr) {
    reporter_.refuse(number, "refused", "there is no " + message.control);
    return;
  }
  const auto refuse = [&](std::string_view code, std::string_view why) {
    shown->changes.tell_again(*control);
    reporter_.forms();
    reporter_.refuse(number, code, why);
  };
  if (forms_.is_covered(*shown)) {
    refuse("busy", "a dialog has to be answered before");
    return;
  }
  if (!reporter_.permits_actions()) {
    refuse(no_audit, why_no_audit);
    return;
  }
  if (message.act == Act::click && control->kind() == ControlKind::button && control->usable()) {
    // The page would put its complaint in the place of what the person typed.
    const Button::Taken& taken = static_cast<Button*>(control)->takes();
    const InputHint hint =
        taken.field == nullptr ? InputHint() : input_hint(*console_, taken.text, taken.field->text());
    if (!hint.text.empty()) {
      reporter_.forms();
      reporter_.unfit(message.seq, shown->id, taken.field->name(), hint.text);
      return;
    }
  }
  const std::uint64_t connection = reporter_.connection();
  try {
    run_action([&] { act_on(shown, *control, message); });
  } catch (const Refused& refused) {
    refuse("refused", refused.what());
    return;
  }
  output_.send(connection, done_message(message.seq));
}

void SessionConsole::choose_language(const BrowserMessage& message) {
  const std::uint64_t connection = reporter_.connection();
  const std::uint64_t steps_before = console_->activity().total();
  reporter_.event_began(message.seq);
  if (!reporter_.permits_actions()) {
    reporter_.refuse({.seq = message.seq}, no_audit, why_no_audit);
    return;
  }
  run_action([&] { console_->localisation().store_language(message.text); });
  output_.send(connection, done_message(message.seq));
  follow_language(steps_before);
}

// Only what is recorded can have changed a setting. While a dialog is open, a text is unsaved, or a handler
// around this one runs, the language stays as it is, until a page is opened.
void SessionConsole::follow_language(std::uint64_t steps_before) {
  if (!turns_.idle() || turns_.ending() || forms_.forms().size() != 1) return;
  if (console_->activity().total() == steps_before || !console_.speaks_otherwise()) return;
  const PageEntry* entry = find_page(settings_.pages, forms_.page_name());
  if (entry == nullptr || !forms_.page()->unsaved().empty()) return;
  const std::string query(forms_.page()->query());
  leave_page();
  renew_console(entry->name);
  show_page(*entry, query);
}

void SessionConsole::renew_console(std::string_view page) {
  if (!console_.renew()) return;
  reporter_.send(hello_message(*console_, identity_, settings_.pages, page, {}));
}

void SessionConsole::act_on(const std::shared_ptr<ShownForm>& shown, Control& control,
                            const BrowserMessage& message) {
  switch (message.act) {
    case Act::click:
      click(*shown, control);
      break;
    case Act::type:
      shown->changes.typed(control, message.text);
      // The handlers of combo boxes act on what is typed; those of most text fields only look at it.
      if (control.kind() == ControlKind::combo_box) {
        use(*shown->form, [&] { control.user_type(message.text); });
      } else {
        control.user_type(message.text);
      }
      break;
    case Act::choose:
      choose(*shown, control, message.number);
      break;
    case Act::scroll:
      control.user_scroll(message.number);
      break;
    case Act::remove:
      remove_chosen(shown, control, message);
      break;
    case Act::keys:
      table_of(control).user_choose_keys(message.keys);
      break;
    case Act::sort:
      table_of(control).user_sort(message.text);
      break;
    case Act::filter:
      table_of(control).user_filter(message.text);
      break;
    case Act::fetch:
      files_.fetch(*shown, control);
      break;
    case Act::reload:
      if (control.kind() != ControlKind::list_box) throw Refused(control.name() + " is no list");
      static_cast<ListBox&>(control).user_reload();
      break;
  }
}

void SessionConsole::click(const ShownForm& shown, Control& control) {
  if (!questions_.permits_click(shown, control)) return;
  use(*shown.form, [&] { control.user_click(); });
}

void SessionConsole::choose(ShownForm& shown, Control& control, std::int64_t index) {
  if (!questions_.permits_choice(shown, control)) {
    shown.changes.tell_again(control);  // the browser shows the choice already
    return;
  }
  control.user_choose(index);
}

// Nobody did anything, so there is nothing to report but what has changed.
void SessionConsole::look_for_changes() {
  if (forms_.page() == nullptr) return;
  try {
    forms_.page()->look_for_changes();
  } catch (...) {
    console_->record_escaped(forms_.page_name());
  }
  reporter_.forms();
}

void SessionConsole::remove_chosen(const std::shared_ptr<ShownForm>& shown, Control& control,
                                   const BrowserMessage& message) {
  if (control.kind() != ControlKind::list_box) throw Refused(control.name() + " is no list");
  auto& list = static_cast<ListBox&>(control);
  // What was chosen by its place may be another entry by now.
  if (list.revision(Property::items) != message.revision) {
    throw Refused(control.name() + " has changed meanwhile");
  }
  const StringList entries = entries_at(shown->filter, list, {message.text, message.order}, message.ranges);
  if (!questions_.permits_removal(*shown, list, entries.size())) return;
  remove_entries(list, entries, [&](std::size_t done) {
    reporter_.progress({{}, done, entries.size()});
    return questions_.is_still_shown(*shown);
  });
}

void SessionConsole::close_dialog(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  reporter_.event_began(message.seq);
  const std::shared_ptr<ShownForm> shown = forms_.find(message.form);
  if (!shown) {
    reporter_.refuse(number, "no_form", message.form);
  } else if (!shown->dialog) {
    reporter_.refuse(number, "refused", "a page is not closed");
  } else if (forms_.is_covered(*shown)) {
    reporter_.refuse(number, "busy", "a dialog has to be answered before");
  } else if (!reporter_.permits_actions()) {
    reporter_.refuse(number, no_audit, why_no_audit);
  } else {
    const std::uint64_t connection = reporter_.connection();
    run_action([&] {
      if (questions_.permits_leaving({&shown, 1})) shown->form->run([&] { shown->form->close(); });
    });
    output_.send(connection, done_message(message.seq));
  }
}

void SessionConsole::ask_before_sign_out(const BrowserMessage& message) {
  reporter_.event_began(message.seq);
  const std::uint64_t connection = reporter_.connection();
  bool leaves = false;
  run_action([&] { leaves = questions_.permits_leaving(std::vector(forms_.forms())); });
  // The browser may have connected anew while the person was asked.
  if (leaves) reporter_.send(leave_message());
  output_.send(connection, done_message(message.seq));
}

void SessionConsole::change_page(const BrowserMessage& message) {
  const MessageNumber number{.seq = message.seq};
  reporter_.event_began(message.seq);
  const PageEntry* entry = find_page(settings_.pages, message.page);
  if (entry == nullptr) {
    reporter_.refuse(number, "unknown_page", message.page);
    return;
  }
  const std::uint64_t connection = reporter_.connection();
  bool leaves = false;
  run_action([&] { leaves = questions_.permits_leaving(std::vector(forms_.forms())); });
  if (!leaves) {
    output_.send(connection, done_message(message.seq));
    return;
  }
  leave_page();
  renew_console(entry->name);
  show_page(*entry, message.query);
  output_.send(connection, forms_.page() != nullptr
                               ? done_message(message.seq)
                               : error_message(number, "refused", "the page cannot be made"));
}

void SessionConsole::leave_page() {
  if (forms_.page() == nullptr) return;
  run_action([this] {
    forms_.close_dialogs();
    forms_.page()->terminate();
  });
  reporter_.all_gone();
  settings_.lists->tidy();
}

void SessionConsole::show_page(const PageEntry& entry, const std::string& query) {
  reporter_.set_showing(true);
  run_action([&] {
    forms_.show_page(entry.make(*console_));
    forms_.page()->initialise();
    forms_.page()->show_query(query);
  });
  reporter_.set_showing(false);
}

void SessionConsole::take_upload(PendingUpload& upload) {
  const std::optional<FileExchange::Received> received = files_.receive(upload);
  if (!received) return;
  try {
    run_action([&] { files_.choose(*received); });
  } catch (const Refused&) {
    // Nothing but the folder being removed meanwhile leads here; the list shows what is there.
    reporter_.forms();
  }
}

}  // namespace zrl::web
