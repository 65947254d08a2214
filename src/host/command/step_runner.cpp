#include "host/command/step_runner.h"

#include <thread>

#include "core/controls.h"
#include "core/text/paths.h"
#include "core/text/text.h"
#include "host/program_starter.h"

namespace zrl::command {

namespace {

// The items of a list-like control, or null.
const StringList* items_of(const Control& control) {
  if (!control.has(Property::items)) return nullptr;
  return std::get<const StringList*>(control.get(Property::items));
}

// As a browser's fields of several lines end them.
std::string with_line_ends(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\n' && !result.ends_with('\r')) result += '\r';
    result += c;
  }
  return result;
}

// A source text keeps its own.
bool has_line_ends(const Control& control) {
  if (control.kind() != ControlKind::text_field) return false;
  const TextField::Style& style = static_cast<const TextField&>(control).style();
  return style.multi_line && !style.source;
}

}  // namespace

StepRunner::StepRunner(std::function<std::optional<Step>()> next, bool start_programs)
    : next_(std::move(next)), start_programs_(start_programs) {}

bool StepRunner::run(Console& console, Form& page, const std::function<void()>& show,
                     const std::function<void()>& at_end) {
  console_ = &console;
  page_ = &page;
  at_end_ = at_end;
  show();
  while (run_next()) {
  }
  return problem_.empty();
}

BoxReply StepRunner::message_box(const MessageBox& box) {
  const BoxReply reply = box.asks() ? answer_ : BoxReply::ok;
  messages_.push_back({box, reply});
  return reply;
}

void StepRunner::show(Form& dialog) {
  while (dialog.is_open() && run_next()) {
  }
  if (dialog.is_open()) dialog.close();
}

void StepRunner::wait(std::chrono::milliseconds time) {
  std::this_thread::sleep_for(time);
}

void StepRunner::start_program(const ProgramStart& program) {
  programs_.push_back(program);
  if (!start_programs_) return;
  ProgramStart start = program;
  if (start.folder.empty()) start.folder = to_product_path(console_->folder());
  zrl::start_program(start);
}

bool StepRunner::run_next() {
  if (over_) return false;
  try {
    const std::optional<Step> step = next_();
    if (!step) {
      end();
      return false;
    }
    apply(*step);
  } catch (const BadStep& bad) {
    problem_ = bad.what();
    bad_step_ = true;
  } catch (const Refused& refused) {
    problem_ = refused.what();
  }
  if (!problem_.empty()) over_ = true;
  return !over_;
}

void StepRunner::end() {
  over_ = true;
  at_end_();
}

void StepRunner::apply(const Step& step) {
  if (step.kind == Step::Kind::answer) {
    answer_ = step.text == "ok" ? BoxReply::ok : BoxReply::cancel;
    return;
  }
  std::string name = step.target;
  if (step.kind == Step::Kind::close) {
    for (const auto& dialog : console_->dialogs()) {
      if (dialog->name() == name) {
        dialog->close();
        return;
      }
    }
    throw Refused("no dialog " + name + " is open");
  }
  Form& form = form_of(name);
  Control* control = form.find(name);
  if (control == nullptr) throw Refused("there is no control " + name + " on " + form.name());
  switch (step.kind) {
    case Step::Kind::click:
      control->user_click();
      break;
    case Step::Kind::item:
      control->user_choose(step.index);
      break;
    case Step::Kind::tick:
      control->user_tick();
      break;
    default:
      apply_text(*control, step.text);
  }
}

// The form that the target names first, whose name is then taken off; the page if it names none.
Form& StepRunner::form_of(std::string& target) {
  const auto& dialogs = console_->dialogs();
  const std::size_t dot = target.find('.');
  const std::string first = target.substr(0, dot);
  if (dot != target.npos) {
    target.erase(0, dot + 1);
    for (const auto& dialog : dialogs) {
      if (dialog->name() != first) continue;
      if (dialog != dialogs.back()) throw Refused("the dialog " + dialogs.back()->name() + " is open");
      return *dialog;
    }
    if (first != page_->name()) throw Refused("no form " + first + " is open");
  }
  if (!dialogs.empty()) throw Refused("the dialog " + dialogs.back()->name() + " is open");
  return *page_;
}

void StepRunner::apply_text(Control& control, const std::string& text) {
  if (control.kind() == ControlKind::check_box) {
    if (text != "0" && text != "1") throw BadStep(control.name() + " takes 0 or 1");
    if (static_cast<CheckBox&>(control).checked() != (text == "1")) control.user_click();
    return;
  }
  if (control.kind() == ControlKind::scroll_bar) {
    const auto position = to_number(text);
    if (!position) throw BadStep(control.name() + " takes a number");
    control.user_scroll(*position);
    return;
  }
  const StringList* items = items_of(control);
  const std::size_t found = items == nullptr ? 0 : items->find(text);
  if (items != nullptr && found < items->size()) {
    control.user_choose(static_cast<std::int64_t>(found));
  } else if (items != nullptr && control.kind() != ControlKind::combo_box) {
    throw Refused(control.name() + " has no item \"" + text + "\"");
  } else {
    control.user_type(has_line_ends(control) ? with_line_ends(text) : text);
  }
}

}  // namespace zrl::command
