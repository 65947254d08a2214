// German is complete: every text that a page shows at design time has its translation.
#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include "components/locale/catalogue.h"
#include "components/locale/catalogue_translator.h"
#include "pages/catalogue.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

TEST(German, HasEveryTextOfEveryPage) {
  const Catalogue german = Catalogue::parse(built_in_catalogue("german"));
  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console(folder.path(), host);
  const auto expect_translation = [&](std::string_view where, std::string_view text) {
    EXPECT_TRUE(text.empty() || german.has(text)) << where << ": " << text;
  };
  for (const PageEntry& entry : page_catalogue()) {
    expect_translation(entry.name, entry.group);
    expect_translation(entry.name, entry.title);
    const auto page = entry.make(console);
    EXPECT_EQ(page->name(), entry.name);
    EXPECT_EQ(page->caption(), entry.title);
    for (const Control* control : page->controls()) {
      for (const Property property : {Property::caption, Property::tool_tip}) {
        if (!control->has(property)) continue;
        expect_translation(control->name(), std::get<std::string_view>(control->get(property)));
      }
    }
  }
}

// What people see needs a name, and its place on the form.
TEST(Pages, EveryControlIsLabelledAndLaidOut) {
  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console(folder.path(), host);
  for (const PageEntry& entry : page_catalogue()) {
    const auto page = entry.make(console);
    std::vector<const Control*> named;
    std::vector<const Control*> placed;
    const auto place = [&](const auto& self, const LayoutNode& node) -> void {
      if (node.control != nullptr) placed.push_back(node.control);
      for (const LayoutNode& child : node.children) self(self, child);
    };
    ASSERT_NE(page->layout(), nullptr);
    place(place, *page->layout());
    for (const Control* control : page->controls()) {
      if (control->kind() != ControlKind::label) continue;
      if (const Control* names = static_cast<const Label*>(control)->names()) {
        named.push_back(names);
        placed.push_back(control);
      }
    }
    for (const Control* control : page->controls()) {
      if (control->kind() == ControlKind::timer) continue;
      EXPECT_EQ(std::ranges::count(placed, control), 1) << entry.name << "." << control->name();
      if (control->has(Property::caption)) continue;
      EXPECT_EQ(std::ranges::count(named, control), 1) << entry.name << "." << control->name();
    }
  }
}

}  // namespace
}  // namespace zrl
