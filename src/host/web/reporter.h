#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "core/console.h"
#include "host/web/audit.h"
#include "host/web/form_stack.h"
#include "host/web/messages.h"
#include "host/web/outgoing.h"
#include "host/web/session_output.h"

namespace zrl::web {

// Refuses an action that the audit log could not record.
inline constexpr std::string_view no_audit = "no_audit";
inline constexpr std::string_view why_no_audit = "the audit log cannot be written";

// Sends the browser what a session's console shows and has done, and writes to the audit log what the console
// wrote. It remembers what was sent, so that each report contains only what is new. All calls are made on the
// session's thread; `output` and `forms` must outlive it.
class Reporter {
 public:
  // `audit_file` gets a line for each write, under the name of the account.
  Reporter(SessionOutput& output, FormStack& forms, std::shared_ptr<AuditFile> audit_file,
           const std::string& account);

  // Reports are about this console from now on; its activity record is reported from the start. It must live
  // until another console is set, or until the last call.
  void watch(Console& console);

  // A browser has connected and must be sent everything. Messages go to this connection until there is a new
  // one.
  void connected(std::uint64_t connection);
  std::uint64_t connection() const { return connection_; }
  // Changes carry the number of the newest event whose handling has begun.
  void event_began(std::uint64_t seq);

  void send(std::string message) { output_.send(connection_, std::move(message)); }
  void refuse(const MessageNumber& number, std::string_view code, std::string_view text);
  // Refuses a click because of what stands in this field of the form.
  void unfit(std::uint64_t seq, std::string_view form, std::string_view field, std::string_view hint) {
    send(unfit_message(seq, form, field, hint));
  }
  // Refuses the message; a browser that sends too many such is cut off.
  void malformed(const Malformed& problem);

  // Sends the forms that the browser has not seen, and the changes of the others; drops those that were
  // closed.
  void forms();
  // Sends that dialogs have been closed, and drops them.
  void closed_forms();
  // Sends that all forms are gone, and drops them.
  void all_gone();
  // Sends what is asked for, or refuses it.
  void rows(const BrowserMessage& asked);
  void cells(const BrowserMessage& asked);
  void record(const BrowserMessage& asked);

  // An action has ended: sends forms and activity, and writes the audit log.
  void action();
  // An action works on: forms and audit log from time to time, so that neither falls far behind.
  void meanwhile();
  // At most one in 100 milliseconds, and the last.
  void progress(const Progress& progress);
  // Whether the activity comes from a page being shown.
  void set_showing(bool showing) { showing_ = showing; }

  // Whether an action may be done now: not while the audit log has to be written and cannot be.
  bool permits_actions() const { return audit_log_.file().permits_actions(); }

  // A line in the audit log about something else than a write. `error` is empty if it worked.
  void note(std::string_view kind, std::string_view text, std::string_view error = {});

 private:
  using Clock = std::chrono::steady_clock;

  void audit();
  void tell_lost();
  // In the user's language.
  const std::string& caption_of(ShownForm& shown);

  SessionOutput& output_;
  FormStack& forms_;
  AuditLog audit_log_;
  Console* console_ = nullptr;

  std::uint64_t connection_ = 0;
  std::uint64_t newest_event_ = 0;
  int malformed_ = 0;

  Reported reported_;
  std::uint64_t audited_ = 0;
  bool showing_ = false;
  Clock::time_point forms_sent_{};
  Clock::time_point progressed_{};
};

}  // namespace zrl::web
