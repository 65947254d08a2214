#include <algorithm>
#include <csignal>
#include <random>
#include <set>

#include <sys/resource.h>

#include "components/sqlite/database_fixture.h"
#include "components/sqlite/list_transfer.h"
#include "core/text/files.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ListFileTest : public DatabaseTest {
 protected:
  ListFileTest() { std::filesystem::create_directory(path("lists")); }

  ListFileResult import(const std::string& file) { return database->import_(list::black_domains, file); }
  ListFileResult remove(const std::string& file) { return database->delete_(list::black_domains, file); }
  bool write(const std::string& file, bool overwrite, const Statement& condition = {}) {
    return database->export_("entry", "blacklist", condition, list_path(file).string(), overwrite);
  }

  std::string indexes() {
    return other.ask("SELECT sql FROM sqlite_schema WHERE tbl_name='blacklist' ORDER BY name");
  }

  std::vector<std::string> files() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(path("lists"))) {
      result.push_back(entry.path().filename().string());
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
  const std::string longest(longest_list_line, 'x');
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
    import(write_list("in.txt", content));
    EXPECT_THAT(list("blacklist"), ElementsAreArray(entries));
    execute(insert_into("blacklist", "entry", "bystander"));
    remove(write_list("in.txt", content));
    EXPECT_THAT(list("blacklist"), ElementsAre("bystander"));
    execute("DELETE FROM blacklist");
  }
}

TEST_F(ListFileTest, RefusesWhatIsNoList) {
  execute(insert_into("blacklist", "entry", "kept"));
  std::filesystem::create_directories(list_path("folder"));
  const std::string good = "new\nkept\n";
  const std::string refused[] = {
      list_path("missing.txt").string(),
      list_path("folder").string(),
      write_list("zero.txt", good + std::string("a\0b\n", 4)),
      write_list("utf16.txt", std::string("\xFF\xFE"
                                          "a\0\n\0",
                                          6)),
      write_list("long.txt", good + std::string(longest_list_line + 1, 'x') + "\n"),
      write_list("endless.txt", good + std::string(20 * longest_list_line, ' ')),
  };
  for (const std::string& file : refused) {
    EXPECT_THAT(failure_of([&] { import(file); }), HasSubstr(file));
    EXPECT_THAT(failure_of([&] { remove(file); }), HasSubstr(file));
  }
  EXPECT_THAT(failure_of([&] { import(list_path("long.txt")); }), HasSubstr("line 3 is too long"));
  EXPECT_THAT(failure_of([&] { import(list_path("endless.txt")); }), HasSubstr("line 3 is too long"));
  EXPECT_THAT(list("blacklist"), ElementsAre("kept"));
  EXPECT_THAT(
      failure_of([&] { database->import_({"none", "blacklist", "nothing"}, write_list("in.txt", "a")); }),
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
    const std::string name = write_list("in.txt", joined(file));
    execute("DELETE FROM blacklist");
    conn->begin_transaction();
    for (const std::string& entry : before) execute(insert_into("blacklist", "entry", entry));
    conn->commit();
    const std::string indexes_before = indexes();

    sqlite::SqliteConnection own(path("zrl.db"), {}, console);
    sqlite::ListTransfer transfer{own.session(sqlite::Engine::Use::read), list::black_domains, console,
                                  entries_a_pass};

    std::vector<std::string> expected = before;
    std::set<std::string> known(before.begin(), before.end());
    for (const std::string& entry : file) {
      if (known.insert(entry).second) expected.push_back(entry);
    }
    const ListFileResult added = sqlite::import_list(transfer, name);
    ASSERT_EQ(list("blacklist"), expected);
    EXPECT_EQ(added.entries, file.size());
    EXPECT_EQ(added.changed, expected.size() - before.size());

    const std::set<std::string> gone(file.begin() + 1, file.end());
    write_list("in.txt", joined({file.begin() + 1, file.end()}));
    const auto removed =
        std::erase_if(expected, [&](const std::string& entry) { return gone.contains(entry); });
    EXPECT_EQ(sqlite::delete_list(transfer, name).changed, removed);
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
    const std::string file = write_list("in.txt", content + "x\nlast\n");
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
    import(file);
    EXPECT_EQ(list("blacklist").size(), static_cast<std::size_t>(lines) + 2);
  }
}

TEST_F(ListFileTest, Exports) {
  other.run("INSERT INTO blacklist VALUES ('z'), (''), (NULL), ('a\nb'), ('it''s'), ('z')");
  EXPECT_TRUE(write("out.txt", false));
  EXPECT_EQ(read_file("lists/out.txt"), "z\na b\nit's\nz\n");
  write_list("out.txt", "theirs");
  EXPECT_FALSE(write("out.txt", false));
  EXPECT_EQ(read_file("lists/out.txt"), "theirs");
  EXPECT_TRUE(write("out.txt", true, "entry='" + value("z") + "'"));
  EXPECT_EQ(read_file("lists/out.txt"), "z\nz\n");
  EXPECT_TRUE(write("none.txt", true, Statement("entry='nowhere'")));
  EXPECT_EQ(read_file("lists/none.txt"), "");
  EXPECT_THAT(files(), ElementsAre("none.txt", "out.txt"));
}

TEST_F(ListFileTest, ExportsThatFailLeaveNoTrace) {
  execute(insert_into("blacklist", "entry", "a"));
  std::filesystem::create_directories(list_path("folder"));
  EXPECT_NE(failure_of([&] { write("folder", true); }), "none");
  EXPECT_NE(failure_of([&] { write("none/out.txt", true); }), "none");
  EXPECT_NE(failure_of([&] { write("out.txt", true, Statement("nothing=1")); }), "none");
  EXPECT_THAT(files(), ElementsAre("folder"));
  EXPECT_THAT(list("blacklist"), ElementsAre("a"));
}

// Neither the console's own files nor the database, which may lie elsewhere, whatever path leads to them.
TEST_F(ListFileTest, FilesOfTheConsoleAndTheDatabaseAreOutOfReach) {
  execute(insert_into("blacklist", "entry", "a"));
  write_file("proxy.ini", "ours\n");
  write_list("in.txt", "b\n");
  std::filesystem::create_symlink("../proxy.ini", list_path("link.txt"));
  const std::string own[] = {"../proxy.ini", "../zrl.db",  "../zrl.db-wal",
                             "link.txt",     "../new.txt", "../lists/../proxy.ini"};
  for (const std::string& file : own) {
    EXPECT_THAT(failure_of([&] { write(file, true); }), HasSubstr("belongs to the console")) << file;
    EXPECT_THAT(failure_of([&] { import(list_path(file)); }), HasSubstr("belongs to the console")) << file;
    EXPECT_THAT(failure_of([&] { remove(list_path(file)); }), HasSubstr("belongs to the console")) << file;
  }
  EXPECT_EQ(read_file("proxy.ini"), "ours\n");
  EXPECT_FALSE(std::filesystem::exists(path("new.txt")));

  TemporaryFolder elsewhere;
  const std::string away = (elsewhere.path() / "away.db").string();
  console.settings["dataprovider"] = "sqlite:" + away;
  import(list_path("in.txt"));
  for (const char* ending : {"", "-wal"}) {
    EXPECT_THAT(failure_of([&] { database->export_("entry", "blacklist", {}, away + ending, true); }),
                HasSubstr("belongs to the database"));
  }
  const std::string out = (elsewhere.path() / "out.txt").string();
  EXPECT_TRUE(database->export_("entry", "blacklist", {}, out, false));
  EXPECT_EQ(zrl::read_file(out), "b\n");
}

TEST_F(ListFileTest, WhatCommentsAndHostsFilesMean) {
  const std::string content =
      "# Title\n"
      "  # indented\n"
      "#\n"
      "plain.example\n"
      "behind.example # why\n"
      "tab.example\t#why # twice\n"
      "no#comment.example\n"
      "two words\n"
      "0.0.0.0 ads.example\n"
      "127.0.0.1\tone.example two.example  localhost # comment\n"
      "::1 six.example\r\n"
      ":: none.example\n"
      "0:0:0:0:0:0:0:0 long.example\n"
      "127.0.0.1 localhost localhost.localdomain local\n"
      "255.255.255.255 broadcasthost\n"
      "fe80::1%lo0 localhost\n"
      "ff02::1 ip6-allnodes\n"
      "::1 ip6-localhost IP6-loopback\n"
      "0.0.0.0 0.0.0.0\n"
      "192.0.2.7 router.example\n"
      "192.0.2.8\n"
      "1.2.3.4.5 odd\n"
      "face.example\n"
      "REGEX[a#b]\n";
  const std::vector<std::string> domains = {
      "plain.example", "behind.example", "tab.example",   "no#comment.example", "two words",
      "ads.example",   "one.example",    "two.example",   "six.example",        "none.example",
      "long.example",  "192.0.2.8",      "1.2.3.4.5 odd", "face.example",       "REGEX[a#b]"};
  const std::string file = write_list("in.txt", content);
  ListFileResult result = import(file);
  EXPECT_THAT(list("blacklist"), ElementsAreArray(domains));
  EXPECT_EQ(result.entries, domains.size());
  EXPECT_EQ(result.changed, domains.size());
  EXPECT_EQ(result.comments, 3U);
  EXPECT_EQ(result.refused, 7U);
  EXPECT_EQ(import(file).changed, 0U);
  result = remove(file);
  EXPECT_THAT(list("blacklist"), IsEmpty());
  EXPECT_EQ(result.changed, domains.size());
  EXPECT_EQ(result.refused, 7U);

  // In other lists only whole lines are comments.
  database->import_(list::body_keywords,
                    write_list("words.txt", "# x\nREGEX[#1]\nwin #1\n[spam]\n0.0.0.0 x\n"));
  EXPECT_THAT(list("words"), ElementsAre("REGEX[#1]", "win #1", "[spam]", "0.0.0.0 x"));
}

TEST_F(ListFileTest, ExportToAFullDisk) {
  for (int i = 0; i < 3000; ++i) execute(insert_into("blacklist", "entry", "some-host-" + std::to_string(i)));
  write_list("out.txt", "theirs");
  EXPECT_TRUE(in_child([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{10000, 10000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    OtherProgram reader(path("zrl.db"));
    const auto own = sqlite::make(console);
    return failure_of([&] { own->export_("entry", "blacklist", {}, list_path("out.txt").string(), true); }) !=
               "none" &&
           failure_of([&] {
             own->export_("entry", "blacklist", {}, list_path("new.txt").string(), false);
           }) != "none";
  }));
  EXPECT_EQ(read_file("lists/out.txt"), "theirs");
  EXPECT_THAT(files(), ElementsAre("out.txt"));
}

TEST_F(ListFileTest, ReportsProgressAndRefusesToNest) {
  std::string content;
  for (int i = 0; i < 70000; ++i) content.append(std::to_string(i)).append("\n");
  const std::string file = write_list("in.txt", content);
  int reports = 0;
  std::string nested;
  console.on_progress = [&](const Progress& progress) {
    ++reports;
    EXPECT_LE(progress.done, progress.total);
    nested = failure_of([&] { database->import_(list::white_domains, file); });
  };
  EXPECT_EQ(database->import_(list::black_domains, file).changed, 70000U);
  EXPECT_GE(reports, 2);
  EXPECT_THAT(nested, HasSubstr("being transferred"));
  EXPECT_EQ(list("blacklist").size(), 70000U);
  EXPECT_THAT(list("whitelist"), IsEmpty());
}

// The component's own connection follows the connection string.
TEST_F(ListFileTest, UsesTheDatabaseOfTheSettings) {
  std::string& provider = console.settings["dataprovider"];
  provider = "sqlite:one.db";
  const std::string file = write_list("in.txt", "a\n");
  database->import_(list::black_domains, file);
  provider = "sqlite:two.db";
  database->import_(list::black_domains, file);
  provider = "";
  EXPECT_THAT(failure_of([&] { database->import_(list::black_domains, file); }),
              HasSubstr("no connection string"));
  EXPECT_EQ(OtherProgram(path("one.db")).ask("SELECT entry FROM blacklist"), "a");
  EXPECT_EQ(OtherProgram(path("two.db")).ask("SELECT entry FROM blacklist"), "a");
}

}  // namespace
}  // namespace zrl::test
