#include "core/steps.h"

#include "core/controls.h"
#include "core/list_catalogue.h"
#include "core/text/error.h"
#include "core/text/grouped_number.h"
#include "core/text/text.h"

namespace zrl {

bool Steps::failed(Kind kind, std::string_view text, std::string_view why, Step step) const {
  console_.record_failure(kind, text, why, step);
  return false;
}

void Steps::noted(std::string_view text) const {
  console_.attempt(Kind::component, text, Step::write, [] {});
}

bool Steps::raise_flag(std::string_view flag) const {
  std::string path = console_.settings().path_of(flag);
  const bool raised = console_.settings().regwrite_dword(path, 1);
  if (raised) console_.writes().flag_raised(std::move(path));
  return raised;
}

void Steps::say_switched(const CheckBox& box, bool on) const {
  say(on ? said::switched_on : said::switched_off, {box.caption()});
}

void Steps::say_added(std::string_view entry, const ListTable& list) const {
  if (trim(entry).empty()) return say_nothing(said::no_entry_to_add);
  say(said::added, {entry, list_words(list)});
}

void Steps::say_added(std::string_view entry, const ListTable& list, bool stored) const {
  if (trim(entry).empty()) return say_nothing(said::no_entry_to_add);
  console_.acts().say_of(stored, said::added, {entry, list_words(list)});
}

std::string Steps::number_text(std::uint64_t number) const {
  return grouped(number, console_.localisation().current_language() == "german");
}

std::string Steps::list_words(const ListTable& list) const {
  const KnownList* known = find_list(list.name);
  return console_.localisation().translate(known == nullptr ? list.name : known->words);
}

void Steps::show_error(std::string_view text, std::string_view title) const {
  Localisation& localisation = console_.localisation();
  console_.host().message_box(
      {localisation.translate(title), localisation.translate(text), BoxStyle::critical});
}

Outcome Steps::on_component(Step step, std::string_view text, bool present, std::string_view what,
                            const std::function<void()>& action) const {
  console_.writes().commit();
  return console_.attempt(Kind::component, text, step, [&] {
    if (!present) throw Error(error_number::object_not_set, "no " + std::string(what));
    action();
  });
}

}  // namespace zrl
