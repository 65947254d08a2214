#include "pages/lists/transfer_dialog.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/files.h"
#include "core/text/paths.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TransferDialogTest : public testing::Test, public test::InstalledConsole {
 protected:
  TransferDialogTest() { execute(insert_into("Blackhost", "IPNumber", "192.0.2.1")); }

  TransferDialog dialog{console, list::black_addresses, "IP Blacklist"};

  std::string file(std::string_view name) { return (folder.path() / name).string(); }
};

TEST_F(TransferDialogTest, OpensOnTheConsolesFolderWithAnExportToAFileOfTheTablesName) {
  EXPECT_EQ(dialog.caption(), "IP Blacklist");
  EXPECT_EQ(dialog.source.text(), to_product_path(folder.path()) + "\\Blackhost.txt");
  EXPECT_EQ(dialog.action.caption(), "Export");
  EXPECT_EQ(dialog.Dir1.path(), to_product_path(folder.path()));

  dialog.action.user_click();
  EXPECT_THAT(activity(), ElementsAre("export IPNumber Blackhost " + file("Blackhost.txt")));
  EXPECT_EQ(read_file(folder.path() / "Blackhost.txt"), "192.0.2.1\n");
  EXPECT_THAT(host.offered, ElementsAre(folder.path() / "Blackhost.txt"));
  EXPECT_NE(dialog.File1.items().find("Blackhost.txt"), dialog.File1.items().size());
}

TEST_F(TransferDialogTest, AnExistingFileIsReplacedOnlyWhenThatIsTicked) {
  std::ofstream(folder.path() / "Blackhost.txt") << "kept\n";
  dialog.action.user_click();
  EXPECT_EQ(read_file(folder.path() / "Blackhost.txt"), "kept\n");
  EXPECT_THAT(activity(), ElementsAre("failed: export IPNumber Blackhost " + file("Blackhost.txt")));
  EXPECT_THAT(host.offered, IsEmpty());
  dialog.overwrite.user_click();
  dialog.action.user_click();
  EXPECT_EQ(read_file(folder.path() / "Blackhost.txt"), "192.0.2.1\n");
}

TEST_F(TransferDialogTest, TheChosenActionNamesTheButtonAndRuns) {
  std::ofstream(folder.path() / "list.txt") << "192.0.2.1\n192.0.2.2\n";
  dialog.File1.refresh();
  const auto index = static_cast<std::int64_t>(dialog.File1.items().find("list.txt"));
  dialog.File1.user_choose(index);
  EXPECT_EQ(dialog.source.text(), to_product_path(folder.path()) + "\\list.txt");

  dialog.import_.user_click();
  EXPECT_EQ(dialog.action.caption(), "Import");
  dialog.source.user_type("  " + dialog.source.text() + " ");
  dialog.action.user_click();
  EXPECT_EQ(dialog.source.text(), to_product_path(folder.path()) + "\\list.txt");
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1", "192.0.2.2"));

  dialog.delete_.user_click();
  EXPECT_EQ(dialog.action.caption(), "Delete");
  dialog.source.user_type(file("list.txt"));
  dialog.action.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), IsEmpty());
}

TEST_F(TransferDialogTest, APathThatNamesNoFileDoesNothing) {
  for (const char* path : {"", "  ", "list.txt", "\\", "\\tmp\\", "/tmp/", "lists\\"}) {
    dialog.source.user_type(path);
    dialog.action.user_click();
    EXPECT_TRUE(dialog.action.enabled()) << path;
  }
  EXPECT_THAT(activity(), IsEmpty());
  dialog.source.user_type("export\\list.txt");
  dialog.action.user_click();
  EXPECT_THAT(activity(), ElementsAre("failed: export IPNumber Blackhost " + file("export/list.txt")));
}

TEST_F(TransferDialogTest, AFolderThatIsChosenShowsItsFiles) {
  std::filesystem::create_directories(folder.path() / "lists");
  std::ofstream(folder.path() / "lists/one.txt") << "x\n";
  dialog.Dir1.refresh();
  dialog.Dir1.user_choose(static_cast<std::int64_t>(dialog.Dir1.items().find("lists")));
  ASSERT_EQ(dialog.File1.items().size(), 1u);
  dialog.File1.user_choose(0);
  EXPECT_EQ(dialog.source.text(), to_product_path(folder.path()) + "\\lists\\one.txt");
  dialog.Drive1.user_choose(0);
  EXPECT_EQ(dialog.File1.path(), "\\");
}

TEST_F(TransferDialogTest, BadFilesLeaveTheListAlone) {
  const struct {
    const char* name;
    std::string content;
  } files[] = {
      {"binary.txt", std::string("a\0b\n", 4)},
      {"long.txt", std::string(200'000, 'x')},
  };
  dialog.import_.user_click();
  for (const auto& [name, content] : files) {
    std::ofstream(folder.path() / name) << "192.0.2.9\n" << content;
    dialog.source.user_type(file(name));
    dialog.action.user_click();
    EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1")) << name;
  }
  dialog.source.user_type(file("missing.txt"));
  dialog.action.user_click();
  dialog.source.user_type("\\dev\\full\\x");
  dialog.action.user_click();
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1"));
}

TEST_F(TransferDialogTest, ClosingLetsGoOfTheDatabase) {
  EXPECT_NE(dialog.database, nullptr);
  dialog.close();
  EXPECT_EQ(dialog.database, nullptr);
}

}  // namespace
}  // namespace zrl
