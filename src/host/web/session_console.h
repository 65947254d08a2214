#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>

#include "catalogue/catalogue.h"
#include "core/contracts/host.h"
#include "host/web/current_console.h"
#include "host/web/file_exchange.h"
#include "host/web/form_stack.h"
#include "host/web/inbox.h"
#include "host/web/messages.h"
#include "host/web/offered_files.h"
#include "host/web/questions.h"
#include "host/web/reporter.h"
#include "host/web/session_output.h"
#include "host/web/terminals.h"
#include "host/web/turns.h"

namespace zrl::web {

// A tab's console with the page that it shows: the host of that console. It is driven by the
// inbox alone, and works on the thread that calls run(). It passes on what the browser asks for and owns
// those who do it: FormStack has the open forms, Turns decides when a message is handled, Questions asks
// before something is lost, FileExchange takes and gives files, CurrentConsole keeps the console in the
// language that is set, and Reporter sends the results.
class SessionConsole : public Host, private TurnHandler {
 public:
  // All but `identity` must outlive it.
  SessionConsole(const ConsoleSettings& settings, TabIdentity identity, TerminalPlaces& terminals,
                 Inbox& inbox, OfferedFiles& offered, SessionOutput& output);

  // Returns when the session has ended and its page has been terminated. Raises std::exception if the console
  // cannot be made.
  void run();

  BoxReply message_box(const MessageBox& box) override;
  bool allows_modeless() const override { return settings_.modeless_dialogs; }
  void show(Form& dialog) override;
  void process_events() override;
  void wait(std::chrono::milliseconds time) override;
  void start_program(const ProgramStart& program) override;
  void offer_file(const std::filesystem::path& path) override;
  void open_page(std::string_view page, std::string_view query) override;
  bool guards_newer_values() const override { return true; }
  void show_progress(const Progress& progress) override;

 private:
  void arrived(const Incoming& item) override;
  void handle(const BrowserMessage& message) override;
  void tick(Timer& timer) override;

  void greet(std::uint64_t connection);
  std::string_view shown_query() const;
  void accept(BrowserMessage message);
  void use_terminal(const BrowserMessage& message);
  void handle_event(const BrowserMessage& message);
  void act_on(const std::shared_ptr<ShownForm>& shown, Control& control, const BrowserMessage& message);
  // Ask first if the act destroys something, or replaces what somebody has typed.
  void click(const ShownForm& shown, Control& control);
  void choose(ShownForm& shown, Control& control, std::int64_t index);
  void look_for_changes();
  // Ends early when the session does, or when the form is gone.
  void remove_chosen(const std::shared_ptr<ShownForm>& shown, Control& control,
                     const BrowserMessage& message);
  void close_dialog(const BrowserMessage& message);
  // The browser signs out by itself, once the person agrees to leave what is unsaved.
  void ask_before_sign_out(const BrowserMessage& message);
  void change_page(const BrowserMessage& message);
  void choose_language(const BrowserMessage& message);
  // An event may have chosen another language: the page is shown anew in it.
  void follow_language(std::uint64_t steps_before);
  // A new console, in the language that is set now, if that is another one.
  void renew_console(std::string_view page);
  void leave_page();
  void show_page(const PageEntry& entry, const std::string& query);
  void take_upload(PendingUpload& upload);
  // Runs an action of a form and reports what it did. Passes on what it raises, for which the message is
  // refused.
  void run_action(const std::function<void()>& action);
  // An act on a control of the form, within an action: what its handlers read counts as saved if nothing
  // failed.
  void use(Form& form, const std::function<void()>& act);

  const ConsoleSettings& settings_;
  const TabIdentity identity_;
  SessionOutput& output_;

  CurrentConsole console_;  // outlives the forms
  FormStack forms_;
  Reporter reporter_;
  Terminals terminals_;
  // Called on the I/O thread: programs don't wait for an action to end.
  std::stop_callback<std::function<void()>> end_programs_;
  Turns turns_;
  Questions questions_;
  FileExchange files_;

  std::uint64_t last_seq_ = 0;
  int modal_depth_ = 0;
};

}  // namespace zrl::web
