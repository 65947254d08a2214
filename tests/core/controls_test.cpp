#include "core/controls.h"

#include <fstream>

#include <gtest/gtest.h>

#include "core/chart.h"
#include "core/console.h"
#include "core/form.h"
#include "core/text/error.h"
#include "core/text/paths.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

class SmallForm : public Form {
 public:
  explicit SmallForm(Console& console) : Form(console, "small", "Small") {
    set_layout(column({frame(Frame1, column({Text1, frame(Frame2, row({Option1, Option2, List1}))})), Option3,
                       Check1, Combo1, Combo2, Scroll1}));
  }

  Frame Frame1{*this, "Frame1", "Outer"};
  Frame Frame2{*this, "Frame2", "Inner"};
  TextField Text1{*this, "Text1", "a tip"};
  OptionButton Option1{*this, "Option1", "1"};
  OptionButton Option2{*this, "Option2", "2"};
  OptionButton Option3{*this, "Option3", "3"};
  CheckBox Check1{*this, "Check1", "Check"};
  ListBox List1{*this, "List1"};
  ComboBox Combo1{*this, "Combo1", "", {.editable = true}};
  ComboBox Combo2{*this, "Combo2", "", {}};
  ScrollBar Scroll1{*this, "Scroll1", ""};
  Timer Timer1{*this, "Timer1", 1000, true};
};

class ControlsTest : public testing::Test {
 protected:
  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console{folder.path(), host};
  SmallForm form{console};
};

TEST_F(ControlsTest, PropertiesThatAKindHasNotRaiseAnError) {
  EXPECT_EQ(std::get<std::string_view>(form.Check1.get(Property::caption)), "Check");
  for (const Control* control : {static_cast<Control*>(&form.Text1), static_cast<Control*>(&form.List1),
                                 static_cast<Control*>(&form.Timer1)}) {
    EXPECT_THROW(control->get(Property::caption), Error) << control->name();
  }
  EXPECT_THROW(form.Timer1.set(Property::tool_tip, "x"), Error);
  EXPECT_THROW(form.control_at(form.controls().size()), Error);
}

TEST_F(ControlsTest, OnlyTheUserRaisesEventsButForTheTextField) {
  int events = 0;
  const auto count = [&] { ++events; };
  form.Check1.on_click = form.Option1.on_click = form.List1.on_click = form.Combo1.on_click = count;
  form.Combo1.on_change = form.Scroll1.on_change = count;
  form.List1.set_items({"a", "b"});
  form.Combo1.set_items({"a", "b"});
  form.Check1.set_checked(true);
  form.Option1.choose();
  form.List1.set_index(1);
  form.Combo1.set_text("b");
  form.Scroll1.set_range(0, 10);
  form.Scroll1.set_value(3);
  EXPECT_EQ(events, 0);

  form.Text1.on_change = count;
  form.Text1.set_text("x");
  form.Text1.set_text("x");
  EXPECT_EQ(events, 1);
  form.List1.click_item(0);
  EXPECT_EQ(events, 2);
  form.Option1.user_click();  // chosen already, its click runs again
  EXPECT_EQ(events, 3);
  form.Scroll1.user_scroll(3);
  EXPECT_EQ(events, 3);
  form.Scroll1.user_scroll(4);
  EXPECT_EQ(events, 4);
}

TEST_F(ControlsTest, TheUserCannotActOnWhatIsDisabledOrHidden) {
  form.List1.set_items({"a"});
  form.List1.user_choose(0);
  EXPECT_THROW(form.List1.user_choose(1), Refused);
  EXPECT_THROW(form.List1.user_choose(-1), Refused);
  EXPECT_THROW(form.List1.user_click(), Refused);
  form.Frame1.set_enabled(false);  // disables what lies in it, however deep
  EXPECT_THROW(form.List1.user_choose(0), Refused);
  EXPECT_THROW(form.Option1.user_click(), Refused);
  EXPECT_THROW(form.Text1.user_type("x"), Refused);
  EXPECT_NO_THROW(form.Option3.user_click());
  form.Frame1.set_enabled(true);
  form.Frame2.set_visible(false);
  EXPECT_THROW(form.Option1.user_click(), Refused);
  EXPECT_NO_THROW(form.Text1.user_type("x"));
  form.Timer1.set_enabled(false);
  EXPECT_THROW(form.Timer1.user_tick(), Refused);
}

TEST_F(ControlsTest, OptionButtonsExcludeThoseOfTheirFrame) {
  form.Option1.user_click();
  form.Option3.user_click();
  EXPECT_TRUE(form.Option1.chosen());
  form.Option2.user_click();
  EXPECT_FALSE(form.Option1.chosen());
  EXPECT_TRUE(form.Option2.chosen());
  EXPECT_TRUE(form.Option3.chosen());
}

TEST_F(ControlsTest, RevisionsTellWhatChangedAndNothingElse) {
  const Revision before = form.revision();
  form.Check1.set_checked(false);
  form.Check1.set_caption("Check");
  form.List1.clear();
  EXPECT_EQ(form.revision(), before);
  form.Check1.set_checked(true);
  EXPECT_GT(form.Check1.revision(Property::value), before);
  EXPECT_LE(form.Check1.revision(Property::caption), before);
  EXPECT_LE(form.Text1.revision(), before);
  form.List1.set_items({"a"});
  EXPECT_GT(form.List1.revision(Property::items), form.Check1.revision(Property::value));
}

TEST_F(ControlsTest, ListsChooseNothingAfterTheyWereFilled) {
  form.List1.set_items({"a", "b"});
  form.List1.set_index(1);
  EXPECT_EQ(form.List1.chosen(), "b");
  form.List1.set_items({"c"});
  EXPECT_EQ(form.List1.index(), -1);
  EXPECT_EQ(form.List1.chosen(), "");
  EXPECT_THROW(form.List1.set_index(1), Error);
}

TEST_F(ControlsTest, ComboBoxesTakeTextAsTheirStyleSays) {
  form.Combo1.set_items({"english", "german"});
  form.Combo2.set_items({"english", "german"});
  form.Combo1.user_type("german");
  EXPECT_EQ(form.Combo1.index(), 1);
  form.Combo1.user_type("dutch");
  EXPECT_EQ(form.Combo1.index(), -1);
  form.Combo2.user_type("german");
  EXPECT_EQ(form.Combo2.text(), "german");
  EXPECT_THROW(form.Combo2.user_type("dutch"), Refused);
  form.Combo2.user_choose(0);
  EXPECT_EQ(form.Combo2.text(), "english");
}

TEST_F(ControlsTest, ATypedTextIsUnsavedUntilAnActUsesIt) {
  const auto act = [this](bool worked, auto&& read) {
    form.Text1.user_type("typed");
    form.run_using([&] {
      read();
      return worked;
    });
    return std::pair(form.Text1.unsaved(), form.Text1.set_aside());
  };
  const auto look = [this] { return form.Text1.text().size(); };
  EXPECT_EQ(act(true, [] {}), std::pair(true, false));
  EXPECT_EQ(act(false, look), std::pair(true, false));
  EXPECT_EQ(act(true, look), std::pair(false, false));
  // Pages empty a field that they have used; what they put in and read themselves uses nothing.
  form.Text1.set_text("");
  EXPECT_EQ(act(true, [&] { form.Text1.set_text(std::to_string(look())); }), std::pair(false, false));
  form.Text1.set_text("");
  EXPECT_EQ(act(true,
                [&] {
                  form.Text1.set_text("a template");
                  look();
                }),
            std::pair(false, true));
  // Taken back, it is as it was.
  form.Text1.user_type("typed");
  form.Text1.user_type("a template");
  EXPECT_FALSE(form.Text1.unsaved());
}

TEST_F(ControlsTest, ValuesOutsideTheirRangeRaiseAnError) {
  EXPECT_THROW(form.Check1.set_value(2), Error);
  EXPECT_THROW(form.Scroll1.set_value(1), Error);
  form.Scroll1.set_range(0, 10);
  form.Scroll1.set_value(10);
  form.Scroll1.set_range(0, 4);
  EXPECT_EQ(form.Scroll1.value(), 4);
  EXPECT_THROW(form.Scroll1.user_scroll(5), Refused);
  EXPECT_THROW(form.Timer1.set_interval(-1), Error);
}

TEST_F(ControlsTest, AChartHasAValueForEachLabelAndItsMarksCanBeClicked) {
  Chart chart(form, "chart", "Chart", "", {}, {{"a", "A"}, {"b", "B"}});
  std::vector<std::int64_t> clicks;
  chart.on_click = [&] { clicks.push_back(chart.clicked()); };
  chart.set({"1", "2"}, {{1, 2}, {3, 4}});
  const Revision before = chart.revision();
  chart.user_choose(1);
  chart.user_choose(1);
  EXPECT_EQ(clicks, (std::vector<std::int64_t>{1, 1}));
  chart.set({"1", "2"}, {{1, 2}, {3, 4}});  // nothing new: hosts draw nothing, and the click stays
  EXPECT_EQ(chart.revision(), before);
  EXPECT_EQ(chart.clicked(), 1);
  for (const std::int64_t index : {-1, 2}) EXPECT_THROW(chart.user_choose(index), Refused);
  EXPECT_THROW(chart.set({"1"}, {{1}}), Error);
  EXPECT_THROW(chart.set({"1"}, {{1}, {1, 2}}), Error);
  EXPECT_EQ(chart.labels().size(), 2U);
  chart.set({"1"}, {{1}, {2}});
  EXPECT_GT(chart.revision(), before);
  EXPECT_EQ(chart.clicked(), -1);
}

TEST_F(ControlsTest, AnEventThatFailsIsRecordedAndEndsThere) {
  form.Check1.on_click = [] { throw Error(5, "broken"); };
  form.Check1.user_click();
  EXPECT_TRUE(form.Check1.checked());
  ASSERT_EQ(console.activity().failures(), 1u);
  EXPECT_EQ(console.activity()[0].error, "broken");
}

class PathListForm : public Form {
 public:
  explicit PathListForm(Console& console) : Form(console, "paths", "Paths") {}
  FolderList Dir1{*this, "Dir1"};
  FileList File1{*this, "File1"};
};

TEST_F(ControlsTest, PathListsShowFoldersAndFilesOfTheMachine) {
  const test::TemporaryFolder machine;
  const std::filesystem::path& root = machine.path();
  std::filesystem::create_directories(root / "b" / "inner");
  std::filesystem::create_directories(root / "a");
  std::ofstream(root / "b" / "list.txt") << "x";
  PathListForm lists(console);
  lists.Dir1.on_change = [&] { lists.File1.set_path(lists.Dir1.path()); };
  lists.Dir1.set_path(to_product_path(root));
  ASSERT_EQ(lists.Dir1.items().size(), 3u);
  EXPECT_EQ(lists.Dir1.items()[0], "..");
  EXPECT_EQ(lists.Dir1.items()[1], "a");
  lists.Dir1.user_choose(2);
  EXPECT_EQ(lists.Dir1.path(), to_product_path(root / "b"));
  ASSERT_EQ(lists.File1.items().size(), 1u);
  lists.File1.user_choose(0);
  EXPECT_EQ(lists.File1.chosen(), "list.txt");
  lists.Dir1.user_choose(0);
  EXPECT_EQ(lists.Dir1.path(), to_product_path(root));
  lists.Dir1.set_path("\\no such folder");
  EXPECT_EQ(lists.Dir1.items().size(), 1u);
}

TEST_F(ControlsTest, PathListsLeaveOutTheConsolesOwnFiles) {
  const std::filesystem::path own = folder.path() / "console";
  for (const char* name : {"lists", "scripts", "secrets"}) std::filesystem::create_directories(own / name);
  std::ofstream(own / "registry.db") << "x";
  std::ofstream(own / "lists" / "a.txt") << "x";
  std::filesystem::create_symlink("../registry.db", own / "lists" / "b.txt");
  std::filesystem::create_symlink("a.txt", own / "lists" / "c.txt");
  Console installed(own, host);
  PathListForm lists(installed);
  const auto items = [](const PathList& list) {
    std::string joined;
    for (std::size_t i = 0; i < list.items().size(); ++i) joined.append(list.items()[i]).append(" ");
    return joined;
  };
  for (PathList* list : {static_cast<PathList*>(&lists.Dir1), static_cast<PathList*>(&lists.File1)}) {
    list->set_path(to_product_path(own));
  }
  EXPECT_EQ(items(lists.Dir1), ".. lists ");
  EXPECT_EQ(items(lists.File1), "");
  lists.File1.set_path(to_product_path(own / "lists"));
  EXPECT_EQ(items(lists.File1), "a.txt c.txt ");
  lists.Dir1.set_path(to_product_path(folder.path()));
  EXPECT_EQ(items(lists.Dir1), ".. console ");
}

// Paths are built on the console's folder and resolved later, when the working folder may be part of them
// again.
TEST_F(ControlsTest, AConsolesFolderIsAbsolute) {
  EXPECT_EQ(Console("build/folder", host).folder(), std::filesystem::current_path() / "build/folder");
}

}  // namespace
}  // namespace zrl
