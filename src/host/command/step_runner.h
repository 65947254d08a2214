#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/contracts/host.h"
#include "core/form.h"
#include "host/command/step.h"

namespace zrl::command {

// The host of the command line: it applies steps, one by one, to a page and to the dialogs that
// the page opens, and keeps what a person would have seen. Dialogs are modal: the handler that
// opened one goes on after the step that closes it.
class StepRunner : public Host {
 public:
  struct Message {
    MessageBox box;
    BoxReply reply;
  };

  // `next` yields the steps in their order, and nothing when there are no more; it may raise
  // BadStep. Programs are started only with `start_programs`.
  StepRunner(std::function<std::optional<Step>()> next, bool start_programs);

  // Shows the page and runs all steps. `at_end` is called once, after the last step, while the
  // dialogs that it left open are still there; they are closed then. False if a step stopped the
  // run; problem() then tells why.
  bool run(Console& console, Form& page, const std::function<void()>& show,
           const std::function<void()>& at_end);

  const std::string& problem() const { return problem_; }
  // The run was stopped by a step that was badly written.
  bool bad_step() const { return bad_step_; }
  const std::vector<Message>& messages() const { return messages_; }
  const std::vector<ProgramStart>& programs() const { return programs_; }

  BoxReply message_box(const MessageBox& box) override;
  bool allows_modeless() const override { return false; }
  void show(Form& dialog) override;
  void process_events() override {}
  void wait(std::chrono::milliseconds time) override;
  void start_program(const ProgramStart& program) override;
  void offer_file(const std::filesystem::path&) override {}
  void show_progress(const Progress&) override {}

 private:
  // Runs the next step; false if there is none, or the run is over.
  bool run_next();
  void apply(const Step& step);
  Form& form_of(std::string& target);
  void apply_text(Control& control, const std::string& text);
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
};

}  // namespace zrl::command
