#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/contracts/host.h"
#include "core/form.h"
#include "host/command/step.h"
#include "host/form_json.h"

namespace zrl::command {

// The host of the command line: applies steps, one by one, to a page and to the dialogs that the page opens,
// and keeps what a person would have seen. Dialogs are modal: the handler that opened one continues after the
// step that closes it. Message boxes are answered at once, as the steps say.
class StepRunner : public Host {
 public:
  struct Message {
    MessageBox box;
    BoxReply reply;
  };

  // `next` yields the steps in their order, and nothing after the last one; it may raise BadStep. Programs
  // are started only with `start_programs`, but recorded in any case.
  StepRunner(std::function<std::optional<Step>()> next, bool start_programs);

  // Shows the page by calling `show`, and runs all steps. `at_end` is called once, after the last step,
  // before the dialogs that are still open are closed. False if a step stopped the run; problem() then has
  // the reason. Console and page must outlive the call.
  bool run(Console& console, Form& page, const std::function<void()>& show,
           const std::function<void()>& at_end);

  const std::string& problem() const { return problem_; }
  // Whether the step that stopped the run broke the syntax of steps.
  bool bad_step() const { return bad_step_; }
  const std::vector<Message>& messages() const { return messages_; }
  const std::vector<ProgramStart>& programs() const { return programs_; }
  // The pages that were asked for, in this order; none of them is shown.
  struct Opened {
    std::string page;
    std::string query;
  };
  const std::vector<Opened>& opened() const { return opened_; }
  // The windows that steps have chosen.
  const RowWindows& windows() const { return windows_; }

  BoxReply message_box(const MessageBox& box) override;
  bool allows_modeless() const override { return false; }
  void show(Form& dialog) override;
  void process_events() override {}
  void wait(std::chrono::milliseconds time) override;
  void start_program(const ProgramStart& program) override;
  void offer_file(const std::filesystem::path&) override {}
  void open_page(std::string_view page, std::string_view query) override {
    opened_.push_back({std::string(page), std::string(query)});
  }
  void show_progress(const Progress&) override {}

 private:
  // Runs the next step; false if there is none, or the run has been stopped.
  bool run_next();
  void apply(const Step& step);
  Form& form_of(std::string& target);
  void apply_text(Control& control, const std::string& text);
  // False if the step is not about a table.
  bool apply_to_table(const Step& step);
  void end();

  std::function<std::optional<Step>()> next_;
  bool start_programs_;
  Console* console_ = nullptr;
  Form* page_ = nullptr;
  std::function<void()> at_end_;
  bool over_ = false;
  bool bad_step_ = false;
  std::string problem_;
  BoxReply answer_ = BoxReply::ok;
  std::vector<Message> messages_;
  std::vector<ProgramStart> programs_;
  std::vector<Opened> opened_;
  RowWindows windows_;
};

}  // namespace zrl::command
