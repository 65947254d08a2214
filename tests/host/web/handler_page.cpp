#include "host/web/handler_page.h"

#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "core/text/text.h"
#include "support/all_controls_page.h"
#include "support/tables_page.h"

namespace zrl::test {

namespace {

using std::chrono::milliseconds;

class CountingDialog : public Form {
 public:
  explicit CountingDialog(Console& console) : Form(console, "counting", "Counting") {
    add.on_click = [this] { count.set_caption(std::to_string(++count_)); };
    again.on_click = [this] { this->console().show(std::make_shared<CountingDialog>(this->console())); };
    // A closed dialog is still in its handler.
    leave.on_click = [this] {
      close();
      this->console().host().process_events();
      count.set_caption("closed");
    };
  }

  Label count{*this, "count", "0"};
  Button add{*this, "add", "Add"};
  Button again{*this, "again", "Again"};
  Button leave{*this, "leave", "Leave"};

 private:
  int count_ = 0;
};

constexpr std::string_view hostile = "two\nlines\tand \x1b[31mred\x1b[0m \u200f\xff";

}  // namespace

HandlerPage::HandlerPage(Console& console) : Page(console, "handlers", "Handlers") {
  Host& host = console.host();
  shouted.on_change = [this] {
    std::string text = shouted.text();
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    shouted.set_text(text);
  };
  reset.on_change = [this] { reset.set_text(""); };
  code.on_change = [this] {
    if (code.text().starts_with("wrong")) {
      code.set_marks({{"code", 1, 2, "wr\xC3\xB6ng", false}});
    } else {
      code.set_marks({});
    }
  };
  count.on_click = [this] { clicks.set_caption(std::to_string(++click_count_)); };
  ask.on_click = [this, &host] {
    for (const char* question : {"First?", "Second?"}) {
      const BoxReply reply = host.message_box({"Question", question, BoxStyle::question});
      answers.set_caption(answers.caption() + (reply == BoxReply::ok ? "yes " : "no "));
    }
  };
  block.on_click = [this] {
    while (!may_go()) std::this_thread::sleep_for(milliseconds(1));
  };
  pump.on_click = [this, &host] {
    state.set_caption(std::to_string(++pumping_) + " pumping");
    while (!may_go()) {
      host.process_events();
      std::this_thread::sleep_for(milliseconds(1));
    }
    if (--pumping_ == 0) state.set_caption("pumped");
  };
  pause.on_click = [this, &host] {
    state.set_caption("pausing");
    host.wait(milliseconds(100));
    state.set_caption("paused");
  };
  write.on_click = [this] { component_step(hostile, [] {}); };
  write_many.on_click = [this] {
    for (int i = 0; i < 1200; ++i) component_step("write " + std::to_string(i), [] {});
  };
  read.on_click = [&console] {
    console.attempt(ActivityRecord::Kind::sql, "a read", Console::Step::read,
                    [] { throw std::runtime_error("it failed"); });
  };
  raise.on_click = [] { throw std::runtime_error("raised on purpose"); };
  german.on_click = [this] { settings().regwrite_string(settings().language_path(), "german"); };
  dialog.on_click = [this, &console] {
    state.set_caption("opening");
    console.show(std::make_shared<CountingDialog>(console));
    state.set_caption("opened");
  };
  program.on_click = [this] {
    std::vector<std::string> words;
    std::istringstream text(command.text());
    for (std::string word; text >> word;) words.push_back(word);
    const std::string name = words.front();
    words.erase(words.begin());
    run_program(name, words);
  };
  empty.set_destroys(loss::log_rows, list);
  shorten.on_click = [this] {
    list.clear();
    list.add_item("one");
  };
  empty.on_click = [this] { list.clear(); };
  ticking.on_click = [this] { timer.set_enabled(ticking.checked()); };
  timer.on_tick = [this, &host] {
    ticks.set_caption(std::to_string(++tick_count_));
    host.wait(milliseconds(30));  // longer than the interval
  };
}

void HandlerPage::load() {
  for (const char* row : {"one", "two", "three"}) list.add_item(row);
}

void HandlerPage::hide() {
  std::ofstream(console().folder() / "handlers-left") << "left " << answers.caption();
  std::ofstream(console().folder() / "rows-left") << list.items().size();
}

bool HandlerPage::may_go() const {
  return std::filesystem::exists(Form::console().folder() / "go");
}

void BoxedPage::load() {
  console().host().message_box({"Note", "While it loads", BoxStyle::critical});
  state.set_caption("loaded");
}

std::span<const PageEntry> test_pages() {
  static constexpr std::array<PageEntry, 5> pages = {
      {{"handlers", "Test", "Handlers", make_page<HandlerPage>},
       {"boxed", "Test", "Boxed", make_page<BoxedPage>},
       {"allcontrols", "Test", "All controls", make_page<AllControlsPage>},
       {"tables", "Test", "Tables", make_page<TablesPage>},
       {"broken", "Test", "Broken",
        [](Console&) -> std::unique_ptr<Page> { throw std::runtime_error("cannot be made"); }}}};
  return pages;
}

}  // namespace zrl::test
