#include "components/sqlite/schema.h"

#include <sys/stat.h>

#include "components/sqlite/database_fixture.h"
#include "core/text/files.h"
#include "core/text/paths.h"

namespace zrl::test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

using SchemaTest = DatabaseTest;

// The tables and indexes of a file, and the columns of its tables: "table konf", "konf.ID TEXT".
std::vector<std::string> contents(OtherProgram& program) {
  std::istringstream lines(program.ask(
      "SELECT group_concat(line, char(10)) FROM ("
      "SELECT type||' '||name AS line FROM sqlite_schema WHERE name NOT LIKE 'sqlite%' UNION ALL "
      "SELECT t.name||'.'||c.name||' '||c.type FROM sqlite_schema AS t, pragma_table_info(t.name) AS c "
      "WHERE t.type='table' AND t.name NOT LIKE 'sqlite%')"));
  std::vector<std::string> result;
  for (std::string line; std::getline(lines, line);) result.push_back(line);
  return result;
}

TEST_F(SchemaTest, AnEmptyFileGetsAllOfIt) {
  OtherProgram model(path("model.db"));
  model.run(std::string(sqlite::schema_text()));
  EXPECT_THAT(contents(other), ::testing::UnorderedElementsAreArray(contents(model)));
  EXPECT_EQ(other.ask("PRAGMA user_version"), std::to_string(sqlite::schema_stamp()));
  EXPECT_EQ(other.ask("PRAGMA journal_mode"), "wal");
}

// Whatever joins the schema later: it reaches the databases of the first installations, and nothing that they
// have goes but indexes whose columns others begin with.
TEST_F(SchemaTest, TheFirstDatabasesAreBroughtUpToDate) {
  OtherProgram old(path("old.db"));
  old.run(zrl::read_file(ZRL_TEST_FILES "/first_schema.sql") + "PRAGMA user_version=1;");
  old.run("INSERT INTO konf VALUES ('checkmx', '1'); INSERT INTO blacklist VALUES ('spam.example')");
  std::vector<std::string> before = contents(old);
  std::erase_if(before, [](const std::string& line) {
    const bool of_log = line.find("log_") != line.npos;
    return of_log &&
           (line.ends_with("_IPNumber") || line.ends_with("_mailfrom") || line.ends_with("_keyword"));
  });
  conn = database->open_database("sqlite:old.db");
  EXPECT_THAT(contents(old), ::testing::UnorderedElementsAreArray(contents(other)));
  EXPECT_THAT(contents(old), ::testing::IsSupersetOf(before));
  EXPECT_EQ(database->read_option("checkmx", conn).text, "1");
  EXPECT_THAT(list("blacklist"), ::testing::ElementsAre("spam.example"));
  EXPECT_EQ(old.ask("PRAGMA user_version"), std::to_string(sqlite::schema_stamp()));
}

// As if the text had had no such table when the file was last opened.
TEST_F(SchemaTest, WhatJoinedTheTextSinceReachesTheFile) {
  other.run(
      "DROP TABLE swords; DROP INDEX words_entry; ALTER TABLE avlog DROP COLUMN mailto; "
      "PRAGMA user_version=2000000000");
  conn = database->open_database("sqlite:zrl.db");
  OtherProgram model(path("model.db"));
  model.run(std::string(sqlite::schema_text()));
  EXPECT_THAT(contents(other), ::testing::UnorderedElementsAreArray(contents(model)));
}

// Choosing and ordering must not go through whole tables, nor sort them.
TEST_F(SchemaTest, StatementsFindTheirRowsByIndex) {
  const char* statements[] = {
      "SELECT value FROM konf WHERE ID='a'",
      "DELETE FROM blacklist where entry='a'",
      "DELETE FROM Whitehost where IPNumber='a'",
      "DELETE FROM blacksub where subnet='a'",
      "DELETE FROM files where files='a'",
      "DELETE FROM extension where extension='a'",
      "UPDATE rwords set repl='a' where orig='a'",
      "UPDATE pop3 set leave=1 where entry='a'",
      "SELECT plain FROM disclaimer WHERE rule='a'",
      "UPDATE iplog set status=1 where IPNumber='a'",
      "SELECT IPNumber FROM iplog ORDER BY servertime, rowid",
      "SELECT IPNumber FROM iplog WHERE status=2 ORDER BY servertime, rowid",
      "SELECT count(*) FROM (select status from iplog where status=2)",
      "DELETE FROM predatalog where mailfrom='a'",
      "UPDATE predatalog set status=1 where reason='a'",
      "SELECT IPNumber FROM predatalog WHERE reason='a' ORDER BY servertime, rowid",
      "SELECT ID FROM iplog WHERE IPNumber='a' ORDER BY servertime DESC, ID DESC",
      "SELECT ID FROM predatalog WHERE mailfrom='a' AND servertime<'b' ORDER BY servertime DESC, ID DESC",
      "SELECT ID FROM bodylog WHERE keyword='a' ORDER BY servertime DESC, ID DESC",
      "SELECT ID FROM avlog WHERE reason='a' ORDER BY servertime DESC, ID DESC",
      "SELECT count(*) FROM iplog WHERE servertime>='a' AND servertime<'b'",
      "DELETE FROM subjectlog where keyword='a'",
      "DELETE FROM bodylog where mailfrom='a'",
      "SELECT rowid FROM bodylog order by servertime desc",
      "DELETE FROM avlog where mailfrom='a'",
      "SELECT rowid FROM avlog order by servertime desc",
      "SELECT rowid FROM marchive order by servertime desc,tstamp desc",
      "SELECT rowid FROM marchive where mid='a'",
  };
  for (const char* statement : statements) {
    const std::string plan = other.ask(std::string("EXPLAIN QUERY PLAN ") + statement);
    EXPECT_THAT(plan, HasSubstr("INDEX")) << statement;
    EXPECT_THAT(plan, Not(HasSubstr("TEMP B-TREE"))) << statement << ": " << plan;
  }
}

TEST_F(SchemaTest, CompletesWhatWasMadeByHand) {
  OtherProgram hand(path("hand.db"));
  hand.run(
      "CREATE TABLE KONF (id TEXT, value); INSERT INTO konf VALUES ('a', 1), ('a', 2);"
      "CREATE TABLE iplog (IPNumber, extra); INSERT INTO iplog VALUES ('10.0.0.1', 'e');"
      "CREATE TABLE mine (x); CREATE VIEW words AS SELECT x AS entry FROM mine");
  conn = database->open_database("sqlite:hand.db");
  EXPECT_EQ(hand.ask("SELECT IPNumber, extra, status, servertime FROM iplog"), "10.0.0.1|e|0|NULL");
  database->set_option("a", 3, conn);
  EXPECT_EQ(database->read_option("a", conn).text, "3");
  database->set_option("b", 4, conn);
  EXPECT_EQ(database->read_option("b", conn).text, "4");
  EXPECT_THAT(list("words"), ::testing::IsEmpty());
  EXPECT_THAT(list("swords"), ::testing::IsEmpty());
}

TEST_F(SchemaTest, LooksCloselyOnlyWhenPrepared) {
  other.run("DROP INDEX words_entry; DROP TABLE swords");
  conn = database->open_database("sqlite:zrl.db");
  EXPECT_THAT(failure_of([&] { list("swords"); }), HasSubstr("no such table"));
  database->prep_mdb(conn);
  EXPECT_EQ(other.ask("SELECT name FROM sqlite_schema WHERE name IN ('words_entry', 'swords') ORDER BY 1"),
            "swords|words_entry");
  EXPECT_EQ(other.ask("SELECT count(*)>0 FROM sqlite_schema WHERE name='sqlite_stat1'"), "1");
}

TEST_F(SchemaTest, ConnectionStrings) {
  std::filesystem::create_directory(path("sub"));
  write_file("text.db", std::string(5000, 'x'));
  ::mkfifo(path("pipe.db").c_str(), 0600);
  const std::string absolute = "sqlite:" + path("absolute.db").string();
  for (const std::string& good : {std::string("sqlite:a b?c%41.db"), std::string("SQLite:sub\\b.db"),
                                  std::string(" sqlite:file:c.db?mode=ro "), absolute}) {
    EXPECT_EQ(failure_of([&] { database->open_database(good); }), "none") << good;
  }
  for (const char* name : {"a b?c%41.db", "sub/b.db", "file:c.db?mode=ro", "absolute.db"}) {
    EXPECT_TRUE(std::filesystem::exists(path(name))) << name;
  }
  const struct {
    const char* provider;
    const char* failure;
  } refused[] = {
      {"", "14: no connection string"},
      {"Provider=Jet;Data Source=x.mdb", "14: not a connection string"},
      {"postgresql://localhost/zrl", "14: not a connection string"},
      {"sqlite:", "names no database file"},
      {"sqlite:none/zrl.db", "folder of the database does not exist"},
      {"sqlite:sub", "is a folder"},
      {"sqlite:pipe.db", "not a regular file"},
      {"sqlite:text.db", "26: "},
  };
  for (const auto& [provider, failure] : refused) {
    EXPECT_THAT(failure_of([&] { database->open_database(provider); }), HasSubstr(failure)) << provider;
  }
  EXPECT_EQ(read_file("text.db"), std::string(5000, 'x'));
}

TEST_F(SchemaTest, SeveralProcessesMayMakeIt) {
  EXPECT_TRUE(in_child([&] {
    std::vector<pid_t> children;
    for (int i = 0; i < 6; ++i) {
      const pid_t child = ::fork();
      if (child == 0) {
        const auto own = sqlite::make(console);
        const std::string problem = failure_of([&] {
          ConnectionHandle made = own->open_database("sqlite:common.db");
          for (int n = 0; n < 20; ++n) own->addbytes(1, made);
        });
        if (problem != "none") std::fprintf(stderr, "%s\n", problem.c_str());
        ::_exit(problem == "none" ? 0 : 1);
      }
      children.push_back(child);
    }
    bool good = true;
    for (const pid_t child : children) {
      int status = 0;
      ::waitpid(child, &status, 0);
      good = good && status == 0;
    }
    return good;
  }));
  EXPECT_EQ(OtherProgram(path("common.db")).ask("SELECT value FROM konf WHERE ID='addbytes'"), "120");
}

}  // namespace
}  // namespace zrl::test
