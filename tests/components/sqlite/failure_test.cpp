#include <chrono>
#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include "components/sqlite/database_fixture.h"

namespace {

int syncs = 0;

}  // namespace

// Stands in front of the C library's function, so that a test can count what reaches the disk.
extern "C" int fdatasync(int fd) {
  ++syncs;
  return static_cast<int>(::syscall(SYS_fdatasync, fd));
}

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using FailureTest = DatabaseTest;

TEST_F(FailureTest, LockedDatabase) {
  execute(insert_into("blacklist", "entry", "a"));
  const std::string file = write_list("in.txt", "b\n");
  const std::vector<std::function<void()>> writers = {
      [&] { execute("DELETE FROM blacklist"); },
      [&] { database->set_option("a", 1, conn); },
      [&] { database->add_to_blackdomain("b", conn); },
      [&] { database->import_(list::black_domains, file); },
      [&] { database->delete_(list::black_domains, file); },
      [&] {
        conn->open(Statement("SELECT * FROM blacklist"), Connection::Access::updatable)->delete_current();
      },
      [&] {
        conn->begin_transaction();
        execute("DELETE FROM blacklist");
      },
  };
  other.run("BEGIN IMMEDIATE; INSERT INTO blacklist VALUES ('theirs')");
  for (std::size_t i = 0; i < writers.size(); ++i) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(failure_of(writers[i]), "5: database is locked") << i;
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(150)) << i;
    EXPECT_THAT(list("blacklist"), ElementsAre("a")) << i;
  }
  conn->roll_back();
  other.run("COMMIT");
  execute(insert_into("blacklist", "entry", "b"));
  EXPECT_THAT(list("blacklist"), ElementsAre("a", "theirs", "b"));
}

TEST_F(FailureTest, FullDatabase) {
  execute("PRAGMA max_page_count=100");
  const std::string large(100000, 'x');
  execute(insert_into("blacklist", "entry", "before"));
  const auto fill = [&] {
    for (int i = 0; i < 10; ++i) execute(insert_into("words", "entry", large));
  };
  EXPECT_THAT(failure_of(fill), StartsWith("13: "));
  const std::string words = other.ask("SELECT count(*) FROM words");
  conn->begin_transaction();
  execute(insert_into("blacklist", "entry", "lost"));
  EXPECT_THAT(failure_of(fill), StartsWith("13: "));
  if (failure_of([&] { conn->commit(); }) == "none") {
    execute("DELETE FROM blacklist where entry='lost'");
  }
  EXPECT_THAT(list("blacklist"), ElementsAre("before"));
  EXPECT_EQ(other.ask("SELECT count(*) FROM words"), words);
  execute("DELETE FROM words");
  execute(insert_into("blacklist", "entry", "after"));
  EXPECT_THAT(list("blacklist"), ElementsAre("before", "after"));
  EXPECT_EQ(other.ask("PRAGMA integrity_check"), "ok");
}

// What went before is undone at once, nothing is written any more, and reading goes on.
TEST_F(FailureTest, AFailureOfTheEngineDropsTheTransaction) {
  execute("PRAGMA max_page_count=100");
  execute(insert_into("blacklist", "entry", "before"));
  const std::string large(400000, 'x');
  conn->begin_transaction();
  execute(insert_into("blacklist", "entry", "lost"));
  EXPECT_THAT(failure_of([&] { execute("INSERT INTO blacklist (none) VALUES (1)"); }), StartsWith("1: "));
  EXPECT_THAT(list("blacklist"), ElementsAre("before", "lost"));
  EXPECT_THROW(execute(insert_into("words", "entry", large)), EngineFailure);
  other.run("INSERT INTO swords VALUES ('theirs')");
  EXPECT_THAT(list("blacklist"), ElementsAre("before"));
  EXPECT_THAT(failure_of([&] { database->add_to_blackdomain("late", conn); }), HasSubstr("not run: "));
  EXPECT_THAT(failure_of([&] { conn->commit(); }), StartsWith("13: "));
  execute(insert_into("blacklist", "entry", "after"));
  EXPECT_THAT(list("blacklist"), ElementsAre("before", "after"));
}

TEST_F(FailureTest, FullDiskDuringAnImport) {
  std::string content;
  for (int i = 0; i < 50000; ++i) content.append("some-host-").append(std::to_string(i)).append("\n");
  const std::string file = write_list("in.txt", content);
  execute(insert_into("blacklist", "entry", "before"));
  EXPECT_TRUE(in_child([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{600000, 600000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const auto own = sqlite::make(console);
    return failure_of([&] { own->import_(list::black_domains, file); }) != "none";
  }));
  EXPECT_THAT(list("blacklist"), ElementsAre("before"));
  EXPECT_EQ(other.ask("SELECT name FROM sqlite_schema WHERE tbl_name='blacklist' AND type='index'"),
            "blacklist_entry");
  database->import_(list::black_domains, file);
  EXPECT_EQ(other.ask("PRAGMA integrity_check"), "ok");
}

TEST_F(FailureTest, ReadOnlyFile) {
  execute(insert_into("blacklist", "entry", "a"));
  EXPECT_TRUE(in_child([&] {
    ::chmod(folder.path().c_str(), 0777);
    for (const char* ending : {"", "-wal", "-shm"}) ::chmod((path("zrl.db").string() + ending).c_str(), 0444);
    if (::getuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return false;
    const auto own = sqlite::make(console);
    ConnectionHandle reader = own->open_database("sqlite:zrl.db");
    return own->get_db_array(reader, "blacklist", "entry", {})[0] == "a" &&
           failure_of([&] { reader->execute(Statement("DELETE FROM blacklist")); }).starts_with("8: ");
  }));
  EXPECT_THAT(list("blacklist"), ElementsAre("a"));
}

TEST_F(FailureTest, CorruptFile) {
  for (int i = 0; i < 5000; ++i) execute(insert_into("blacklist", "entry", std::to_string(i)));
  other.run("PRAGMA wal_checkpoint(TRUNCATE)");
  std::string bytes = read_file("zrl.db");
  std::fill(bytes.begin() + 8192, bytes.end(), '\x5A');
  write_file("broken.db", bytes);
  write_file("short.db", read_file("zrl.db").substr(0, 4096));
  for (const char* provider : {"sqlite:broken.db", "sqlite:short.db"}) {
    const std::string failure = failure_of([&] {
      ConnectionHandle broken = database->open_database(provider);
      for (const Literal table : {Literal("blacklist"), Literal("whitelist"), Literal("words")}) {
        database->get_db_array(broken, table, "entry", {});
      }
    });
    EXPECT_THAT(failure, StartsWith("11: ")) << provider;
  }
}

// A file from anywhere may be made to cost as much as it can, and a statement may be mistyped.
TEST_F(FailureTest, WhatAFileOrAStatementAsksForIsBounded) {
  EXPECT_THAT(failure_of([&] { execute("DELETE FROM blacklist WHERE entry=\"typo\""); }),
              HasSubstr("no such column"));
  std::string view = "CREATE VIEW dear AS SELECT 'a' AS entry";
  for (int i = 0; i < 60; ++i) view += " UNION ALL SELECT 'a'";
  other.run(view);
  EXPECT_THAT(failure_of([&] { list("dear"); }), HasSubstr("too many terms"));
}

// What is written must not vanish in a file that has no name any more.
TEST_F(FailureTest, FileThatIsGoneOrReplaced) {
  const auto backup = sqlite::make(console);
  {
    ConnectionHandle made = backup->open_database("sqlite:backup.db");
    made->execute(insert_into("blacklist", "entry", "restored"));
  }
  execute(insert_into("blacklist", "entry", "old"));
  for (const char* ending : {"", "-wal", "-shm"}) std::filesystem::remove(path("zrl.db").string() + ending);
  EXPECT_THAT(failure_of([&] { execute(insert_into("blacklist", "entry", "x")); }),
              HasSubstr("does not exist"));
  EXPECT_THAT(failure_of([&] { list("blacklist"); }), HasSubstr("does not exist"));
  EXPECT_FALSE(std::filesystem::exists(path("zrl.db")));
  std::filesystem::rename(path("backup.db"), path("zrl.db"));
  EXPECT_THAT(list("blacklist"), ElementsAre("restored"));
  execute(insert_into("blacklist", "entry", "x"));
  EXPECT_EQ(OtherProgram(path("zrl.db")).ask("SELECT entry FROM blacklist"), "restored|x");
}

// The disk is made to take a finished action once, and only if it wrote.
TEST_F(FailureTest, SettlesOnce) {
  const auto syncs_of = [](const std::function<void()>& action) {
    const int before = syncs;
    action();
    return syncs - before;
  };
  conn->settle();
  EXPECT_EQ(syncs_of([&] {
              for (int i = 0; i < 50; ++i) execute(insert_into("words", "entry", std::to_string(i)));
              database->set_option("a", 1, conn);
            }),
            0);
  EXPECT_EQ(syncs_of([&] { conn->settle(); }), 1);
  EXPECT_EQ(syncs_of([&] {
              list("words");
              failure_of([&] { execute("DELETE * FROM words"); });
              execute("DELETE FROM words where entry='none'");
              conn->settle();
            }),
            0);
  database->CreateTable(conn, "scriptengine", "scriptname text");
  EXPECT_EQ(syncs_of([&] { conn->settle(); }), 1);
  const std::string file = write_list("in.txt", "a\n");
  EXPECT_GE(syncs_of([&] { database->import_(list::black_domains, file); }), 1);
}

}  // namespace
}  // namespace zrl::test
