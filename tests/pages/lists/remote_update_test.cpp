#include "pages/lists/remote_update.h"

#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/contracts/downloader.h"
#include "pages/settings/general_page.h"
#include "support/fake_update_server.h"
#include "support/installed_console.h"

namespace zrl {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

// The update of all lists by the components of the build, from a server on loopback.
class RemoteUpdateTest : public testing::Test, public test::InstalledConsole {
 protected:
  RemoteUpdateTest() {
    for (const char* name : {"http_proxy", "all_proxy", "ALL_PROXY"}) ::unsetenv(name);
    name_server(server.address() + "/lists");
  }

  void name_server(const std::string& address) {
    console.settings().regwrite_string(console.settings().path_of("updateurl"), address);
  }
  void update() {
    GeneralPage page(console);
    page.initialise();
    forget_activity();
    page.Command1.user_click();
    EXPECT_TRUE(page.Command1.enabled());
  }
  // "step: error" of what failed, the merges of files aside.
  std::vector<std::string> failures() {
    std::vector<std::string> result;
    for (std::uint64_t i = console.activity().first(); i < console.activity().total(); ++i) {
      const ActivityRecord::Entry entry = console.activity()[i];
      if (!entry.ok && entry.text.find("/download/") == entry.text.npos) {
        result.push_back(std::string(entry.text) + ": " + std::string(entry.error));
      }
    }
    return result;
  }

  test::FakeUpdateServer server;
};

TEST_F(RemoteUpdateTest, EveryListTakesWhatIsPublishedForIt) {
  struct List {
    Literal table;
    Literal column;
    const char* add;
    const char* remove;
  };
  const List lists[] = {
      {"files", "files", "addfiles.txt", "delfiles.txt"},
      {"extension", "extension", "addextension", "delextension.txt"},
      {"blacklist", "entry", "addblack.txt", "delblack.txt"},
      {"whitelist", "entry", "addwhite.txt", "delwhite.txt"},
      {"Blackhost", "IPNumber", "addblackip.txt", "delblackip.txt"},
      {"Whitehost", "IPNumber", "addwhiteip.txt", "delwhiteip.txt"},
      {"swords", "entry", "addsubject.txt", "delsubject.txt"},
      {"words", "entry", "addbody.txt", "delbody.txt"},
      {"subjectwhite", "entry", "addsubjectwhite.txt", "delsubjectwhite.txt"},
      {"blackmail", "entry", "adduserblack.txt", "deluserblack.txt"},
  };
  EXPECT_EQ(published_list_files().size(), 2 * std::size(lists));
  for (const List& list : lists) {
    execute(insert_into(list.table, list.column, "old"));
    server.publish(std::string("/lists/") + list.add, std::string("new of ") + list.add + "\nboth\n");
    server.publish(std::string("/lists/") + list.remove, "old\nboth\n");
  }
  update();
  EXPECT_THAT(failures(), IsEmpty());
  for (const List& list : lists) {
    const std::string entry = std::string("new of ") + list.add;
    const std::string table(list.table.text());
    if (table == "blackmail" || table == "subjectwhite" || table == "swords") {
      // Adding comes before removing, or the entry is in the add file of the opposite list.
      EXPECT_THAT(rows(list.table, list.column), ElementsAre(entry)) << table;
    } else {
      EXPECT_THAT(rows(list.table, list.column), UnorderedElementsAre(entry, "both")) << table;
    }
  }
  EXPECT_GT(host.progress_reports, 0);
}

TEST_F(RemoteUpdateTest, AFileThatCouldNotBeFetchedIsRecordedAndTheRestIsMerged) {
  std::ofstream(folder.path() / "download" / "addblack.txt") << "old.example\n";
  server.answer_bytes("/lists/addblack.txt", "HTTP/1.1 500 Oops\r\nContent-Length: 0\r\n\r\n");
  server.publish("/lists/addwhite.txt", "good.example\n");
  update();
  EXPECT_THAT(failures(), ElementsAre("updateall addblack.txt: the server answers with status 500"));
  EXPECT_THAT(activity(), Contains("updateall"));
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("old.example"));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("good.example"));
}

// A server that answers everything with a page for people, under the type of plain text.
TEST_F(RemoteUpdateTest, AFileThatIsNoListChangesNeitherTheGoodCopyNorTheList) {
  std::ofstream(folder.path() / "download" / "addblack.txt") << "old.example\n";
  server.publish("/lists/addblack.txt", "<html>\nSign in\n</html>\n");
  server.publish("/lists/addbody.txt", "{\"error\": \"gone\"}\n");
  server.publish("/lists/addsubject.txt", "[spam]\n# comment\n<b>\n");
  server.publish("/lists/addwhite.txt", "127.0.0.1 localhost\n0.0.0.0 good.example\n");
  update();
  EXPECT_THAT(failures(),
              ElementsAre("updateall addblack.txt: not a list file: the server sends a web page or XML",
                          "updateall addbody.txt: not a list file: the server sends JSON"));
  EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("old.example"));
  EXPECT_THAT(rows("words", "entry"), IsEmpty());
  EXPECT_THAT(rows("swords", "entry"), ElementsAre("[spam]", "<b>"));
  EXPECT_THAT(rows("whitelist", "entry"), ElementsAre("good.example"));
  EXPECT_THAT(activity(), Contains(testing::EndsWith("addwhite.txt: lines without an entry of the list: 1")));
}

TEST_F(RemoteUpdateTest, WithoutAServerTheStepFailsAndOldFilesAreMerged) {
  std::ofstream(folder.path() / "download" / "addblack.txt") << "old.example\n";
  const std::pair<std::string, const char*> cases[] = {
      {"", "no update server is named"},
      {"gopher://host/", "neither http:// nor https://"},
      {"http://127.0.0.1:" + std::to_string(test::free_port()), "no list file could be fetched"}};
  for (const auto& [address, reason] : cases) {
    name_server(address);
    execute(delete_from("blacklist", "entry", "old.example"));
    update();
    ASSERT_EQ(failures().size(), 1u);
    EXPECT_THAT(failures()[0], testing::AllOf(StartsWith("updateall: "), HasSubstr(reason)));
    EXPECT_THAT(rows("blacklist", "entry"), ElementsAre("old.example"));
  }
}

}  // namespace
}  // namespace zrl
