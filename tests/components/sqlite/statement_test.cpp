#include "components/sqlite/database_fixture.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using StatementTest = DatabaseTest;

// Each of these is data and nothing else: it is stored, found and removed as it stands.
TEST_F(StatementTest, HostileTextsStayData) {
  const std::string texts[] = {
      "plain",
      "x; DROP TABLE blacklist",
      "\" OR \"\"=\"",
      "a\\",
      "%_*?[",
      "-- comment",
      "/*",
      "\x01\x02",
      "line\nbreak",
      "\xC3\xA4\xE2\x82\xAC",
      "\xFF\xFE",
      "NULL",
      "5",
      std::string(100000, 'x'),
  };
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 40));
    execute(insert_into("blacklist", "entry", text));
    execute(insert_into("blacklist", "entry", "bystander"));
    EXPECT_THAT(list("blacklist"), ElementsAre(text, "bystander"));
    EXPECT_THAT(list("blacklist", "entry", "entry='" + value(text) + "'"), ElementsAre(text));
    execute(delete_from("blacklist", "entry", text));
    EXPECT_THAT(list("blacklist"), ElementsAre("bystander"));
    execute("DELETE FROM blacklist");
  }
}

TEST_F(StatementTest, MalformedStatementsNeverReachTheTable) {
  execute(insert_into("blacklist", "entry", "kept"));
  const std::string zero("a\0b", 3);
  const auto malformed = [&](const Statement& statement) {
    EXPECT_THAT(failure_of([&] { execute(statement); }), StartsWith("3075: ")) << statement.text();
  };
  malformed(delete_from("blacklist", "entry", "' OR ''='"));
  malformed(delete_from("blacklist", "entry", "it's"));
  malformed(delete_from("blacklist", "entry", zero));
  malformed(Statement("DELETE FROM blacklist where entry='"));
  malformed("UPDATE iplog set status=" + number("1 OR 1"));
  malformed("DELETE FROM blacklist where entry=" + value("kept"));
  EXPECT_THAT(failure_of([&] { list("blacklist", "entry", "entry='" + value("'") + "'"); }),
              StartsWith("3075: "));
  EXPECT_THAT(failure_of([&] {
                database->count_value("select entry from blacklist where entry='" + value("'") + "'", conn);
              }),
              StartsWith("3075: "));
  EXPECT_THAT(list("blacklist"), ElementsAre("kept"));
}

TEST_F(StatementTest, TheDialectOfThePages) {
  other.run("INSERT INTO swords VALUES ('a'), ('*@b'), ('it''s c'), ('')");
  execute("DELETE FROM swords where entry=NULL");
  EXPECT_EQ(list("swords").size(), 4U);
  execute("DELETE FROM swords where entry='*@" + value("b") + "'");
  execute("delete From swords WHERE entry='it''s " + value("c") + "'");
  execute("DELETE FROM swords where entry=''");
  EXPECT_THAT(list("swords"), ElementsAre("a"));

  execute("INSERT INTO pop3 (entry) VALUES ('" + value("u,s") + "')");
  execute("UPDATE pop3 set [password]='" + value("p w") + "' where entry='" + value("u,s") + "'");
  execute("UPDATE pop3 set maxsize=" + number(" -7 ") + " where entry='" + value("u,s") + "'");
  EXPECT_EQ(other.ask("SELECT password, maxsize, typeof(maxsize) FROM pop3"), "p w|-7|integer");
  EXPECT_THAT(failure_of([&] { execute("INSERT INTO pop3 (entry) VALUES ('" + value("u,s") + "')"); }),
              HasSubstr("UNIQUE"));

  other.run("INSERT INTO iplog (IPNumber) VALUES ('10.0.0.1')");
  EXPECT_THAT(failure_of([&] { execute("DELETE * FROM iplog"); }), StartsWith("1: "));
  EXPECT_THAT(failure_of([&] { execute("DELETE FROM iplog; DELETE FROM iplog"); }),
              HasSubstr("more than one"));
  EXPECT_THAT(failure_of([&] { execute("DELETE FROM iplog where IPNumber=\"10.0.0.1\""); }),
              HasSubstr("no such column"));
  EXPECT_EQ(database->count_value(Statement("select * from iplog"), conn), 1);
  execute("DELETE FROM iplog;");
  EXPECT_EQ(database->count_value(Statement("select status from iplog where status=0"), conn), 0);
}

// More shapes than are kept compiled, a schema that changes under them, and a shape that is used
// again right after it failed.
TEST_F(StatementTest, CompiledStatementsOutliveChanges) {
  const auto insert = [&] { execute(insert_into("words", "entry", "w")); };
  insert();
  other.run("ALTER TABLE words ADD COLUMN more TEXT DEFAULT 'm'");
  insert();
  other.run("DROP TABLE words");
  EXPECT_THAT(failure_of(insert), HasSubstr("no such table"));
  other.run("CREATE TABLE words (entry TEXT UNIQUE)");
  insert();
  EXPECT_THAT(failure_of(insert), HasSubstr("UNIQUE"));
  execute(delete_from("words", "entry", "w"));
  insert();
  Statement shape("DELETE FROM words where entry='no'");
  for (int i = 0; i < 300; ++i) {
    shape.append(" ");
    execute(shape);
  }
  EXPECT_THAT(list("words"), ElementsAre("w"));
}

TEST_F(StatementTest, TransactionsCountAsAWholeOrNotAtAll) {
  conn->begin_transaction();
  execute(insert_into("words", "entry", "a"));
  database->add_to_words("b", conn);
  EXPECT_EQ(other.ask("SELECT count(*) FROM words"), "0");
  conn->roll_back();
  EXPECT_THAT(list("words"), IsEmpty());

  conn->begin_transaction();
  EXPECT_NE(failure_of([&] { conn->begin_transaction(); }), "none");
  EXPECT_NE(failure_of([&] { execute("DELETE * FROM words"); }), "none");
  EXPECT_NE(failure_of([&] { database->add_to_words("", conn); }), "none");
  database->set_option("poptime", 5, conn);
  conn->commit();
  EXPECT_EQ(other.ask("SELECT value FROM konf"), "5");

  conn->begin_transaction();  // one in which nothing happens
  conn->commit();
  EXPECT_NE(failure_of([&] { conn->commit(); }), "none");
  EXPECT_NE(failure_of([&] { conn->roll_back(); }), "none");
}

TEST_F(StatementTest, ReadingInATransactionKeepsNobodyAway) {
  other.run("INSERT INTO words VALUES ('a')");
  conn->begin_transaction();
  EXPECT_EQ(conn->open(Statement("SELECT * FROM words"), Connection::Access::read_only)->count(), 1);
  other.run("INSERT INTO words VALUES ('b')");
  EXPECT_THAT(list("words"), ElementsAre("a"));
  conn->commit();
  EXPECT_THAT(list("words"), ElementsAre("a", "b"));
}

}  // namespace
}  // namespace zrl::test
