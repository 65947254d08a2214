#include "pages/lists/transfer_dialog.h"

#include <filesystem>
#include <system_error>

#include "core/contracts/console_folder.h"
#include "core/text/paths.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// The path has a folder and a name; both separators are accepted.
bool names_a_file(std::string_view path) {
  constexpr std::string_view separators = "\\/";
  return path.find_first_of(separators) != path.npos && separators.find(path.back()) == separators.npos;
}

// A product path; that of the file system's root ends with a separator already.
std::string path_in(std::string_view folder, std::string_view name) {
  std::string path(folder);
  if (!path.ends_with('\\')) path += '\\';
  return path.append(name);
}

}  // namespace

TransferDialog::TransferDialog(Console& console, const ListTable& list, std::string_view title)
    : Form(console, "transfer", title), DatabaseClient(console), list_(list) {
  for (OptionButton* option : {&export_, &import_, &delete_}) {
    option->on_click = [this, option] { choose(*option); };
  }
  Drive1.on_change = [this] { enter(Drive1.path()); };
  Dir1.on_change = [this] { File1.set_path(Dir1.path()); };
  File1.on_click = [this] { source.set_text(path_in(File1.path(), File1.chosen())); };
  action.on_click = [this] { run_action(); };
  action.set_destroys(loss::file_entries, [this]() -> std::optional<std::uint64_t> {
    if (delete_.chosen()) return {};
    return 0;
  });

  File1.set_exchange(
      {.path = &source, .run = &action, .exports = &export_, .imports = &import_, .result = &result});

  set_layout(column({
      frame(Frame1, row({export_, import_, delete_})),
      result,
      fold(frame(Frame2, column({
                             row({grow(source), action}),
                             overwrite,
                             grow(row({grow(column({Drive1, grow(Dir1)})), grow(File1)})),
                         }))),
  }));
  load();
}

void TransferDialog::load() {
  translate_controls();
  set_caption(translate(caption()));
  Drive1.set_path("\\");
  const std::filesystem::path folder = console_folder::lists(console().folder());
  std::error_code ignored;  // where it cannot be made, the dialog shows it empty, and an export says why
  std::filesystem::create_directory(folder, ignored);
  enter(to_product_path(folder));
  export_.choose();
  choose(export_);
  source.set_text(path_in(File1.path(), std::string(list_.table.text()) + ".txt"));
  database = component<Database>();
}

void TransferDialog::close() {
  drop_database();
  Form::close();
}

void TransferDialog::enter(std::string_view folder) {
  Dir1.set_path(folder);
  File1.set_path(folder);
}

void TransferDialog::choose(const OptionButton& option) {
  action.set_caption(option.caption());
}

void TransferDialog::run_action() {
  action.set_enabled(false);
  result.set_caption("");
  source.set_text(trim(source.text()));
  if (names_a_file(source.text())) {
    const std::string path = (console().folder() / to_file_path(source.text())).string();
    bool done = true;
    if (export_.chosen()) done = export_list(path);
    if (import_.chosen()) {
      const auto counts = import_file(list_, path);
      if (counts) {
        show_result("Added", "there already", *counts);
        say_counts("Merged into the %1: %2", *counts);
      }
      done = counts.has_value();
    }
    if (delete_.chosen()) {
      const auto counts = delete_file(list_, path);
      if (counts) {
        show_result("Removed", {}, *counts);
        say_counts("Taken off the %1: %2", *counts);
      }
      done = counts.has_value();
    }
    if (!done) {
      result.set_caption(translate("The reason stands under \"Activity\""));
      say_failed(export_.chosen() ? "Nothing written from the %1" : "The %1 has not been changed",
                 {list_words(list_)});
    }
  } else {
    say_nothing("Nothing done: the path needs a folder and a name");
  }
  File1.refresh();
  action.set_enabled(true);
}

bool TransferDialog::export_list(const std::string& path) {
  if (!export_file(list_, path, overwrite.checked())) return false;
  result.set_caption(translate("The file has been written"));
  say_done("Written from the %1 to %2", {list_words(list_), path});
  console().host().offer_file(path);
  return true;
}

void TransferDialog::say_counts(std::string_view text, const ListFileResult& counts) {
  const SentenceTone tone = counts.changed > 0 ? SentenceTone::good : SentenceTone::neutral;
  console().acts().say(text, tone, {list_words(list_), result.caption()});
}

// "Added: 3, there already: 1, comments: 2, lines without an entry: 0". A removed entry may have had several
// rows, so that nothing can be said of the others.
void TransferDialog::show_result(std::string_view changed, std::string_view unchanged,
                                 const ListFileResult& counts) {
  std::string text;
  const auto add = [&](std::string_view what, std::uint64_t count) {
    text.append(text.empty() ? "" : ", ").append(translate(what)).append(": ").append(std::to_string(count));
  };
  add(changed, counts.changed);
  if (!unchanged.empty()) add(unchanged, counts.entries - counts.changed);
  add("comments", counts.comments);
  add("lines without an entry", counts.refused);
  result.set_caption(text);
}

}  // namespace zrl
