#include "host/command/step_runner.h"

#include <algorithm>
#include <thread>

#include "core/controls.h"
#include "core/table.h"
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

StringList keys_of(std::string_view text) {
  StringList keys;
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    if (const std::string_view key = trim(text.substr(0, comma)); !key.empty()) keys.push_back(key);
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return keys;
}

RowWindow window_of(const std::string& text) {
  const std::size_t comma = text.find(',');
  const auto first = to_number(text.substr(0, comma));
  const auto count = comma == text.npos ? std::optional<std::int64_t>() : to_number(text.substr(comma + 1));
  if (!first || !count || *first < 0 || *count < 0) throw BadStep("a window is FROM,COUNT: \"" + text + "\"");
  return {static_cast<std::uint64_t>(*first), static_cast<std::uint64_t>(*count)};
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
  if (step.kind == Step::Kind::text && apply_to_table(step)) return;
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

bool StepRunner::apply_to_table(const Step& step) {
  std::string name = step.target;
  const TablePart part = take_table_part(name);
  if (part == TablePart::none) return false;
  // "messages.filter" is the field of a form, unless a table is called messages.
  const std::size_t dot = name.find('.');
  const auto has_table = [&](const Form& form) {
    if (dot != name.npos && form.name() != name.substr(0, dot)) return false;
    const Control* found = form.find(dot == name.npos ? name : name.substr(dot + 1));
    return found != nullptr && found->kind() == ControlKind::table;
  };
  const auto& dialogs = console_->dialogs();
  if (!has_table(*page_) &&
      std::ranges::none_of(dialogs, [&](const auto& dialog) { return has_table(*dialog); })) {
    return false;
  }
  Control* control = form_of(name).find(name);
  if (control == nullptr || control->kind() != ControlKind::table) return false;
  auto& table = static_cast<Table&>(*control);
  if (part == TablePart::window) {
    windows_[control] = window_of(step.text);
  } else if (part == TablePart::key) {
    table.user_choose_keys(keys_of(step.text));
  } else if (part == TablePart::sort) {
    table.user_sort(step.text);
  } else {
    table.user_filter(step.text);
  }
  return true;
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
