#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zrl {

class Form;

enum class BoxStyle : std::uint8_t {
  plain = 0,
  ok_cancel = 1,
  critical = 16,
  question = 33,
  information = 64
};
enum class BoxReply : std::uint8_t { ok, cancel };

struct MessageBox {
  std::string title;
  std::string text;
  BoxStyle style = BoxStyle::plain;  // its number is what hosts print

  bool asks() const { return style == BoxStyle::ok_cancel || style == BoxStyle::question; }
};

// A program that a page starts. Hosts run it without a shell, each operand as one argument.
struct ProgramStart {
  std::string program;                // "telnet.exe"; looked up without the ending
  std::vector<std::string> operands;  // none is empty or begins with "-"
  std::string folder;                 // where it runs; the console's own folder if empty

  // As the record shows it: "telnet.exe 192.0.2.1 25".
  std::string command_line() const {
    std::string result = program;
    for (const std::string& operand : operands) result.append(" ").append(operand);
    return result;
  }
};

// How far a long action has come; `total` is 0 where that is not known.
struct Progress {
  std::string_view text;
  std::uint64_t done = 0;
  std::uint64_t total = 0;
};

// What a console asks of the host that embeds it. All calls come on the console's one thread.
class Host {
 public:
  virtual ~Host() = default;

  // Returns when the box has been answered.
  virtual BoxReply message_box(const MessageBox& box) = 0;

  // True if a dialog may stay open beside its page. Where it may not, show() returns when the
  // dialog has been closed.
  virtual bool allows_modeless() const = 0;
  // Shows a dialog that has been opened. It must live until it is closed.
  virtual void show(Form& dialog) = 0;

  // Runs what waits in the event loop, and returns.
  virtual void process_events() = 0;
  // Returns after this time, the event loop served meanwhile.
  virtual void wait(std::chrono::milliseconds time) = 0;

  // Raises zrl::Error if the program cannot be started. Does not wait for its end.
  virtual void start_program(const ProgramStart& program) = 0;

  // A page has made this file for the user. Hosts far from the user's machine let it be fetched.
  virtual void offer_file(const std::filesystem::path& path) = 0;

  virtual void show_progress(const Progress& progress) = 0;
};

}  // namespace zrl
