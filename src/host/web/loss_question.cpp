#include "host/web/loss_question.h"

#include <string_view>

#include "core/form.h"
#include "core/text/filled.h"
#include "core/text/grouped_number.h"

namespace zrl::web {

namespace {

// Nothing if the loss has no text for this count.
std::optional<MessageBox> question(Console& console, const Loss& loss, std::optional<std::uint64_t> count,
                                   const std::string& act, std::string_view list = {}) {
  if (count == 0U) return {};
  const std::string_view known = count == 1U || loss.many.empty() ? loss.one : loss.many;
  const std::string_view english = count ? known : loss.unknown;
  if (english.empty()) return {};
  Localisation& localisation = console.localisation();
  const std::string number =
      count ? grouped(*count, localisation.current_language() == "german") : std::string();
  return MessageBox{act, filled(localisation.translate(english), {number, list}), BoxStyle::question, act};
}

// What people call a list: the title of the frame around it, or else its label.
std::string_view name_of(const ListBox& list) {
  const Frame* frame = list.container();
  if (frame != nullptr && !frame->caption().empty()) return frame->caption();
  for (const Control* control : list.form().controls()) {
    if (control->kind() != ControlKind::label) continue;
    const auto* label = static_cast<const Label*>(control);
    if (label->names() == &list) return label->caption();
  }
  return list.name();
}

std::optional<MessageBox> question_about_typed(Console& console, std::string_view english,
                                               std::string_view act, const std::vector<std::string>& fields) {
  if (fields.empty()) return {};
  Localisation& localisation = console.localisation();
  std::string text = localisation.translate(english) + "\r\n";
  for (const std::string& field : fields) text += "\r\n" + field;
  return MessageBox{localisation.translate("Unsaved text"), std::move(text), BoxStyle::question,
                    localisation.translate(act)};
}

}  // namespace

std::optional<MessageBox> question_before_click(Console& console, Button& button) {
  if (button.destroys() == nullptr) return {};
  return question(console, *button.destroys(), button.count_loss(), button.caption());
}

std::optional<MessageBox> question_before_leaving(Console& console, const std::vector<std::string>& fields) {
  return question_about_typed(
      console, "What you have typed here is not saved. It is offered to you again when you come back. Leave?",
      "Leave", fields);
}

std::optional<MessageBox> question_before_replacing(Console& console,
                                                    const std::vector<std::string>& fields) {
  return question_about_typed(console, "What you have typed here is not saved. Discard it?", "Discard",
                              fields);
}

std::optional<MessageBox> question_before_removal(Console& console, const ListBox& list,
                                                  std::uint64_t count) {
  return question(console, loss::list_entries, count, console.localisation().translate("Remove"),
                  name_of(list));
}

}  // namespace zrl::web
