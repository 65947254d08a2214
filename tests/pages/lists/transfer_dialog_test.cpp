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

  std::filesystem::path path(std::string_view name) { return folder.path() / "lists" / name; }
  std::string file(std::string_view name) { return path(name).string(); }
};

TEST_F(TransferDialogTest, OpensOnTheFolderForListsWithAnExportToAFileOfTheTablesName) {
  EXPECT_EQ(dialog.caption(), "IP Blacklist");
  EXPECT_EQ(dialog.source.text(), to_product_path(path("Blackhost.txt")));
  EXPECT_EQ(dialog.action.caption(), "Export");
  EXPECT_EQ(dialog.Dir1.path(), to_product_path(folder.path() / "lists"));

  dialog.action.user_click();
  EXPECT_THAT(activity(), ElementsAre("export IPNumber Blackhost " + file("Blackhost.txt")));
  EXPECT_EQ(read_file(path("Blackhost.txt")), "192.0.2.1\n");
  EXPECT_THAT(host.offered, ElementsAre(path("Blackhost.txt")));
  EXPECT_NE(dialog.File1.items().find("Blackhost.txt"), dialog.File1.items().size());
  EXPECT_EQ(dialog.result.caption(), "The file has been written");
}

TEST_F(TransferDialogTest, AnExistingFileIsReplacedOnlyWhenThatIsTicked) {
  std::ofstream(path("Blackhost.txt")) << "kept\n";
  dialog.action.user_click();
  EXPECT_EQ(read_file(path("Blackhost.txt")), "kept\n");
  EXPECT_THAT(activity(), ElementsAre("failed: export IPNumber Blackhost " + file("Blackhost.txt")));
  EXPECT_THAT(host.offered, IsEmpty());
  dialog.overwrite.user_click();
  dialog.action.user_click();
  EXPECT_EQ(read_file(path("Blackhost.txt")), "192.0.2.1\n");
}

TEST_F(TransferDialogTest, TheChosenActionNamesTheButtonAndRuns) {
  std::ofstream(path("list.txt")) << "192.0.2.1\n192.0.2.2\n";
  dialog.File1.refresh();
  const auto index = static_cast<std::int64_t>(dialog.File1.items().find("list.txt"));
  dialog.File1.user_choose(index);
  EXPECT_EQ(dialog.source.text(), to_product_path(path("list.txt")));

  dialog.import_.user_click();
  EXPECT_EQ(dialog.action.caption(), "Import");
  dialog.source.user_type("  " + dialog.source.text() + " ");
  dialog.action.user_click();
  EXPECT_EQ(dialog.source.text(), to_product_path(path("list.txt")));
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
  EXPECT_EQ(dialog.result.caption(), "");
  dialog.source.user_type("lists\\export\\list.txt");
  dialog.action.user_click();
  EXPECT_THAT(activity(), ElementsAre("failed: export IPNumber Blackhost " + file("export/list.txt")));
  EXPECT_EQ(dialog.result.caption(), "The reason stands under \"Activity\"");
}

TEST_F(TransferDialogTest, AFolderThatIsChosenShowsItsFiles) {
  std::filesystem::create_directories(path("old"));
  std::ofstream(path("old/one.txt")) << "x\n";
  dialog.Dir1.refresh();
  dialog.Dir1.user_choose(static_cast<std::int64_t>(dialog.Dir1.items().find("old")));
  ASSERT_EQ(dialog.File1.items().size(), 1u);
  dialog.File1.user_choose(0);
  EXPECT_EQ(dialog.source.text(), to_product_path(path("old/one.txt")));
  dialog.Drive1.user_choose(0);
  EXPECT_EQ(dialog.File1.path(), "\\");
  if (!dialog.File1.items().empty()) {  // in some machines' root folder are no files
    dialog.File1.user_choose(0);
    EXPECT_EQ(dialog.source.text(), "\\" + std::string(dialog.File1.chosen()));
  }
}

// Whatever is typed: the files that the console relies on are neither listed nor read nor written.
TEST_F(TransferDialogTest, TheConsolesOwnFilesAreOutOfReach) {
  const std::string own = "[{\"name\":\"admin\"}]\n";
  const auto accounts = folder.path() / "accounts.json";
  std::ofstream(accounts) << own;
  std::filesystem::create_symlink(accounts, path("link.txt"));
  dialog.Dir1.user_choose(0);
  EXPECT_EQ(dialog.File1.path(), to_product_path(folder.path()));
  EXPECT_TRUE(dialog.File1.items().empty());
  dialog.overwrite.user_click();
  for (OptionButton* action : {&dialog.export_, &dialog.import_, &dialog.delete_}) {
    action->user_click();
    for (const std::string& source :
         {accounts.string(), file("link.txt"), file("../accounts.json"),
          std::string("lists/../accounts.json"), (folder.path() / "new.txt").string()}) {
      forget_activity();
      dialog.source.user_type(source);
      dialog.action.user_click();
      ASSERT_EQ(console.activity().failures(), 1u) << source;
      EXPECT_THAT(console.activity()[0].error, testing::EndsWith("belongs to the console"));
      EXPECT_EQ(dialog.result.caption(), "The reason stands under \"Activity\"");
    }
  }
  EXPECT_EQ(read_file(accounts), own);
  EXPECT_FALSE(std::filesystem::exists(folder.path() / "new.txt"));
  EXPECT_THAT(rows("Blackhost", "IPNumber"), ElementsAre("192.0.2.1"));
  EXPECT_THAT(host.offered, IsEmpty());
}

TEST_F(TransferDialogTest, TheResultHasCounts) {
  std::ofstream(path("list.txt")) << "# ours\n192.0.2.1\n192.0.2.2\n192.0.2.2\n";
  dialog.source.user_type(file("list.txt"));
  dialog.import_.user_click();
  dialog.action.user_click();
  EXPECT_EQ(dialog.result.caption(), "Added: 1, there already: 2, comments: 1, lines without an entry: 0");
  dialog.delete_.user_click();
  dialog.action.user_click();
  EXPECT_EQ(dialog.result.caption(), "Removed: 2, comments: 1, lines without an entry: 0");
}

// The folder is given as on a command line, and the paths of the dialog are absolute.
TEST_F(TransferDialogTest, ARelativeFolderIsNotDoubled) {
  Console relative(std::filesystem::relative(folder.path()), host);
  register_components(relative);
  std::filesystem::remove(folder.path() / "lists");
  TransferDialog other(relative, list::black_addresses, "IP Blacklist");
  EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "lists"));
  other.action.user_click();
  EXPECT_EQ(read_file(path("Blackhost.txt")), "192.0.2.1\n");
  other.File1.user_choose(0);
  other.import_.user_click();
  other.action.user_click();
  EXPECT_EQ(relative.activity().failures(), 0u);
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
    std::ofstream(path(name)) << "192.0.2.9\n" << content;
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
