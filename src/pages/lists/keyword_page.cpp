#include "pages/lists/keyword_page.h"

#include "core/text/list_entry.h"

namespace zrl {

namespace {

// The option "subjectspace" is a number of blanks: what the ticked box writes, and the least number
// that it shows as ticked.
constexpr std::int16_t many_blanks = 5;
constexpr std::int16_t least_blanks = 3;

}  // namespace

KeywordPage::KeywordPage(Console& console) : ListPage(console, "keywords", "Keywords") {
  bind_lists(Text1, Place::kept, {subjects_, bodies_, white_});
  bind_switches({
      {Check1, "checksubject"},
      {Check2, "checkbody"},
      {Check3, "enablesubjectwhite"},
      {checklongsubject, "checklongsubject"},
      {checkshortsubject, "checkshortsubject"},
  });
  Check1.on_click = [this] { click_subject_check(); };
  subjectspace.on_click = [this] {
    const bool on = subjectspace.checked();
    set_option("subjectspace", on ? many_blanks : 0);
    say_switched(subjectspace, on);
  };
  when_not_stored("subjectspace", [this] { load_subjectspace(); });
  when_not_stored("checksubject", [this] { Check3.set_enabled(Check1.checked()); });
  checkheader.on_click = [this] {
    const bool on = checkheader.checked();
    const bool stored = settings().regwrite_string(header_check_path(), on ? "1" : "0");
    if (stored) return say_switched(checkheader, on);
    say_failed(on ? said::switched_on.failed : said::switched_off.failed, {checkheader.caption()});
    load_registry_switch(checkheader, header_check_path());
  };
  bind_transfer(Command5, subjects_);
  bind_transfer(Command6, bodies_);
  bind_transfer(Command9, white_);
  bind_update(remote, keyword_list_files());

  Command1.on_click = [this] { add_subject_keyword(); };
  Command2.on_click = [this] { add(bodies_); };
  Command7.on_click = [this] { add(white_); };
  Command3.on_click = [this] { remove(subjects_); };
  Command4.on_click = [this] { remove(bodies_); };
  Command8.on_click = [this] { remove(white_); };

  List1.set_acts({&Text1, &Command1, &Command3});
  List2.set_acts({&Text1, &Command2, &Command4});
  List3.set_acts({&Text1, &Command7, &Command8});
  Text1.set_expects(expects::keyword);

  set_layout(column({
      list_head(Text1, {remote}),
      grow(row({list_frame(Frame1, List1, {Command1, Command3, Command5}),
                list_frame(Frame2, List2, {Command2, Command4, Command6}),
                list_frame(Frame3, List3, {Command7, Command8, Command9})})),
      frame(Frame4, grid({Check1, Check3, Check2, checkheader})),
      frame(Frame5, grid({checklongsubject, checkshortsubject, subjectspace})),
  }));
}

void KeywordPage::load() {
  load_registry_switch(checkheader, header_check_path());
  fill_lists();
}

void KeywordPage::fill_lists() {
  fill_list_boxes();
  load_switches({&Check3, &Check2, &Check1});
  {
    const Acts::Routine routine(console().acts());
    follow_subject_check();
  }
  load_switches({&checklongsubject, &checkshortsubject});
  load_subjectspace();
  checkheader.set_enabled(Check2.checked());
}

// The header word check is a module of the proxy, which reads its switch from the registry.
std::string KeywordPage::header_check_path() {
  return settings().path_of("modules\\HeaderWordCheck\\enabled");
}

void KeywordPage::load_subjectspace() {
  if (const auto blanks = read_number("subjectspace")) subjectspace.set_checked(*blanks >= least_blanks);
}

void KeywordPage::click_subject_check() {
  const bool on = Check1.checked();
  set_option("checksubject", Check1.value());
  say_switched(Check1, on);
  follow_subject_check();
}

// The subject white list works only while subjects are checked.
void KeywordPage::follow_subject_check() {
  if (!Check1.checked()) {
    Check3.set_checked(false);
    set_option("enablesubjectwhite", 0);
  }
  Check3.set_enabled(Check1.checked());
}

void KeywordPage::add(const List& list) {
  const std::string word = Text1.text();
  Text1.set_text(escape_quotes(word));
  add_to(list, word);
  fill_lists();
}

// Unlike the others, this one does nothing at all while the field is empty.
void KeywordPage::add_subject_keyword() {
  if (Text1.text().empty()) return say_nothing(said::no_entry_to_add);
  add(subjects_);
}

void KeywordPage::remove(const List& list) {
  remove_from(list, Text1.text());
  fill_lists();
}

}  // namespace zrl
