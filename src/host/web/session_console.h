#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/console.h"
#include "core/contracts/host.h"
#include "core/page.h"
#include "host/web/audit.h"
#include "host/web/inbox.h"
#include "host/web/messages.h"
#include "host/web/offered_files.h"
#include "host/web/outgoing.h"
#include "host/web/shown_form.h"
#include "host/web/terminals.h"

namespace zrl::web {

// What the consoles of all sessions have in common. Used by several threads at once.
struct ConsoleSettings {
  std::filesystem::path folder;
  std::span<const PageEntry> pages;
  std::function<void(Console&)> register_components;
  // Whether dialogs stay open beside their page while its handler goes on.
  bool modeless_dialogs = false;
};

// Where a session's thread sends what concerns the browser. None of the calls waits.
class SessionOutput {
 public:
  virtual ~SessionOutput() = default;

  // Dropped if the browser's connection is another one by now.
  virtual void send(std::uint64_t connection, std::string message) = 0;
  // The browser broke the rules too often.
  virtual void violated(std::uint64_t connection) = 0;
  // The thread is working from here on, and waits again for the browser.
  virtual void action_began() = 0;
  virtual void action_ended() = 0;
  virtual void progress(std::string text, std::uint64_t done, std::uint64_t total) = 0;
  virtual void language_is(std::string language) = 0;
};

// A signed-in session's console with the page that it shows: the host of that console, and the
// event loop of the thread that calls run(). It takes its orders from the inbox alone.
//
// A handler may wait for the browser: in a message box, in a modal dialog, in process_events() and
// in wait(). Then a loop runs within the handler. It handles the events that may be handled at
// that moment; the others keep their order and wait, as do all changes of page.
class SessionConsole : public Host {
 public:
  // `inbox`, `offered` and `output` must outlive it.
  SessionConsole(const ConsoleSettings& settings, std::string account, Inbox& inbox, OfferedFiles& offered,
                 SessionOutput& output);
  ~SessionConsole() override;

  // Returns when the session has ended and its page has been terminated. Raises what keeps a
  // console from being made.
  void run();

  BoxReply message_box(const MessageBox& box) override;
  bool allows_modeless() const override { return settings_.modeless_dialogs; }
  void show(Form& dialog) override;
  void process_events() override;
  void wait(std::chrono::milliseconds time) override;
  void start_program(const ProgramStart& program) override;
  void offer_file(const std::filesystem::path& path) override;
  void show_progress(const Progress& progress) override;

 private:
  using Clock = std::chrono::steady_clock;

  // What may be handled: at the top everything, within a handler the events of forms that no
  // modal dialog covers, and while a box is open nothing.
  enum class Level : std::uint8_t { top, nested, box };

  struct OpenBox {
    std::uint64_t id;
    const MessageBox* box;
    std::optional<BoxReply> reply;
  };

  class BusyPause;

  void start_console();
  void step_until(Level level, Clock::time_point deadline);
  // Does the next thing, waiting for it until the deadline. False if there was none.
  bool step(Level level, Clock::time_point deadline);
  bool tick();
  Clock::time_point next_tick();
  Level nested_level() const;

  // session_dispatch.cpp
  void accept(const Incoming& item);
  void greet(std::uint64_t connection);
  void accept_message(BrowserMessage message);
  void wait_for_turn(BrowserMessage message);
  void malformed(const Malformed& problem);
  void answer(const BrowserMessage& message);
  void send_rows(const BrowserMessage& message);
  void send_record(const BrowserMessage& message);
  bool handle_waiting(Level level);
  void handle(const BrowserMessage& message);
  void handle_event(const BrowserMessage& message);
  void act_on(ShownForm& shown, Control& control, const BrowserMessage& message);
  void close_dialog(const BrowserMessage& message);
  void open_page(const BrowserMessage& message);
  void leave_page();
  void show_page(const PageEntry& entry);

  // session_transfers.cpp
  void use_terminal(const BrowserMessage& message);
  void handle_upload(PendingUpload& upload);
  void take_upload(PendingUpload& upload, FileList& list);

  // Runs something of a page's, and tells the browser what it did.
  void run_action(const std::function<void()>& action);
  void report();
  void flush();
  void drop_closed_forms();
  void audit();

  void send(std::string message) { output_.send(connection_, std::move(message)); }
  void refuse(const MessageNumber& number, std::string_view code, std::string_view text);
  std::shared_ptr<ShownForm> find_form(std::string_view id) const;
  bool is_covered(const ShownForm& shown) const;
  std::string language_setting();
  // The form's caption in the user's language.
  const std::string& caption_of(ShownForm& shown);
  std::string_view page_name() const;

  const ConsoleSettings& settings_;
  std::string account_;
  Inbox& inbox_;
  OfferedFiles& offered_;
  SessionOutput& output_;
  AuditLog audit_log_;
  Terminals terminals_;

  std::unique_ptr<Console> console_;
  std::string language_at_start_;
  std::shared_ptr<Page> page_;
  std::vector<std::shared_ptr<ShownForm>> shown_;   // the page, then its dialogs, the topmost last
  std::vector<std::shared_ptr<ShownForm>> closed_;  // while their handlers may still run
  std::optional<OpenBox> box_;
  std::string captions_;

  std::deque<BrowserMessage> waiting_;
  std::size_t waiting_bytes_ = 0;
  std::uint64_t connection_ = 0;
  std::uint64_t last_seq_ = 0;
  std::uint64_t newest_handled_ = 0;
  std::uint64_t last_box_ = 0;
  int malformed_ = 0;

  std::uint64_t reported_ = 0;  // entries of the activity record
  std::uint64_t reported_failures_ = 0;
  std::uint64_t audited_ = 0;
  int depth_ = 0;  // handlers on the stack
  int modal_depth_ = 0;
  int busy_ = 0;  // handlers that do not wait for the browser
  bool ticked_last_ = false;
  bool showing_ = false;
  bool ending_ = false;
  bool stopping_ = false;
  Clock::time_point flushed_{};
  Clock::time_point progressed_{};
};

}  // namespace zrl::web
