#include "pages/lists/replacement_page.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl {

namespace {

// Between a word and its replacement in a line of the list.
constexpr std::string_view separator = " ==>> ";

constexpr Sentence replaced{"%1 is replaced by \"%2\" from now on", "Replacement for %1 not stored"};
constexpr Sentence kept{"%1 is replaced no more", "Replacement for %1 not removed"};

// The lines of the list. The table may change between the reading of its two columns; a value without
// a counterpart is left out.
StringList lines_of(const StringList& words, const StringList& replacements) {
  StringList lines;
  std::string line;
  for (std::size_t i = 0; i < std::min(words.size(), replacements.size()); ++i) {
    line.assign(words[i]).append(separator).append(replacements[i]);
    lines.push_back(line);
  }
  return lines;
}

}  // namespace

ReplacementPage::ReplacementPage(Console& console) : ListPage(console, "wordreplace", "Word replacement") {
  bind_switches({{Check2, "editbody"}});
  List1.on_click = [this] { choose_pair(); };
  Command1.on_click = [this] { save_pair(); };
  Command2.on_click = [this] { remove_pair(); };

  List1.set_acts({&Text1, &Command1, &Command2});

  set_layout(column({
      row({grow(Text1), grow(Text2)}),
      grow(list_frame(Frame1, List1, {Command1, Command2})),
      frame(Frame2, grid({Check2})),
  }));
}

void ReplacementPage::fill_lists() {
  Text1.set_text("");
  Text2.set_text("");
  List1.set_items(
      lines_of(rows("rwords", "orig").value_or(StringList()), rows("rwords", "repl").value_or(StringList())));
  load_switch(Check2);
}

// A line without a word leaves the fields as they are.
void ReplacementPage::choose_pair() {
  const std::string line(List1.chosen());
  const std::size_t end = line.find(separator);
  if (end == line.npos) return;
  const std::string_view word = trim(std::string_view(line).substr(0, end));
  if (word.empty()) return;
  Text1.set_text(word);
  Text2.set_text(trim(std::string_view(line).substr(end + separator.size())));
}

// The table refuses a second row with the same word, so for a listed word the first statement fails
// and the second one updates it.
void ReplacementPage::save_pair() {
  Text1.set_text(trim(Text1.text()));
  Text2.set_text(trim(Text2.text()));
  if (Text2.text().empty()) Text2.set_text(" ");
  const std::string& word = Text1.text();
  const std::string& replacement = Text2.text();
  if (!word.empty()) {
    execute("INSERT INTO rwords (orig,repl) values ('" + value(word) + "','" + value(replacement) + "')",
            Failure::expected);
    execute("UPDATE rwords set repl='" + value(replacement) + "' where orig='" + value(word) + "'");
    say(replaced, {word, replacement});
  } else {
    say_nothing("Nothing stored: no word is given");
  }
  fill_lists();
}

// Words in the table may have blanks around them, which clicking a line removes.
void ReplacementPage::remove_pair() {
  if (Text1.text().empty()) {
    say_nothing(said::no_entry_to_remove);
  } else {
    for (const std::string_view word : {std::string_view(Text1.text()), trim(Text1.text())}) {
      execute(delete_from("rwords", "orig", word));
    }
    execute(delete_from("rwords", "orig", ""));
    execute(delete_from("rwords", "orig", " "));
    say(kept, {trim(Text1.text())});
  }
  fill_lists();
}

}  // namespace zrl
