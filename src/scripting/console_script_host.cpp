#include "scripting/console_script_host.h"

#include <string_view>

#include "core/console.h"
#include "core/contracts/console_folder.h"
#include "core/text/error.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

// As the language numbers them.
constexpr int kind_mask = 0x0F;
constexpr int icon_mask = 0xF0;
enum Icon { critical_icon = 16, question_icon = 32, information_icon = 64 };

struct Replies {
  bool asks;
  int accepted;
  int refused;
};

// By the kind of the buttons: OK 1, Cancel 2, Abort 3, Retry 4, Yes 6, No 7.
constexpr Replies replies[] = {
    {false, 1, 1}, {true, 1, 2}, {true, 4, 3}, {true, 6, 2}, {true, 6, 7}, {true, 4, 2},
};

const Replies& replies_of(int buttons) {
  const auto kind = static_cast<std::size_t>(buttons & kind_mask);
  return replies[kind < std::size(replies) ? kind : 0];
}

BoxStyle style_of(int buttons) {
  const int icon = buttons & icon_mask;
  if (replies_of(buttons).asks) return icon == question_icon ? BoxStyle::question : BoxStyle::ok_cancel;
  if (icon == critical_icon) return BoxStyle::critical;
  return icon == information_icon ? BoxStyle::information : BoxStyle::plain;
}

constexpr std::size_t text_limit = 4096;
constexpr std::size_t title_limit = 256;

}  // namespace

ConsoleScriptHost::ConsoleScriptHost(Console& console)
    : console_(console), files_(console_folder::scripts(console.folder())), lookups_(console) {}

void ConsoleScriptHost::begin_operation() {
  boxes_ = 0;
  echoed_ = 0;
  lines_.clear();
}

void ConsoleScriptHost::echo(const std::string& text) {
  if (++echoed_ > line_limit) return;
  const bool last = echoed_ == line_limit;
  lines_.push_back(last ? "..." : std::string(beginning_of(text, text_limit)));
  console_.attempt(ActivityRecord::Kind::component, "Echo " + lines_.back(), Console::Step::write, [&] {
    if (last)
      throw Error(error_number::invalid_call, "a script has printed too many lines; no more are kept");
  });
}

void ConsoleScriptHost::script_stopped(const vbs::ScriptError& error) {
  console_.attempt(ActivityRecord::Kind::component, "Class_Terminate " + error.name, Console::Step::read,
                   [&] { throw Error(error.number, error.description); });
}

int ConsoleScriptHost::msg_box(const std::string& text, int buttons, const std::string& title) {
  const Replies& answers = replies_of(buttons);
  return show_box(text, buttons, title) ? answers.accepted : answers.refused;
}

std::optional<std::string> ConsoleScriptHost::input_box(const std::string& text, const std::string& title,
                                                        const std::string& preset) {
  constexpr int ok_and_cancel = 1;
  const std::string shown = preset.empty() ? text : text + "\r\n\r\n" + preset;
  if (!show_box(shown, ok_and_cancel | question_icon, title)) return std::nullopt;
  return preset;
}

std::shared_ptr<RegExp> ConsoleScriptHost::make_regexp() {
  std::shared_ptr<RegExp> made;
  console_.attempt(ActivityRecord::Kind::component, "create a regular expression", Console::Step::read,
                   [&] { made = console_.components().create<RegExp>(); });
  return made;
}

bool ConsoleScriptHost::show_box(const std::string& text, int buttons, const std::string& title) {
  if (boxes_ > box_limit) return true;
  BoxReply reply = BoxReply::ok;
  console_.attempt(ActivityRecord::Kind::component, "MsgBox", Console::Step::read, [&] {
    if (++boxes_ > box_limit) {
      throw Error(error_number::invalid_call,
                  "a script has shown " + std::to_string(box_limit) + " boxes; no more are shown");
    }
    reply = console_.host().message_box(
        {beginning_of(title, title_limit), beginning_of(text, text_limit), style_of(buttons)});
  });
  return reply == BoxReply::ok;
}

}  // namespace zrl
