#pragma once

#include <filesystem>
#include <fstream>
#include <memory>

#include <gtest/gtest.h>

#include "core/contracts/registry.h"
#include "support/installed_console.h"

namespace zrl::test {

// A page over the real database, as it is shown now, with nothing in the record.
template <typename PageType>
class ShownPage : public InstalledConsole {
 public:
  PageType& shown() {
    page_ = std::make_unique<PageType>(console);
    page_->initialise();
    forget_activity();
    return *page_;
  }

  // The items of a list box.
  static std::vector<std::string> items(const ListBox& box) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < box.items().size(); ++i) result.emplace_back(box.items()[i]);
    return result;
  }

  // Empty entries too, which other programs may have stored.
  void insert(Literal table, Literal column, std::initializer_list<std::string_view> entries) {
    for (const std::string_view entry : entries) {
      execute("INSERT INTO " + table + " (" + column + ") VALUES ('" + value(entry) + "')");
    }
  }

  // What a button's transfer dialog moves: "title: proposed file".
  std::string dialog_of(Button& button) {
    std::string result;
    host.on_show = [&](Form& dialog) {
      const auto path = std::get<std::string_view>(dialog.find("source")->get(Property::text));
      result = dialog.caption() + ": " + std::string(path.substr(path.find_last_of("/\\") + 1));
    };
    button.user_click();
    host.on_show = {};
    return result;
  }

  // A file as the downloader leaves it.
  void put_download(std::string_view name, std::string_view entries) {
    std::filesystem::create_directories(folder.path() / "download");
    std::ofstream(folder.path() / "download" / name) << entries;
  }

  // Shows the page: every switch is read from its key, and its click writes it there.
  void expect_switches(std::initializer_list<std::pair<const char*, const char*>> switches) {
    for (const auto& [box, key] : switches) set_option(key, 1);
    PageType& page = shown();
    for (const auto& [box, key] : switches) {
      auto& control = static_cast<CheckBox&>(*page.find(box));
      EXPECT_TRUE(control.checked()) << box;
      control.user_click();
      EXPECT_EQ(option(key), "0") << key;
    }
  }

  // The caption of the transfer dialog that the button opens, and what is recorded when a file that
  // is not there is imported with it.
  std::vector<std::string> transfer(Button& button) {
    std::string caption;
    host.on_show = [&](Form& dialog) {
      caption = dialog.caption();
      dialog.find("source")->user_type("/none/x.txt");
      dialog.find("import")->user_click();
      dialog.find("action")->user_click();
    };
    forget_activity();
    button.user_click();
    std::vector<std::string> result = activity();
    result.insert(result.begin(), caption);
    return result;
  }

  // The record's path of a reload flag.
  std::string raised(std::string_view flag) { return console.settings().path_of(flag) + "=1"; }

 private:
  std::unique_ptr<PageType> page_;
};

}  // namespace zrl::test
