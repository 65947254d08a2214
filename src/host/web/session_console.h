#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>

#include "catalogue/catalogue.h"
#include "core/console.h"
#include "core/contracts/host.h"
#include "host/web/entry_finder.h"
#include "host/web/form_stack.h"
#include "host/web/inbox.h"
#include "host/web/messages.h"
#include "host/web/offered_files.h"
#include "host/web/reporter.h"
#include "host/web/session_output.h"
#include "host/web/terminals.h"
#include "host/web/turns.h"
#include "host/web/uploads.h"

namespace zrl::web {

// What the consoles of all sessions have in common. Used by several threads at once.
struct ConsoleSettings {
  std::filesystem::path folder;
  std::span<const PageEntry> pages;
  std::function<void(Console&)> register_components;
  std::shared_ptr<AuditFile> audit;
  // Whether dialogs stay open beside their page while its handler goes on.
  bool modeless_dialogs = false;
  // Of all consoles.
  std::shared_ptr<ListPool> lists = std::make_shared<ListPool>();
};

// A tab's console with the page that it shows: the host of that console. It is driven by the
// inbox alone, and works on the thread that calls run(). FormStack has the open forms, Turns decides when a
// message is handled, and Reporter sends the results.
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
  struct OpenBox {
    std::uint64_t id;
    const MessageBox* box;
    std::optional<BoxReply> reply;
  };

  void arrived(const Incoming& item) override;
  void handle(const BrowserMessage& message) override;
  void tick(Timer& timer) override;

  void start_console();
  void greet(std::uint64_t connection);
  std::string_view shown_query() const;
  void accept(BrowserMessage message);
  void use_terminal(const BrowserMessage& message);
  void handle_event(const BrowserMessage& message);
  void act_on(const std::shared_ptr<ShownForm>& shown, Control& control, const BrowserMessage& message);
  // Ask first if the act destroys something, or replaces what somebody has typed.
  void click(const ShownForm& shown, Control& control);
  void choose(ShownForm& shown, Control& control, std::int64_t index);
  // Whether the person agrees to lose what stands unsaved in the fields, or nothing does.
  bool agrees_to_lose(const ShownForm& shown, std::span<const Control* const> fields);
  bool agrees_to_leave(std::span<const std::shared_ptr<ShownForm>> left);
  void look_for_changes();
  // True if the person agrees, or if there is nothing to ask. False also if the form is gone by then.
  bool agreed(const ShownForm& shown, const std::optional<MessageBox>& question);
  bool is_still_shown(const ShownForm& shown);
  // Has the form write the file to a place of its own, and offers it to the user.
  void fetch(const ShownForm& shown, Control& control);
  // Ends early when the session does, or when the form is gone.
  void remove_chosen(const std::shared_ptr<ShownForm>& shown, Control& control,
                     const BrowserMessage& message);
  void close_dialog(const BrowserMessage& message);
  void change_page(const BrowserMessage& message);
  void choose_language(const BrowserMessage& message);
  // An event may have chosen another language: the page is shown anew in it.
  void follow_language(std::uint64_t steps_before);
  // A new console, in the language that is set now, if that is another one.
  void renew_console(std::string_view page);
  void leave_page();
  void show_page(const PageEntry& entry, const std::string& query);
  void handle_upload(PendingUpload& upload);
  void take_upload(PendingUpload& upload, FileList& list);
  // Runs an action of a form and reports what it did. Passes on what it raises, for which the message is
  // refused.
  void run_action(const std::function<void()>& action);
  // An act on a control of the form, within an action: what its handlers read counts as saved if nothing
  // failed.
  void use(Form& form, const std::function<void()>& act);

  const ConsoleSettings& settings_;
  const TabIdentity identity_;
  OfferedFiles& offered_;
  SessionOutput& output_;

  std::unique_ptr<Console> console_;
  std::unique_ptr<EntryFinder> entries_;
  FormStack forms_;
  Reporter reporter_;
  Terminals terminals_;
  // Called on the I/O thread: programs don't wait for an action to end.
  std::stop_callback<std::function<void()>> end_programs_;
  Turns turns_;

  std::string language_at_start_;
  std::string captions_;
  std::optional<OpenBox> box_;
  std::shared_ptr<const LeavingFile> leaving_;  // what fetch() is having written
  std::uint64_t last_box_ = 0;
  std::uint64_t last_seq_ = 0;
  int modal_depth_ = 0;
};

}  // namespace zrl::web
