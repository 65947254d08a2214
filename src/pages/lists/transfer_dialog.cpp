#include "pages/lists/transfer_dialog.h"

#include "core/text/paths.h"
#include "core/text/text.h"

namespace zrl {

namespace {

// The path has a folder and a name; both separators are accepted.
bool names_a_file(std::string_view path) {
  constexpr std::string_view separators = "\\/";
  return path.find_first_of(separators) != path.npos && separators.find(path.back()) == separators.npos;
}

}  // namespace

TransferDialog::TransferDialog(Console& console, const ListTable& list, std::string_view title)
    : Form(console, "transfer", title), DatabaseClient(console), list_(list) {
  for (OptionButton* option : {&export_, &import_, &delete_}) {
    option->on_click = [this, option] { choose(*option); };
  }
  Drive1.on_change = [this] { enter(Drive1.path()); };
  Dir1.on_change = [this] { File1.set_path(Dir1.path()); };
  File1.on_click = [this] { source.set_text(File1.path() + "\\" + std::string(File1.chosen())); };
  action.on_click = [this] { run_action(); };

  set_layout(column({
      frame(Frame1, row({export_, import_, delete_, overwrite})),
      row({grow(source), action}),
      grow(row({grow(column({Drive1, grow(Dir1)})), grow(File1)})),
  }));
  load();
}

void TransferDialog::load() {
  translate_controls();
  set_caption(translate(caption()));
  Drive1.set_path("\\");
  enter(to_product_path(console().folder()));
  export_.choose();
  choose(export_);
  source.set_text(File1.path() + "\\" + std::string(list_.table.text()) + ".txt");
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
  source.set_text(trim(source.text()));
  if (names_a_file(source.text())) {
    const std::string path = (console().folder() / to_file_path(source.text())).string();
    if (export_.chosen()) export_list(path);
    if (import_.chosen()) import_file(list_, path);
    if (delete_.chosen()) delete_file(list_, path);
  }
  File1.refresh();
  action.set_enabled(true);
}

void TransferDialog::export_list(const std::string& path) {
  if (export_file(list_, path, overwrite.checked())) console().host().offer_file(path);
}

}  // namespace zrl
