// What has been done survives a power cut: that the files are synced, when, and in which order.
#include <fstream>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/registry.h"
#include "core/text/files.h"
#include "pages/lists/domain_page.h"
#include "support/shown_page.h"
#include "support/sync_log.h"

namespace zrl {
namespace {

using test::take_syncs;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class DurabilityTest : public testing::Test, public test::ShownPage<DomainPage> {
 protected:
  std::string folder_name() const { return folder.path().filename(); }
};

TEST_F(DurabilityTest, AnActionSyncsTheDatabaseOnceAtItsEnd) {
  DomainPage& page = shown();
  page.Text1.user_type("spam.example");
  page.Command3.user_click();
  take_syncs();
  console.begin_action();
  page.Command1.user_click();  // of several statements
  EXPECT_THAT(take_syncs(), ::testing::Not(testing::Contains("proxy.db-wal")));
  console.end_action();
  EXPECT_THAT(take_syncs(), ElementsAre("proxy.db-wal"));

  page.List1.user_choose(0);  // writes nothing
  EXPECT_THAT(take_syncs(), IsEmpty());
}

// Its handler writes, and then does what no handler should.
class FailingPage : public Page {
 public:
  explicit FailingPage(Console& console) : Page(console, "failing", "Failing") {
    Command1.on_click = [this] {
      execute(insert_into("words", "entry", "spam"));
      throw std::runtime_error("raised on purpose");
    };
  }

  Button Command1{*this, "Command1", "Fail"};

 private:
  void load() override {}
};

TEST_F(DurabilityTest, AnActionWhoseHandlerRaisesIsSyncedToo) {
  FailingPage page(console);
  page.initialise();
  for (int i = 0; i < 2; ++i) {
    take_syncs();
    page.Command1.user_click();
    EXPECT_THAT(take_syncs(), testing::Contains("proxy.db-wal"));
  }
}

TEST_F(DurabilityTest, ASyncThatFailsIsRecordedAndDoneAgain) {
  DomainPage& page = shown();
  take_syncs();
  console.begin_action();
  page.Text1.user_type("spam.example");
  page.Command3.user_click();
  test::fail_next_sync();
  console.end_action();
  EXPECT_THAT(activity(), testing::Contains("failed: settle"));
  take_syncs();
  console.begin_action();
  console.wrote_to(page.conn);  // as a step does that fails itself
  console.end_action();
  EXPECT_THAT(take_syncs(), ElementsAre("proxy.db-wal"));
}

TEST_F(DurabilityTest, ARegistryValueIsSyncedByItself) {
  const auto registry = console.components().create<Registry>();
  registry->write_string("HKLM\\a", "first");
  take_syncs();
  registry->write_string("HKLM\\a", "second");
  EXPECT_THAT(take_syncs(), ElementsAre("registry.db-wal"));
  registry->delete_value("HKLM\\a");
  EXPECT_THAT(take_syncs(), ElementsAre("registry.db-wal"));
}

// The log goes to the disk before its pages go into the database, and they before the log begins anew.
TEST_F(DurabilityTest, TheLogIsSyncedBeforeItIsMergedIntoTheDatabase) {
  shown();
  take_syncs();
  execute("INSERT INTO marchive (email) VALUES (zeroblob(9000000))");
  std::vector<std::string> syncs = take_syncs();
  std::erase(syncs, folder_name());  // once for each new file in it
  EXPECT_THAT(syncs, ElementsAre("proxy.db-wal", "proxy.db"));
}

TEST_F(DurabilityTest, AReplacedFileIsSyncedUnderItsTemporaryNameAndThenItsFolder) {
  take_syncs();
  replace_file(folder.path() / "a.txt", "text");
  EXPECT_THAT(take_syncs(), ElementsAre(StartsWith(".new-"), folder_name()));
}

TEST_F(DurabilityTest, AnExportedListIsSyncedBeforeItAppears) {
  insert("blacklist", "entry", {"spam.example"});
  take_syncs();
  ASSERT_TRUE(console.components().create<Database>()->export_(
      "entry", "blacklist", {}, (folder.path() / "lists" / "out.txt").string(), true));
  EXPECT_THAT(take_syncs(), ElementsAre(StartsWith(".new-"), "lists"));
}

TEST_F(DurabilityTest, AnImportedListIsSyncedWhenTheImportReturns) {
  std::ofstream(folder.path() / "lists" / "in.txt") << "one.example\ntwo.example\n";
  const auto database = console.components().create<Database>();
  take_syncs();
  database->import_(list::black_domains, (folder.path() / "lists" / "in.txt").string());
  EXPECT_THAT(take_syncs(), testing::Contains("proxy.db-wal"));
}

}  // namespace
}  // namespace zrl
