#include <algorithm>
#include <csignal>
#include <random>
#include <set>

#include <sys/resource.h>

#include "components/sqlite/database_fixture.h"
#include "components/sqlite/list_reader.h"
#include "components/sqlite/list_transfer.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ListFileTest : public DatabaseTest {
 protected:
  bool import(const std::string& file) { return database->import_("entry", "blacklist", file); }
  bool remove(const std::string& file) { return database->delete_("entry", "blacklist", file); }
  bool write(const std::string& file, bool overwrite, const Statement& condition = {}) {
    return database->export_("entry", "blacklist", condition, path(file).string(), overwrite);
  }

  std::string indexes() {
    return other.ask("SELECT sql FROM sqlite_schema WHERE tbl_name='blacklist' ORDER BY name");
  }

  // The names in the folder, without the database's own.
  std::vector<std::string> files() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      const std::string name = entry.path().filename().string();
      if (!name.starts_with("zrl.db")) result.push_back(name);
    }
    std::sort(result.begin(), result.end());
    return result;
  }
};

std::string joined(const std::vector<std::string>& entries) {
  std::string result;
  for (const std::string& entry : entries) result.append(entry).append("\n");
  return result;
}

TEST_F(ListFileTest, WhatFilesMean) {
  const std::string longest(sqlite::ListReader::longest_line, 'x');
  const struct {
    std::string content;
    std::vector<std::string> entries;
  } cases[] = {
      {"", {}},
      {"\xEF\xBB\xBF", {}},
      {"\n\r\n \t \r\n", {}},
      {"a\nb", {"a", "b"}},
      {"\xEF\xBB\xBF"
       "a\r\n  b c\t\r\n\r\na\r\n",
       {"a", "b c"}},
      {"a\n\xEF\xBB\xBF"
       "b\n",
       {"a",
        "\xEF\xBB\xBF"
        "b"}},
      {"it's\nx\ry\n'; DROP TABLE konf\n", {"it's", "x\ry", "'; DROP TABLE konf"}},
      {"\xC3\xA4\n\xFF"
       "b\nc\xC3\n",
       {"\xC3\xA4",
        "\xEF\xBF\xBD"
        "b",
        "c\xEF\xBF\xBD"}},
      {"A\na\nA\n", {"A"}},
      {longest + "\n" + longest + "\r\n" + longest.substr(1), {longest, longest.substr(1)}},
  };
  for (const auto& [content, entries] : cases) {
    SCOPED_TRACE(content.substr(0, 40));
    EXPECT_TRUE(import(write_file("in.txt", content)));
    EXPECT_THAT(list("blacklist"), ElementsAreArray(entries));
    execute(insert_into("blacklist", "entry", "bystander"));
    EXPECT_TRUE(remove(write_file("in.txt", content)));
    EXPECT_THAT(list("blacklist"), ElementsAre("bystander"));
    execute("DELETE FROM blacklist");
  }
}

TEST_F(ListFileTest, RefusesWhatIsNoList) {
  execute(insert_into("blacklist", "entry", "kept"));
  std::filesystem::create_directory(path("folder"));
  const std::string good = "new\nkept\n";
  const std::string refused[] = {
      path("missing.txt").string(),
      path("folder").string(),
      write_file("zero.txt", good + std::string("a\0b\n", 4)),
      write_file("utf16.txt", std::string("\xFF\xFE"
                                          "a\0\n\0",
                                          6)),
      write_file("long.txt", good + std::string(sqlite::ListReader::longest_line + 1, 'x') + "\n"),
      write_file("endless.txt", good + std::string(20 * sqlite::ListReader::longest_line, ' ')),
  };
  for (const std::string& file : refused) {
    EXPECT_THAT(failure_of([&] { import(file); }), HasSubstr(file));
    EXPECT_THAT(failure_of([&] { remove(file); }), HasSubstr(file));
  }
  EXPECT_THAT(list("blacklist"), ElementsAre("kept"));
  EXPECT_THAT(failure_of([&] { database->import_("nothing", "blacklist", write_file("in.txt", "a")); }),
              HasSubstr("no column named nothing"));
}

// Small files are worked off entry by entry, large ones in bulk, very large ones in several passes;
// whichever way, the outcome is the same.
TEST_F(ListFileTest, AllWaysLeadToTheSameRows) {
  const struct {
    int rows, lines, kinds;
    std::uint64_t entries_a_pass;
  } cases[] = {
      {0, 300, 200, 1000},           {300, 300, 400, 1000},         {0, 12000, 9000, 1000000},
      {9000, 12000, 15000, 1000000}, {50000, 6500, 60000, 1000000}, {60000, 5500, 90000, 1000000},
      {7000, 12000, 15000, 3000},    {9000, 9000, 9000, 1000000},
  };
  std::mt19937 random(7);
  for (const auto& [rows, lines, kinds, entries_a_pass] : cases) {
    SCOPED_TRACE(std::to_string(rows) + " rows, " + std::to_string(lines) + " lines");
    const auto draw = [&, most = kinds](int count) {
      std::vector<std::string> result;
      for (int i = 0; i < count; ++i) {
        result.push_back("host" + std::to_string(random() % static_cast<unsigned>(most)) + ".example");
      }
      return result;
    };
    const std::vector<std::string> before = draw(rows);
    const std::vector<std::string> file = draw(lines);
    const std::string name = write_file("in.txt", joined(file));
    execute("DELETE FROM blacklist");
    conn->begin_transaction();
    for (const std::string& entry : before) execute(insert_into("blacklist", "entry", entry));
    conn->commit();
    const std::string indexes_before = indexes();

    sqlite::SqliteConnection own(path("zrl.db"), {}, console);
    sqlite::ListTransfer transfer{own.session(sqlite::Engine::Use::read), "entry", "blacklist", console,
                                  entries_a_pass};

    std::vector<std::string> expected = before;
    std::set<std::string> known(before.begin(), before.end());
    for (const std::string& entry : file) {
      if (known.insert(entry).second) expected.push_back(entry);
    }
    sqlite::import_list(transfer, name);
    ASSERT_EQ(list("blacklist"), expected);

    const std::set<std::string> gone(file.begin() + 1, file.end());
    write_file("in.txt", joined({file.begin() + 1, file.end()}));
    std::erase_if(expected, [&](const std::string& entry) { return gone.contains(entry); });
    sqlite::delete_list(transfer, name);
    ASSERT_EQ(list("blacklist"), expected);
    EXPECT_EQ(indexes(), indexes_before);
    EXPECT_EQ(other.ask("PRAGMA integrity_check"), "ok");
  }
}

// A failure at the last entry takes everything back, the indexes too.
TEST_F(ListFileTest, AllOrNothing) {
  for (const int lines : {10, 20000}) {
    SCOPED_TRACE(lines);
    other.run(
        "DROP TRIGGER IF EXISTS stop; DELETE FROM blacklist; INSERT INTO blacklist VALUES ('1'), ('x')");
    const std::string before = indexes();
    std::string content;
    for (int i = 0; i < lines; ++i) content.append(std::to_string(i)).append("\n");
    const std::string file = write_file("in.txt", content + "x\nlast\n");
    other.run(
        "CREATE TRIGGER stop BEFORE INSERT ON blacklist WHEN new.entry='last' BEGIN"
        " SELECT raise(ABORT, 'stopped'); END");
    EXPECT_THAT(failure_of([&] { import(file); }), HasSubstr("stopped"));
    other.run(
        "DROP TRIGGER stop; CREATE TRIGGER stop BEFORE DELETE ON blacklist WHEN old.entry='x' BEGIN"
        " SELECT raise(ABORT, 'stopped'); END");
    EXPECT_THAT(failure_of([&] { remove(file); }), HasSubstr("stopped"));
    EXPECT_THAT(list("blacklist"), ElementsAre("1", "x"));
    other.run("DROP TRIGGER stop");
    EXPECT_EQ(indexes(), before);
    EXPECT_TRUE(import(file));
    EXPECT_EQ(list("blacklist").size(), static_cast<std::size_t>(lines) + 2);
  }
}

TEST_F(ListFileTest, Exports) {
  other.run("INSERT INTO blacklist VALUES ('z'), (''), (NULL), ('a\nb'), ('it''s'), ('z')");
  EXPECT_TRUE(write("out.txt", false));
  EXPECT_EQ(read_file("out.txt"), "z\na b\nit's\nz\n");
  write_file("out.txt", "theirs");
  EXPECT_FALSE(write("out.txt", false));
  EXPECT_EQ(read_file("out.txt"), "theirs");
  EXPECT_TRUE(write("out.txt", true, "entry='" + value("z") + "'"));
  EXPECT_EQ(read_file("out.txt"), "z\nz\n");
  EXPECT_TRUE(write("none.txt", true, Statement("entry='nowhere'")));
  EXPECT_EQ(read_file("none.txt"), "");
  EXPECT_THAT(files(), ElementsAre("none.txt", "out.txt"));
}

TEST_F(ListFileTest, ExportsThatFailLeaveNoTrace) {
  execute(insert_into("blacklist", "entry", "a"));
  std::filesystem::create_directory(path("folder"));
  EXPECT_NE(failure_of([&] { write("folder", true); }), "none");
  EXPECT_NE(failure_of([&] { write("none/out.txt", true); }), "none");
  EXPECT_THAT(failure_of([&] { write("zrl.db", true); }), HasSubstr("belongs to the database"));
  EXPECT_THAT(failure_of([&] { write("zrl.db-wal", true); }), HasSubstr("belongs to the database"));
  EXPECT_NE(failure_of([&] { write("out.txt", true, Statement("nothing=1")); }), "none");
  EXPECT_THAT(files(), ElementsAre("folder"));
  EXPECT_THAT(list("blacklist"), ElementsAre("a"));
}

TEST_F(ListFileTest, ExportToAFullDisk) {
  for (int i = 0; i < 3000; ++i) execute(insert_into("blacklist", "entry", "some-host-" + std::to_string(i)));
  write_file("out.txt", "theirs");
  EXPECT_TRUE(in_child([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{10000, 10000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    OtherProgram reader(path("zrl.db"));
    const auto own = sqlite::make(console);
    return failure_of([&] { own->export_("entry", "blacklist", {}, path("out.txt").string(), true); }) !=
               "none" &&
           failure_of([&] { own->export_("entry", "blacklist", {}, path("new.txt").string(), false); }) !=
               "none";
  }));
  EXPECT_EQ(read_file("out.txt"), "theirs");
  EXPECT_THAT(files(), ElementsAre("out.txt"));
}

TEST_F(ListFileTest, ReportsProgressAndRefusesToNest) {
  std::string content;
  for (int i = 0; i < 70000; ++i) content.append(std::to_string(i)).append("\n");
  const std::string file = write_file("in.txt", content);
  int reports = 0;
  std::string nested;
  console.on_progress = [&](const Progress& progress) {
    ++reports;
    EXPECT_LE(progress.done, progress.total);
    nested = failure_of([&] { database->import_("entry", "whitelist", file); });
  };
  EXPECT_TRUE(database->import_("entry", "blacklist", file));
  EXPECT_GE(reports, 2);
  EXPECT_THAT(nested, HasSubstr("being transferred"));
  EXPECT_EQ(list("blacklist").size(), 70000U);
  EXPECT_THAT(list("whitelist"), IsEmpty());
}

// The component's own connection follows the connection string.
TEST_F(ListFileTest, UsesTheDatabaseOfTheSettings) {
  std::string& provider = console.settings["dataprovider"];
  provider = "sqlite:one.db";
  const std::string file = write_file("in.txt", "a\n");
  database->import_("entry", "blacklist", file);
  provider = "sqlite:two.db";
  database->import_("entry", "blacklist", file);
  provider = "";
  EXPECT_THAT(failure_of([&] { database->import_("entry", "blacklist", file); }),
              HasSubstr("no connection string"));
  EXPECT_EQ(OtherProgram(path("one.db")).ask("SELECT entry FROM blacklist"), "a");
  EXPECT_EQ(OtherProgram(path("two.db")).ask("SELECT entry FROM blacklist"), "a");
}

}  // namespace
}  // namespace zrl::test
