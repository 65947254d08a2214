// Databases of former consoles, whose columns compare by case, are brought over when they are opened.
#include <chrono>
#include <csignal>
#include <thread>

#include "components/sqlite/database_fixture.h"
#include "components/sqlite/schema.h"
#include "core/text/files.h"

namespace zrl::test {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class UpgradeTest : public DatabaseTest {
 protected:
  // A database as the first consoles left it, with these rows besides.
  void make_old(const std::string& name, const std::string& rows) const {
    OtherProgram old(path(name));
    old.run("PRAGMA journal_mode=WAL; BEGIN; " + zrl::read_file(ZRL_TEST_FILES "/first_schema.sql") +
            "PRAGMA user_version=1; " + rows + "; COMMIT");
  }

  // Everything that a table holds, with the rows' keys.
  static std::string content(OtherProgram& program, const std::string& table) {
    return program.ask("SELECT rowid, * FROM " + table + " ORDER BY rowid");
  }

  static std::string collation_count(OtherProgram& program) {
    return program.ask("SELECT count(*) FROM sqlite_schema WHERE type='table' AND sql LIKE '%NOCASE%'");
  }

  void expect_sound(const std::string& name) const {
    OtherProgram now(path(name));
    EXPECT_EQ(now.ask("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(now.ask("PRAGMA user_version"), std::to_string(sqlite::schema_stamp()));
    OtherProgram model(path("model.db"));
    if (model.ask("SELECT count(*) FROM sqlite_schema") == "0") model.run(std::string(sqlite::schema_text()));
    EXPECT_EQ(collation_count(now), collation_count(model));
  }
};

TEST_F(UpgradeTest, RowsKeysAndPlacesAreKept) {
  make_old(
      "old.db",
      "INSERT INTO blacklist (rowid, entry) VALUES (7, 'Spam.Example'), (3, 'a.example'), "
      "(900, 'SPAM.example'), (901, NULL), (902, x'41'), (903, 5);"
      "INSERT INTO iplog (ID, IPNumber, status, servertime) VALUES (5, 'FE80::1', 2, 't'), (9, 'x', 1, 'u');"
      "INSERT INTO rwords VALUES ('Foo', 'x'), ('bar', 'y');"
      "INSERT INTO pop3 (entry, password) VALUES ('Bob,mail.example', 's'), ('bob,mail.example', 't');"
      "CREATE TABLE scriptengine (scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL);"
      "INSERT INTO scriptengine VALUES ('Check_It', 'code');"
      "CREATE VIEW seen AS SELECT entry FROM blacklist;"
      "CREATE TRIGGER added AFTER INSERT ON blacklist BEGIN SELECT 1; END;"
      "CREATE INDEX mine ON iplog (status, lower(IPNumber))");
  OtherProgram old(path("old.db"));
  const char* tables[] = {"blacklist", "iplog", "rwords", "pop3", "scriptengine", "seen"};
  std::vector<std::string> before;
  for (const char* table : tables) {
    before.push_back(std::string(table) == "seen" ? old.ask("SELECT * FROM seen") : content(old, table));
  }
  std::vector<std::string> reported;
  console.on_progress = [&](const Progress& progress) { reported.emplace_back(progress.text); };
  conn = database->open_database("sqlite:old.db");
  for (std::size_t i = 0; i < std::size(tables); ++i) {
    EXPECT_EQ(std::string(tables[i]) == "seen" ? old.ask("SELECT * FROM seen") : content(old, tables[i]),
              before[i])
        << tables[i];
  }
  EXPECT_THAT(reported, ::testing::Contains(HasSubstr("blacklist")));
  EXPECT_THAT(reported, ::testing::Contains(HasSubstr("iplog_IPNumber_servertime")));
  EXPECT_EQ(old.ask("SELECT count(*) FROM blacklist WHERE entry='spam.example'"), "2");
  EXPECT_EQ(old.ask("SELECT count(*) FROM scriptengine WHERE scriptname='check_it'"), "1");
  EXPECT_EQ(old.ask("SELECT name FROM sqlite_schema WHERE name IN ('added', 'mine') ORDER BY 1"),
            "added|mine");
  // No account is lost, so that index can't be unique any more; that of the words can.
  EXPECT_EQ(old.ask("SELECT count(*) FROM pop3 WHERE entry='BOB,mail.example'"), "2");
  EXPECT_EQ(old.ask("SELECT name, \"unique\" FROM pragma_index_list('pop3')"), "pop3_entry|0");
  EXPECT_EQ(old.ask("SELECT \"unique\" FROM pragma_index_list('rwords')"), "1");
  EXPECT_THAT(failure_of([&] { execute(insert_into("rwords", "orig", "FOO")); }), HasSubstr("UNIQUE"));
  EXPECT_THAT(old.ask("EXPLAIN QUERY PLAN SELECT * FROM blacklist WHERE entry='a'"),
              HasSubstr("blacklist_entry"));

  reported.clear();
  conn = database->open_database("sqlite:old.db");
  EXPECT_THAT(reported, IsEmpty());
}

TEST_F(UpgradeTest, WhatCannotBeBroughtOverStaysAsItIs) {
  make_old("old.db",
           "CREATE TABLE scriptengine (scriptname text Primary Key, prio int);"
           "INSERT INTO scriptengine VALUES ('check', 1), ('Check', 2);"
           "DROP TABLE words; CREATE VIEW words AS SELECT entry FROM swords;"
           "DROP TABLE files; CREATE TABLE files (files TEXT COLLATE RTRIM)");
  OtherProgram old(path("old.db"));
  const std::string before = content(old, "scriptengine");
  conn = database->open_database("sqlite:old.db");
  EXPECT_EQ(content(old, "scriptengine"), before);
  EXPECT_EQ(old.ask("SELECT prio FROM scriptengine WHERE scriptname='Check'"), "2");
  EXPECT_EQ(old.ask("PRAGMA integrity_check"), "ok");
  EXPECT_THAT(console.failures, IsEmpty());
  EXPECT_EQ(old.ask("PRAGMA user_version"), std::to_string(sqlite::schema_stamp()));
}

// An open connection, such as the proxy's, goes on with the new comparison by itself.
TEST_F(UpgradeTest, OpenConnectionsFollow) {
  make_old("old.db", "INSERT INTO blacklist VALUES ('Spam.Example')");
  OtherProgram proxy(path("old.db"));
  EXPECT_EQ(proxy.ask("SELECT count(*) FROM blacklist WHERE entry='spam.example'"), "0");
  conn = database->open_database("sqlite:old.db");
  EXPECT_EQ(proxy.ask("SELECT count(*) FROM blacklist WHERE entry='spam.example'"), "1");
  proxy.run(
      "INSERT INTO blacklist VALUES ('spam.EXAMPLE'); DELETE FROM blacklist WHERE entry='SPAM.EXAMPLE'");
  EXPECT_EQ(proxy.ask("SELECT count(*) FROM blacklist"), "0");
  EXPECT_EQ(proxy.ask("PRAGMA integrity_check"), "ok");
}

// Enough rows that the process dies inside transactions, too.
TEST_F(UpgradeTest, AProcessMayBeKilledAtAnyMoment) {
  std::string rows;
  for (const char* table : {"blacklist", "whitelist", "mydomain", "exceptdomain"}) {
    rows += std::string(
                "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<8000) INSERT INTO ") +
            table + " SELECT 'Host' || (i * 7919 % 8000) || '.Example' FROM n;";
  }
  make_old("old.db", rows);
  OtherProgram(path("old.db")).run("PRAGMA wal_checkpoint(TRUNCATE)");
  std::string before;
  {
    OtherProgram old(path("old.db"));
    before = content(old, "blacklist") + content(old, "exceptdomain");
  }
  using Clock = std::chrono::steady_clock;
  auto pause = std::chrono::microseconds(500);
  int killed = 0;
  bool finished = false;
  for (int i = 0; !finished && i < 200; ++i, pause += pause / 4) {
    std::filesystem::copy_file(path("old.db"), path("copy.db"));
    const pid_t child = ::fork();
    if (child == 0) {
      try {
        sqlite::make(console)->open_database("sqlite:copy.db");
      } catch (...) {
        ::_exit(1);
      }
      ::_exit(0);
    }
    const auto until = Clock::now() + pause;
    int status = 0;
    while (Clock::now() < until) {
      if (::waitpid(child, &status, WNOHANG) == child) {
        finished = true;
        break;
      }
    }
    if (!finished) {
      ::kill(child, SIGKILL);
      ::waitpid(child, &status, 0);
      finished = WIFEXITED(status);
      killed += finished ? 0 : 1;
    }
    ConnectionHandle again = database->open_database("sqlite:copy.db");
    again.reset();
    expect_sound("copy.db");
    {
      OtherProgram now(path("copy.db"));
      EXPECT_EQ(content(now, "blacklist") + content(now, "exceptdomain"), before) << pause.count();
    }
    for (const char* ending : {"", "-wal", "-shm"})
      std::filesystem::remove(path("copy.db").string() + ending);
    if (HasFailure()) break;
  }
  EXPECT_TRUE(finished);
  EXPECT_GE(killed, 8);
}

TEST_F(UpgradeTest, SeveralProcessesMayOpenItAtOnce) {
  std::string rows =
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<20000) INSERT INTO blacklist "
      "SELECT 'Host' || i FROM n";
  make_old("old.db", rows);
  std::vector<pid_t> children;
  for (int i = 0; i < 5; ++i) {
    const pid_t child = ::fork();
    if (child == 0) {
      const std::string problem = failure_of([&] {
        const auto own = sqlite::make(console);
        ConnectionHandle mine = own->open_database("sqlite:old.db");
        own->addbytes(1, mine);
      });
      if (problem != "none" || !console.failures.empty()) std::fprintf(stderr, "%s\n", problem.c_str());
      ::_exit(problem == "none" && console.failures.empty() ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  expect_sound("old.db");
  EXPECT_EQ(OtherProgram(path("old.db")).ask("SELECT value FROM konf WHERE ID='addbytes'"), "5");
}

// Whoever keeps the file locked does not keep people from reading it.
TEST_F(UpgradeTest, ALockedDatabaseIsOpenedAndBroughtOverLater) {
  // All tables that joined since are there, so that only the comparison is left.
  {
    OtherProgram model(path("complete.db"));
    std::string text(sqlite::schema_text());
    for (std::size_t at; (at = text.find(" COLLATE NOCASE")) != text.npos;) text.erase(at, 15);
    model.run("PRAGMA journal_mode=WAL; " + text);
  }
  OtherProgram writer(path("complete.db"));
  writer.run("BEGIN IMMEDIATE");
  conn = database->open_database("sqlite:complete.db");
  EXPECT_THAT(list("blacklist"), IsEmpty());
  EXPECT_EQ(console.failures.size(), 1u);
  writer.run("COMMIT");
  conn = database->open_database("sqlite:complete.db");
  expect_sound("complete.db");
}

}  // namespace
}  // namespace zrl::test
