#include "support/all_controls_page.h"

#include <filesystem>
#include <fstream>
#include <memory>

#include "core/contracts/console_folder.h"
#include "core/text/paths.h"

namespace zrl::test {

namespace {

constexpr int many = 1'000'000;

}  // namespace

SampleDialog::SampleDialog(Console& console) : Form(console, "sample", "A dialog") {
  Drive1.on_change = [this] {
    Dir1.set_path(Drive1.path());
    File1.set_path(Drive1.path());
  };
  Dir1.on_change = [this] { File1.set_path(Dir1.path()); };
  File1.on_click = [this] { source.set_text(File1.path() + "\\" + std::string(File1.chosen())); };
  apply.on_click = [this] {
    if (on_apply) on_apply(source.text());
    close();
  };
  cancel.on_click = [this] { close(); };
  const std::string folder = to_product_path(console_folder::lists(console.folder()));
  Drive1.set_path("\\");
  Dir1.set_path(folder);
  File1.set_path(folder);
  set_layout(
      column({Label1, source, row({grow(column({Drive1, grow(Dir1)})), grow(File1)}), row({apply, cancel})}));
}

AllControlsPage::AllControlsPage(Console& console) : Page(console, "allcontrols", "All controls") {
  Text1.on_change = [this] { echo.set_caption("You typed: " + Text1.text()); };
  Check1.on_click = [this] { Frame3.set_enabled(Check1.checked()); };
  Check2.on_click = [this] { hidden.set_visible(Check2.checked()); };
  Option1.on_click = [this] { echo.set_caption("First"); };
  Option2.on_click = [this] { echo.set_caption("Second"); };
  Combo1.on_click = [this] { echo.set_caption("Position " + Combo1.text()); };
  Combo2.on_click = [this] { echo.set_caption("Chosen " + Combo2.text()); };
  Combo2.on_change = [this] { echo.set_caption("Typed " + Combo2.text()); };
  List1.on_click = [this] { Text1.set_text(List1.chosen()); };
  List2.on_click = [this] { Text1.set_text(List2.chosen()); };
  HScroll1.on_change = [this] { echo.set_caption("Position " + std::to_string(HScroll1.value())); };
  add.on_click = [this] { List1.add_item(Text1.text()); };
  remove.on_click = [this] { remove_entry(); };
  List1.set_acts({&Text1, &add, &remove});
  fill.on_click = [this] { fill_list(); };
  clear.on_click = [this] { List1.clear(); };
  ask.on_click = [this] {
    const BoxReply reply =
        this->console().host().message_box({"Delete entry", "Are you sure?", BoxStyle::question});
    echo.set_caption(reply == BoxReply::ok ? "Deleted" : "Kept");
  };
  fail.on_click = [this] {
    show_error("Something went wrong:\r\n<b>14</b>: no such file", "A critical message");
  };
  open.on_click = [this] { open_dialog(); };
  work.on_click = [this] { work_long(); };
  wrong.on_click = [this] { execute("DELETE * FROM nowhere"); };
  program.on_click = [this] {
    component_step("start talk",
                   [this] { this->console().host().start_program({"talk.exe", {"192.0.2.1", "25"}, ""}); });
  };
  offer.on_click = [this] { offer_file(); };
  Timer1.on_tick = [this] { ticks.set_caption(std::to_string(++tick_count_) + " ticks"); };
  ticking.on_click = [this] { Timer1.set_enabled(ticking.checked()); };

  set_layout(column({
      headline,
      frame(Frame1, column({row({grow(Text1), grow(Text4)}), row({grow(Text2), grow(Text3)}), echo})),
      frame(Frame2, column({grid({Check1, Check2, Check3}), hidden})),
      frame(Frame3, grid({Option1, Option2, Option3})),
      frame(Frame4,
            column({row({grow(Combo1), grow(Combo2), grow(HScroll1)}), row({grow(List1), grow(List2)})})),
      frame(Frame5,
            column({row({add, remove, fill, clear, ask, fail, open, work, wrong, program, offer, disabled}),
                    row({ticking, ticks})})),
  }));
}

void AllControlsPage::load() {
  Text2.set_text("First line\r\nSecond line");
  Text3.set_text("Function check(input)\r\n\tcheck=0\r\nEnd Function ");
  Check1.set_checked(true);
  hidden.set_visible(false);
  Option1.choose();
  disabled.set_enabled(false);
  for (const char* item : {"Never", "CONNECT", "ENVELOPE", "HEADER", "BODY"}) Combo1.add_item(item);
  Combo1.set_text("Never");
  for (const char* item : {"first", "second", "third"}) Combo2.add_item(item);
  HScroll1.set_range(0, 300);
  for (const char* item : {"apple.example", "banana.example", "cherry.example"}) List1.add_item(item);
  const std::string hostile[] = {"<script>alert(1)</script>",
                                 "<img src=x onerror=alert(1)>",
                                 "'; DROP TABLE konf; --",
                                 "\x1b[31mred\x1b[0m",
                                 std::string("zero\0byte", 9),
                                 "line\nbreak",
                                 "\xff\xfe not UTF-8",
                                 "\xd9\x85\xd8\xb1\xd8\xad\xd8\xa8\xd8\xa7 \xe2\x80\xae"
                                 "evil",
                                 std::string(100'000, 'x'),
                                 ""};
  for (const std::string& item : hostile) List2.add_item(item);
}

void AllControlsPage::fill_list() {
  StringList items;
  for (int i = 0; i < many; ++i) items.push_back("host" + std::to_string(i) + ".example");
  List1.set_items(std::move(items));
}

void AllControlsPage::remove_entry() {
  StringList items = List1.items();
  items.retain([this](std::string_view item) { return item != Text1.text(); });
  List1.set_items(std::move(items));
}

void AllControlsPage::open_dialog() {
  const auto dialog = std::make_shared<SampleDialog>(console());
  dialog->on_apply = [this](const std::string& text) { List1.add_item(text); };
  console().show(dialog);
  echo.set_caption("The dialog was shown");
}

void AllControlsPage::work_long() {
  work.set_enabled(false);
  for (std::uint64_t i = 0; i < 20; ++i) {
    console().host().show_progress({"Working", i, 20});
    console().host().wait(std::chrono::milliseconds(100));
  }
  work.set_enabled(true);
  echo.set_caption("Worked");
}

void AllControlsPage::offer_file() {
  const std::filesystem::path file = console().folder() / "list of h\u00f6sts.txt";
  std::ofstream(file) << "apple.example\nbanana.example\n";
  console().host().offer_file(file);
  echo.set_caption("Offered");
}

}  // namespace zrl::test
