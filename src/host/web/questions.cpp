#include "host/web/questions.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/text/paths.h"
#include "host/web/loss_question.h"
#include "host/web/outgoing.h"

namespace zrl::web {

namespace {

// People know the console's folder under the name that the system gives it, not as a product path. A path
// ends with its line.
std::string with_system_paths(std::string text, const std::filesystem::path& folder) {
  const std::string product = to_product_path(folder);
  if (product.find('\\') == product.npos) return text;
  for (std::size_t at = text.find(product); at != text.npos; at = text.find(product, at)) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    std::replace(text.begin() + static_cast<std::ptrdiff_t>(at),
                 text.begin() + static_cast<std::ptrdiff_t>(end), '\\', '/');
  }
  return text;
}

}  // namespace

BoxReply Questions::ask(const MessageBox& box) {
  const BoxReply unanswered = box.asks() ? BoxReply::cancel : BoxReply::ok;
  if (turns_.ending()) return unanswered;
  reporter_.forms();
  const Turns::Pause pause(turns_);
  MessageBox told = box;
  told.text = with_system_paths(box.text, folder_);
  box_ = OpenBox{++last_box_, &told, {}};
  reporter_.send(box_message(box_->id, told));
  turns_.serve_until_answered(box_->reply);
  const OpenBox answered = *std::exchange(box_, std::nullopt);
  reporter_.send(unbox_message(answered.id));
  return answered.reply.value_or(unanswered);
}

void Questions::answer(std::uint64_t id, BoxReply reply) {
  // It may have been answered before the line was lost.
  if (box_ && box_->id == id) box_->reply = reply;
}

void Questions::tell_again() {
  if (box_) reporter_.send(box_message(box_->id, *box_->box));
}

bool Questions::permits_click(const ShownForm& shown, Control& control) {
  if (!permits_replacing(shown, control)) return false;
  if (control.kind() != ControlKind::button || !control.usable()) return true;
  return agreed(shown, question_before_click(shown.form->console(), static_cast<Button&>(control)));
}

bool Questions::permits_choice(const ShownForm& shown, const Control& control) {
  return permits_replacing(shown, control);
}

bool Questions::permits_removal(const ShownForm& shown, const ListBox& list, std::uint64_t entries) {
  const Button* const button = list.acts().remove;
  if (button == nullptr || !button->usable()) return true;
  return agreed(shown, question_before_removal(shown.form->console(), list, entries));
}

bool Questions::permits_leaving(std::span<const std::shared_ptr<ShownForm>> left) {
  if (left.empty()) return true;
  std::vector<std::string> unsaved;
  for (const std::shared_ptr<ShownForm>& shown : left) {
    for (const Control* field : shown->form->unsaved()) unsaved.push_back(shown->form->label_of(*field));
  }
  return agreed(*left.back(), question_before_leaving(left.back()->form->console(), unsaved));
}

bool Questions::permits_replacing(const ShownForm& shown, const Control& control) {
  if (!control.usable()) return true;
  std::vector<std::string> unsaved;
  for (const Control* field : control.replaces()) {
    if (field->unsaved()) unsaved.push_back(shown.form->label_of(*field));
  }
  return agreed(shown, question_before_replacing(shown.form->console(), unsaved));
}

bool Questions::agreed(const ShownForm& shown, const std::optional<MessageBox>& question) {
  return !question || (ask(*question) == BoxReply::ok && is_still_shown(shown));
}

bool Questions::is_still_shown(const ShownForm& shown) const {
  return !turns_.ending() && forms_.find(shown.id).get() == &shown &&
         (!shown.dialog || shown.form->is_open());
}

}  // namespace zrl::web
