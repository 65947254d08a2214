#include "components/sqlite/database_fixture.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

using OperationTest = DatabaseTest;

TEST_F(OperationTest, OptionsAreTexts) {
  EXPECT_TRUE(database->read_option("checkmx", conn).empty());
  EXPECT_EQ(database->read_string("welcome", conn), "");
  database->set_option("checkmx", 1, conn);
  database->set_option("checkmx", -70000, conn);
  EXPECT_EQ(database->read_option("checkmx", conn).text, "-70000");
  EXPECT_EQ(database->read_string("checkmx", conn), "-70000");
  database->set_string("welcome", "220 it's 'me'", conn);
  EXPECT_EQ(database->get_option("welcome", conn).text, "220 it's 'me'");
  database->set_string("welcome", "", conn);
  EXPECT_EQ(other.ask("SELECT value, typeof(value) FROM konf WHERE ID='welcome'"), "|text");
  EXPECT_EQ(other.ask("SELECT count(*) FROM konf"), "2");
  EXPECT_TRUE(database->read_option("CHECKMX", conn).empty());
  other.run("UPDATE konf SET value=7 WHERE ID='checkmx'");
  EXPECT_EQ(database->read_option("checkmx", conn).to_int16(), 7);
}

TEST_F(OperationTest, CountersAddUp) {
  database->addbytes(1LL << 40, conn);
  database->addbytes(5, conn);
  database->set_string("adddropps", "none", conn);
  database->adddropps(2, conn);
  database->addconnections(1, conn);
  EXPECT_EQ(other.ask("SELECT ID, value FROM konf ORDER BY ID"),
            "addbytes|1099511627781|addconnections|1|adddropps|2");
}

TEST_F(OperationTest, EntriesMoveBetweenOppositeLists) {
  using Operation = void (Database::*)(std::string_view, ConnectionHandle&);
  const struct {
    Operation add;
    Literal own, opposite, column;
  } cases[] = {
      {&Database::add_to_blackhost, "Blackhost", "Whitehost", "IPNumber"},
      {&Database::add_to_whitehost, "Whitehost", "Blackhost", "IPNumber"},
      {&Database::add_to_blackdomain, "blacklist", "whitelist", "entry"},
      {&Database::add_to_whitedomain, "whitelist", "blacklist", "entry"},
  };
  for (const auto& [add, own, opposite, column] : cases) {
    SCOPED_TRACE(own.text());
    execute("DELETE FROM " + own);
    execute("DELETE FROM " + opposite);
    for (const char* entry : {"a", "x", "b", "x"}) execute(insert_into(own, column, entry));
    for (const char* entry : {"x", "y", "x"}) execute(insert_into(opposite, column, entry));
    ((*database).*add)("x", conn);
    EXPECT_THAT(list(own, column), ElementsAre("a", "x", "b"));
    EXPECT_THAT(list(opposite, column), ElementsAre("y"));
    ((*database).*add)("y's", conn);
    EXPECT_THAT(list(own, column), ElementsAre("a", "x", "b", "y's"));
  }
  for (const char* entry : {"1", "2", "1"}) {
    execute(insert_into("Blackhost", "IPNumber", entry));
    execute(insert_into("Whitehost", "IPNumber", entry));
  }
  database->remove_from_iplist("1", conn);
  EXPECT_EQ(other.ask("SELECT count(*) FROM Blackhost WHERE IPNumber='1'"), "0");
  EXPECT_EQ(other.ask("SELECT count(*) FROM Whitehost WHERE IPNumber IN ('1', '2')"), "1");
}

TEST_F(OperationTest, NothingEmptyIsStored) {
  execute(insert_into("Whitehost", "IPNumber", "kept"));
  for (const auto add :
       {&Database::add_to_blackhost, &Database::add_to_whitehost, &Database::add_to_blackdomain,
        &Database::add_to_whitedomain, &Database::add_to_swords, &Database::add_to_words}) {
    for (const char* blank : {"", " \t\r\n"}) {
      EXPECT_THAT(failure_of([&] { ((*database).*add)(blank, conn); }), StartsWith("380: nothing is stored"));
    }
  }
  EXPECT_EQ(
      other.ask("SELECT (SELECT count(*) FROM Blackhost), (SELECT group_concat(IPNumber) FROM Whitehost),"
                " (SELECT count(*) FROM blacklist), (SELECT count(*) FROM whitelist),"
                " (SELECT count(*) FROM swords), (SELECT count(*) FROM words)"),
      "0|kept|0|0|0|0");
}

TEST_F(OperationTest, KeywordsStandOnce) {
  database->add_to_swords("free", conn);
  database->add_to_swords("free", conn);
  database->add_to_swords("Free", conn);
  database->add_to_words("pill", conn);
  EXPECT_THAT(list("swords"), ElementsAre("free"));
  EXPECT_THAT(list("words"), ElementsAre("pill"));
}

// An index whose order differs from the rows' must not show.
TEST_F(OperationTest, ArraysFollowTheInsertion) {
  other.run("INSERT INTO rwords VALUES ('z', 'last'), ('a', NULL), ('m', '')");
  EXPECT_THAT(list("rwords", "orig"), ElementsAre("z", "a", "m"));
  EXPECT_THAT(list("rwords", "repl"), ElementsAre("last", "", ""));
  EXPECT_THAT(list("rwords", "[orig]", Statement("orig<>'a'")), ElementsAre("z", "m"));
  EXPECT_THAT(list("words"), IsEmpty());
  EXPECT_THAT(failure_of([&] { list("nowhere"); }), HasSubstr("no such table"));
  EXPECT_THAT(failure_of([&] { list("words", "nothing"); }), HasSubstr("no such column"));
}

TEST_F(OperationTest, OrderedArrays) {
  other.run(
      "INSERT INTO predatalog (IPNumber, reason, status, servertime) VALUES"
      " ('3', 'spam', 2, '2004-01-03'), ('1', 'spam', 2, '2004-01-01'), ('2', 'good', 1, '2004-01-02'),"
      " ('4', 'helo', 2, '2004-01-02'), ('2', NULL, 0, '2004-01-04'), ('5', 'helo', 2, '2004-01-02')");
  EXPECT_THAT(ordered("predatalog", "IPNumber", {}, "servertime"), ElementsAre("1", "2", "4", "5", "3", "2"));
  EXPECT_THAT(ordered("predatalog", "IPNumber", "reason='" + value("spam") + "'", "servertime"),
              ElementsAre("1", "3"));
  EXPECT_THAT(ordered("predatalog", "reason", {}, "servertime"), ElementsAre("good", "helo", "spam", ""));
  EXPECT_THAT(ordered("predatalog", "reason", Statement("status=2"), "servertime"),
              ElementsAre("helo", "spam"));
  EXPECT_EQ(database->count_value(Statement("select status from predatalog where status=2"), conn), 4);
  EXPECT_THAT(failure_of([&] { database->count_value(Statement("delete from predatalog"), conn); }),
              StartsWith("1: "));
}

TEST_F(OperationTest, LowerCasing) {
  other.run("INSERT INTO blackmail VALUES ('A@B.C'), (NULL), ('x'), ('\xC3\x84Z')");
  database->lcase_table("blackmail", "entry");
  EXPECT_THAT(list("blackmail"), ElementsAre("a@b.c", "", "x", "\xC3\x84z"));
  EXPECT_EQ(other.ask("SELECT count(*) FROM blackmail WHERE entry IS NULL"), "1");
  other.run("CREATE TABLE mine (x TEXT UNIQUE); INSERT INTO mine VALUES ('b'), ('A'), ('a')");
  EXPECT_NE(failure_of([&] { database->lcase_table("mine", "x"); }), "none");
  EXPECT_THAT(list("mine", "x"), ElementsAre("b", "A", "a"));
}

TEST_F(OperationTest, TablesOfThePages) {
  constexpr Literal columns = "scriptname nvarchar (255) NOT NULL Primary Key, scriptcontent image NULL";
  database->CreateTable(conn, "scriptengine", columns);
  execute(insert_into("scriptengine", "scriptname", "first"));
  database->CreateTable(conn, "scriptengine", "another int");
  EXPECT_THAT(ordered("scriptengine", "scriptname", {}, "scriptname"), ElementsAre("first"));
}

TEST_F(OperationTest, Disclaimers) {
  other.run("INSERT INTO disclaimer VALUES ('out', 'plain', '<b>html</b>'), ('in', NULL, 'h')");
  EXPECT_THAT(texts(database->read_disclaimer("out")), ElementsAre("plain", "<b>html</b>"));
  EXPECT_THAT(texts(database->read_disclaimer("in")), ElementsAre("", "h"));
  EXPECT_THAT(texts(database->read_disclaimer("it's none")), ElementsAre("", ""));
}

TEST_F(OperationTest, NeedsAConnectionOfItsOwnKind) {
  ConnectionHandle none;
  EXPECT_THAT(failure_of([&] { database->read_option("a", none); }), StartsWith("91: "));
  EXPECT_THAT(failure_of([&] { database->add_to_words("a", none); }), StartsWith("91: "));
  EXPECT_THAT(failure_of([&] { database->get_db_array(none, "words", "entry", {}); }), StartsWith("91: "));
  EXPECT_THAT(failure_of([&] { database->adad(); }), StartsWith("429: "));
}

}  // namespace
}  // namespace zrl::test
