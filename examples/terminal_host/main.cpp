// A small host of the console's pages, for a terminal.
//
//   terminal_host FOLDER                     lists the pages
//   terminal_host FOLDER PAGE [BUTTON ...]   shows a page, clicks the buttons, prints what its controls hold

#include <exception>
#include <iostream>
#include <thread>

#include <catalogue/catalogue.h>
#include <core/text/printable.h>
#include <host/composition.h>
#include <host/folder.h>

// What a console asks of its host.
class TerminalHost : public zrl::Host {
 public:
  zrl::BoxReply message_box(const zrl::MessageBox& box) override {
    tell(box.text);
    return zrl::BoxReply::ok;
  }
  bool allows_modeless() const override { return false; }
  void show(zrl::Form& dialog) override { dialog.close(); }  // there is nobody to fill it in
  void process_events() override {}
  void wait(std::chrono::milliseconds time) override { std::this_thread::sleep_for(time); }
  void start_program(const zrl::ProgramStart& program) override { tell(program.command_line()); }
  void offer_file(const std::filesystem::path& path) override { tell(path.string()); }
  void open_page(std::string_view page, std::string_view query) override {
    tell("the page " + std::string(page) + " with \"" + std::string(query) + "\"");
  }
  void show_progress(const zrl::Progress&) override {}

 private:
  static void tell(std::string_view text) { std::cout << "host: " << zrl::printable(text) << '\n'; }
};

void print(const zrl::Control& control) {
  std::cout << control.name() << " (" << zrl::name_of(control.kind()) << ")\n";
  for (const zrl::Property property : zrl::properties_of(control.kind())) {
    const zrl::PropertyValue value = control.get(property);
    std::cout << "  " << zrl::name_of(property) << " = ";
    if (const auto* flag = std::get_if<bool>(&value)) std::cout << (*flag ? "yes" : "no") << '\n';
    if (const auto* number = std::get_if<std::int64_t>(&value)) std::cout << *number << '\n';
    if (const auto* text = std::get_if<std::string_view>(&value)) std::cout << zrl::printable(*text) << '\n';
    if (const auto* list = std::get_if<const zrl::StringList*>(&value))
      std::cout << (*list)->size() << " texts\n";
  }
}

void run(const std::vector<std::string>& arguments) {
  TerminalHost host;
  zrl::Console console(arguments.at(0), host);
  zrl::register_components(console);
  zrl::lay_out_folder(console);
  for (const zrl::PageEntry& entry : zrl::page_catalogue()) {
    if (arguments.size() == 1) std::cout << entry.name << '\t' << entry.title << '\n';
    if (arguments.size() == 1 || entry.name != arguments[1]) continue;
    const std::unique_ptr<zrl::Page> page = entry.make(console);
    page->initialise();
    for (std::size_t i = 2; i < arguments.size(); ++i) {
      if (zrl::Control* control = page->find(arguments[i])) control->user_click();
    }
    for (const zrl::Control* control : page->controls()) print(*control);
    page->terminate();
  }
}

int main(int argc, char** argv) {
  try {
    run({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "terminal_host: " << error.what() << '\n';
    return 1;
  }
}
