// What every form of the product keeps to.
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "catalogue/catalogue.h"
#include "components/locale/catalogue.h"
#include "components/locale/locale.h"
#include "core/text/files.h"
#include "pages/lists/transfer_dialog.h"
#include "pages/tools/composer_dialog.h"
#include "support/installed_console.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

// Every form of the product: the pages, and the dialogs that they open.
class FormsTest : public testing::Test {
 protected:
  FormsTest() {
    for (const PageEntry& entry : page_catalogue()) forms.push_back(entry.make(console_));
    forms.push_back(std::make_unique<TransferDialog>(console_, list::black_domains, "Domain Blacklist"));
    forms.push_back(std::make_unique<ComposerDialog>(console_));
  }

 private:
  test::TemporaryFolder folder_;
  test::RecordingHost host_;
  Console console_{folder_.path(), host_};

 protected:
  std::vector<std::unique_ptr<Form>> forms;
};

TEST_F(FormsTest, EveryTextIsInGerman) {
  const auto german = locale::Catalogue::parse(locale::built_in_catalogue("german"));
  const auto expect_translation = [&](std::string_view where, std::string_view text) {
    EXPECT_TRUE(text.empty() || german.has(text)) << where << ": " << text;
  };
  for (const PageEntry& entry : page_catalogue()) {
    expect_translation(entry.name, entry.group);
    expect_translation(entry.name, entry.title);
  }
  for (const auto& form : forms) {
    expect_translation(form->name(), form->caption());
    for (const Control* control : form->controls()) {
      for (const Property property : {Property::caption, Property::tool_tip}) {
        if (!control->has(property)) continue;
        expect_translation(control->name(), std::get<std::string_view>(control->get(property)));
      }
      if (control->kind() != ControlKind::button) continue;
      const Loss* loss = static_cast<const Button*>(control)->destroys();
      if (loss == nullptr) continue;
      for (const std::string_view text : {loss->one, loss->many, loss->unknown}) {
        expect_translation(control->name(), text);
      }
    }
  }
}

// Whoever adds an act decides here whether it can be taken back. The acts that take single entries off lists
// can: the entries can be added again.
TEST_F(FormsTest, ActsThatCannotBeTakenBackAreDeclared) {
  std::map<std::string, std::set<std::string>> declared;
  for (const auto& form : forms) {
    for (const Control* control : form->controls()) {
      if (control->kind() != ControlKind::button) continue;
      if (static_cast<const Button*>(control)->destroys() != nullptr)
        declared[form->name()].insert(control->name());
    }
  }
  const std::map<std::string, std::set<std::string>> expected = {
      {"strings", {"Command2"}},
      {"pop_config", {"deletea"}},
      {"iplog", {"Command9", "delefrom"}},
      {"predatalog", {"Command1", "Command2", "cchange", "delip"}},
      {"keywordlog",
       {"Command1", "Command2", "Command3", "Command4", "Command5", "Command6", "Command7", "Command9",
        "Command10", "Command11"}},
      {"avlog",
       {"Command1", "Command2", "Command3", "Command4", "Command5", "Command6", "Command13", "Command14"}},
      {"messages", {"delete_rows"}},
      {"monitor", {"Command5"}},
      {"ScriptEngine", {"deletefromdb", "update"}},
      {"ServiceControl", {"stopservice"}},
      {"transfer", {"action"}},
  };
  EXPECT_EQ(declared, expected);
}

// The numbers are those of the database at the time of the click, of as many rows as the act then deletes.
TEST(Pages, CountTheRowsThatAnActDeletes) {
  test::InstalledConsole installed;
  const auto add = [&](Literal statement) { installed.execute(statement); };
  for (int i = 0; i < 3; ++i) {
    add("INSERT INTO iplog (IPNumber,status) VALUES ('192.0.2.1',2)");
    add("INSERT INTO predatalog (IPNumber,status,reason) VALUES ('192.0.2.1',1,'')");
    add("INSERT INTO subjectlog (IPNumber,mailfrom,mailto,keyword) VALUES "
        "('192.0.2.1','a@b.example','c','k')");
  }
  add("INSERT INTO iplog (IPNumber,status) VALUES ('192.0.2.2',0)");
  add("INSERT INTO bodylog (IPNumber,mailfrom,mailto,keyword) VALUES ('192.0.2.3','a@b.example','c','k')");
  const auto rows_left = [&] {
    std::size_t sum = 0;
    for (const Literal table :
         std::initializer_list<Literal>{"iplog", "predatalog", "subjectlog", "bodylog", "avlog"})
      sum += installed.rows(table, "IPNumber").size();
    return sum;
  };
  struct Act {
    const char* page;
    std::vector<const char*> before;  // clicked
    const char* field;
    const char* text;
    const char* act;
    std::uint64_t count;
  };
  const Act acts[] = {
      {"iplog", {"ipneutral"}, nullptr, nullptr, "Command9", 1},
      {"keywordlog", {}, nullptr, nullptr, "Command2", 4},
      {"iplog", {}, "IPNumber", "192.0.2.1", "delefrom", 6},
  };
  for (const Act& act : acts) {
    const auto page = find_page(page_catalogue(), act.page)->make(installed.console);
    page->initialise();
    for (const char* name : act.before) page->find(name)->user_click();
    if (act.field != nullptr) page->find(act.field)->user_type(act.text);
    auto& button = static_cast<Button&>(*page->find(act.act));
    const std::size_t before = rows_left();
    EXPECT_EQ(button.count_loss(), act.count) << act.page << "." << act.act;
    button.user_click();
    EXPECT_EQ(rows_left(), before - act.count) << act.page << "." << act.act;
    EXPECT_EQ(button.count_loss(), 0U) << act.page << "." << act.act;
    page->terminate();
  }
}

TEST(Pages, AreAllInTheCatalogue) {
  const std::filesystem::path sources = std::filesystem::path(ZRL_SOURCES) / "src";
  const std::string catalogue = read_file(sources / "catalogue/catalogue.cpp");
  for (const char* folder : {"pages", "scripting", "service"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(sources / folder)) {
      const std::string header = entry.path().lexically_relative(sources).generic_string();
      const bool is_base = header == "pages/lists/list_page.h" || header == "pages/logs/log_page.h";
      if (!header.ends_with("_page.h") || is_base) continue;
      EXPECT_THAT(catalogue, testing::HasSubstr("#include \"" + header + "\""));
    }
  }
}

TEST(Pages, AreListedByTheirOwnNameAndCaption) {
  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console(folder.path(), host);
  for (const PageEntry& entry : page_catalogue()) {
    const auto page = entry.make(console);
    EXPECT_EQ(page->name(), entry.name);
    EXPECT_EQ(page->caption(), entry.title);
  }
}

// The host may show a page again instead of making a new one.
TEST(Pages, ShownAgainHoldWhatTheyHeldBefore) {
  test::InstalledConsole installed;
  for (const PageEntry& entry : page_catalogue()) {
    const auto page = entry.make(installed.console);
    std::vector<std::vector<std::string>> showings;
    for (int i = 0; i < 2; ++i) {
      page->initialise();
      std::vector<std::string>& lists = showings.emplace_back();
      for (const Control* control : page->controls()) {
        if (!control->has(Property::items)) continue;
        const StringList& items = *std::get<const StringList*>(control->get(Property::items));
        std::string text = control->name() + ":";
        for (std::size_t item = 0; item < items.size(); ++item) text.append(" ").append(items[item]);
        if (control->has(Property::text))
          text += " = " + std::string(std::get<std::string_view>(control->get(Property::text)));
        lists.push_back(text);
      }
      page->terminate();
    }
    EXPECT_EQ(showings[0], showings[1]) << entry.name;
  }
}

// What people see needs a name, and its place on the form.
TEST_F(FormsTest, EveryControlIsLabelledAndLaidOut) {
  for (const auto& form : forms) {
    std::vector<const Control*> named;
    std::vector<const Control*> placed;
    const auto place = [&](const auto& self, const LayoutNode& node) -> void {
      if (node.control != nullptr) placed.push_back(node.control);
      for (const LayoutNode& child : node.children) self(self, child);
    };
    ASSERT_NE(form->layout(), nullptr);
    place(place, *form->layout());
    for (const Control* control : form->controls()) {
      if (control->kind() != ControlKind::label) continue;
      if (const Control* names = static_cast<const Label*>(control)->names()) {
        named.push_back(names);
        placed.push_back(control);
      }
    }
    for (const Control* control : form->controls()) {
      if (control->kind() == ControlKind::timer) continue;
      EXPECT_EQ(std::ranges::count(placed, control), 1) << form->name() << "." << control->name();
      if (control->has(Property::caption)) continue;
      EXPECT_EQ(std::ranges::count(named, control), 1) << form->name() << "." << control->name();
    }
  }
}

}  // namespace
}  // namespace zrl
