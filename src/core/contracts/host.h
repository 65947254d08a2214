#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zrl {

class Form;

// Icon and buttons of a message box. The numbers are part of what hosts print, so they are fixed. The styles
// that ask have the buttons OK and Cancel, the others OK alone.
enum class BoxStyle : std::uint8_t {
  plain = 0,
  ok_cancel = 1,
  critical = 16,
  question = 33,
  information = 64
};
enum class BoxReply : std::uint8_t { ok, cancel, other };

// Title and text are UTF-8; lines of the text end with CRLF or a line feed. They may quote strangers.
struct MessageBox {
  std::string title;
  std::string text;
  BoxStyle style = BoxStyle::plain;  // its number is what hosts print
  // The act that the box asks about, if it destroys something: stands on the button that answers OK.
  std::string act = {};
  // The text of a third button, which answers BoxReply::other; empty: there is none. Only a box that asks may
  // have one, and only if the host guards newer values.
  std::string other = {};

  bool asks() const { return style == BoxStyle::ok_cancel || style == BoxStyle::question; }
};

// A program that a page starts. Hosts run it without a shell, each operand as one argument, so no text can
// become a second command. Page::run_program() has checked the operands.
struct ProgramStart {
  std::string program;                // "telnet.exe"; looked up without the ending
  std::vector<std::string> operands;  // none is empty or begins with "-"
  std::string folder;                 // where it runs; the console's own folder if empty

  // As the record shows it: "telnet.exe 192.0.2.1 25". Not for a shell: nothing is quoted.
  std::string command_line() const {
    std::string result = program;
    for (const std::string& operand : operands) result.append(" ").append(operand);
    return result;
  }
};

// How far a long action has come. `done` and `total` are in whatever unit the text names, or the action
// chooses; `total` is 0 while it is not known. Valid only during the call that gets it.
struct Progress {
  std::string_view text;
  std::uint64_t done = 0;
  std::uint64_t total = 0;
};

// What a console asks of the host that embeds it. All calls come on the console's thread. The host must
// outlive the console. The functions that serve the event loop may run handlers of the same console before
// they return, nested to any depth.
class Host {
 public:
  virtual ~Host() = default;

  // Shows the box and returns when it has been answered, the event loop served meanwhile. The reply means
  // something only if the box asks; one that the user cannot answer any more counts as cancelled.
  virtual BoxReply message_box(const MessageBox& box) = 0;

  // True if a dialog may stay open beside its page while the handler that opened it goes on. If false, show()
  // returns only when the dialog has been closed.
  virtual bool allows_modeless() const = 0;
  // Shows a dialog whose is_open() is true, until it is false. The console keeps the dialog alive that long.
  virtual void show(Form& dialog) = 0;

  // Runs the events that are pending, and returns.
  virtual void process_events() = 0;
  // Returns after this time, the event loop served meanwhile.
  virtual void wait(std::chrono::milliseconds time) = 0;

  // Starts the program and does not wait for its end. Raises zrl::Error if it cannot be started, or if this
  // host starts none.
  virtual void start_program(const ProgramStart& program) = 0;

  // A page has made this file, a path of the file system, for the user. A host that does not run on the
  // user's machine offers it for download; others have nothing to do.
  virtual void offer_file(const std::filesystem::path& path) = 0;

  // The user is to see this page of the console, with a query that fills it (empty: none); names are those of
  // the catalogue. The host leaves the page that asks when its event has ended, at the earliest. A host that
  // shows no other pages only notes what was asked.
  virtual void open_page(std::string_view page, std::string_view query) = 0;

  // Whether a value that somebody else has stored since it was shown is guarded: an unchanged field is not
  // written back over it, and people are asked before a changed one is (see DatabaseClient). If false, as for
  // programs that say all that they want in one go, everything is written as it is told.
  virtual bool guards_newer_values() const { return false; }

  // May be called often; a host shows as many of the states as it likes.
  virtual void show_progress(const Progress& progress) = 0;
};

}  // namespace zrl
