#include "components/sqlite/database_fixture.h"

namespace zrl::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using Access = Connection::Access;

class RecordSetTest : public DatabaseTest {
 protected:
  std::unique_ptr<RecordSet> open(Literal select, Access access = Access::read_only) {
    return conn->open(Statement(select), access);
  }

  // One value from each row to the end, joined by blanks.
  static std::string walk(RecordSet& set, std::string_view column) {
    std::string result;
    for (; !set.at_end(); set.move_next()) result.append(set.text(column)).append(" ");
    return result;
  }
};

TEST_F(RecordSetTest, ReadsColumnsOfEveryKind) {
  other.run(
      "INSERT INTO marchive (mid, subject, tstamp, email) VALUES ('m', NULL, 3.9, x'00ff00'), ('', 'S', -12, "
      "'7 up')");
  const Literal selects[] = {"SELECT * FROM marchive order by servertime desc,tstamp desc, mid desc",
                             "select m.* from marchive m order by ID"};
  for (const Literal select : selects) {
    SCOPED_TRACE(select.text());
    const auto set = open(select);
    ASSERT_EQ(set->count(), 2);
    EXPECT_EQ(set->text("mid"), "m");
    EXPECT_TRUE(set->is_null("subject"));
    EXPECT_EQ(set->text("SUBJECT"), "");
    EXPECT_EQ(set->number("subject"), 0);
    EXPECT_EQ(set->number("Tstamp"), 3);
    EXPECT_EQ(set->bytes("email"), std::string_view("\0\xFF\0", 3));
    set->move_next();
    EXPECT_FALSE(set->is_null("mid"));
    EXPECT_EQ(set->text("mid"), "");
    EXPECT_EQ(set->number("tstamp"), -12);
    EXPECT_EQ(set->number("email"), 7);
    EXPECT_THAT(failure_of([&] { set->text("nothing"); }), HasSubstr("nothing"));
    set->move_next();
    EXPECT_TRUE(set->at_end());
    EXPECT_THAT(failure_of([&] { set->text("mid"); }), StartsWith("9: "));
  }
}

TEST_F(RecordSetTest, Moves) {
  other.run("INSERT INTO words VALUES ('0'), ('1'), ('2'), ('3')");
  const auto set = open("SELECT * FROM words");
  const struct {
    std::int64_t by;
    const char* at;  // empty at the end
  } moves[] = {{0, "0"},  {2, "2"}, {-1, "1"}, {-9, "0"},       {3, "3"},         {1, ""},
               {-1, "3"}, {9, ""},  {-4, "0"}, {INT64_MAX, ""}, {INT64_MIN, "0"}, {INT64_MAX, ""}};
  for (const auto& [by, at] : moves) {
    set->move(by);
    EXPECT_EQ(set->at_end(), *at == '\0') << by;
    if (!set->at_end()) {
      EXPECT_EQ(set->text("entry"), at) << by;
    }
  }
  set->move_next();
  EXPECT_TRUE(set->at_end());
  set->move_first();
  EXPECT_EQ(walk(*set, "entry"), "0 1 2 3 ");
  EXPECT_TRUE(open("SELECT * FROM swords")->at_end());
  EXPECT_TRUE(open("SELECT entry FROM swords")->at_end());
}

// A set keeps the rows it was opened with. Those that are gone read as empty, and no later row takes
// their place.
TEST_F(RecordSetTest, StaysAsItWasOpened) {
  constexpr int rows = 1000;
  for (int i = 0; i < rows; ++i) execute(insert_into("marchive", "mid", std::to_string(i)));
  const auto set = open("SELECT * FROM marchive");
  execute("DELETE FROM marchive where mid='1'");
  other.run("DELETE FROM marchive WHERE mid='999'; INSERT INTO marchive (mid) VALUES ('late')");
  for (int i = 0; i < rows; ++i, set->move_next()) {
    if (i == 500) execute("UPDATE marchive set mid='changed' where mid='501'");
    if (i == 500) execute("DELETE FROM marchive where mid='502'");
    const bool gone = i == 1 || i == 502 || i == 999;
    ASSERT_EQ(set->is_null("mid"), gone) << i;
    ASSERT_EQ(set->text("mid"), gone ? "" : i == 501 ? "changed" : std::to_string(i));
  }
  EXPECT_TRUE(set->at_end());
}

// Rows are read in blocks, whose keys may rise, fall, lie far apart or in no order at all.
TEST_F(RecordSetTest, WalksInAnyOrder) {
  other.run(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<3000)"
      " INSERT INTO bodylog (keyword, mailfrom) SELECT i*7919%3001, i%11 FROM n;"
      "DELETE FROM bodylog WHERE ID%5=0");
  const Literal selects[] = {"SELECT * FROM bodylog",
                             "SELECT * FROM bodylog order by ID desc",
                             "SELECT * FROM bodylog order by keyword",
                             "SELECT * FROM bodylog where mailfrom='3' order by ID desc",
                             "SELECT * FROM bodylog where mailfrom<>'3'",
                             "SELECT * FROM bodylog order by ID>1500, -ID"};
  for (const Literal select : selects) {
    SCOPED_TRACE(select.text());
    std::string seen;
    for (const auto set = open(select); !set->at_end(); set->move_next()) {
      for (const char* column : {"ID", "IPNumber", "mailfrom", "mailto", "keyword", "servertime"}) {
        seen.append(seen.empty() ? "" : "|").append(set->is_null(column) ? "NULL" : set->text(column));
      }
    }
    EXPECT_EQ(seen, other.ask(std::string(select.text())));
  }
}

TEST_F(RecordSetTest, OutlivesItsConnection) {
  other.run("INSERT INTO words VALUES ('a'), ('b')");
  const auto set = open("SELECT * FROM words order by entry desc");
  conn.reset();
  database.reset();
  EXPECT_EQ(walk(*set, "entry"), "b a ");
}

// Views of one row stay valid while further columns of it are read.
TEST_F(RecordSetTest, ViewsLastUntilTheSetMoves) {
  other.run(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<600)"
      " INSERT INTO bodylog (IPNumber, mailfrom, keyword) SELECT 'ip'||i, 'from'||i, 'word'||i FROM n");
  const auto set = open("SELECT * from bodylog order by ID");
  for (int i = 1; !set->at_end(); set->move_next(), ++i) {
    const std::string_view ip = set->text("IPNumber");
    const std::string_view from = i > 300 ? set->text("mailfrom") : "";
    const std::string_view word = set->text("keyword");
    const std::string number = std::to_string(i);
    ASSERT_EQ(ip, "ip" + number);
    ASSERT_EQ(word, "word" + number);
    ASSERT_EQ(from, i > 300 ? "from" + number : "");
  }
}

TEST_F(RecordSetTest, LargeColumnsCostNothingUntilAskedFor) {
  constexpr std::int64_t megabyte = 1 << 20;
  for (int i = 0; i < 8; ++i) {
    other.run("INSERT INTO marchive (mid, servertime, email) VALUES ('m', '2004', zeroblob(" +
              std::to_string(8 * megabyte) + "))");
  }
  const auto set = open("SELECT * FROM marchive order by servertime desc,tstamp desc");
  const auto highest = [&](std::string_view column) {
    sqlite3_memory_highwater(1);
    const std::int64_t before = sqlite3_memory_used();
    set->move_first();
    for (; !set->at_end(); set->move_next()) set->bytes(column);
    return sqlite3_memory_highwater(0) - before;
  };
  EXPECT_LT(highest("mid"), megabyte);
  EXPECT_GT(highest("email"), 8 * megabyte);
  EXPECT_LT(highest("mid"), megabyte);
  set->move_first();
  EXPECT_EQ(set->bytes("email").size(), 8U * megabyte);
}

TEST_F(RecordSetTest, Updates) {
  database->CreateTable(conn, "scriptengine",
                        "scriptname nvarchar (255) NOT NULL Primary Key, "
                        "scriptcontent image NULL, svisible int default 0");
  other.run("INSERT INTO scriptengine (scriptname) VALUES ('a'), ('b')");
  const auto set =
      conn->open("SELECT * FROM scriptengine WHERE scriptname='" + value("b") + "'", Access::updatable);
  ASSERT_EQ(set->count(), 1);
  const std::string source("x\0'\xFF", 4);
  set->set_bytes("ScriptContent", source);
  EXPECT_EQ(set->bytes("scriptcontent"), source);
  EXPECT_EQ(other.ask("SELECT count(scriptcontent) FROM scriptengine"), "0");
  set->update();
  set->set_number("svisible", 1);
  set->update();
  EXPECT_EQ(set->bytes("scriptcontent"), source);
  EXPECT_EQ(set->number("svisible"), 1);
  EXPECT_EQ(other.ask("SELECT scriptname, hex(scriptcontent), svisible FROM scriptengine WHERE svisible=1"),
            "b|780027FF|1");

  set->set_text("scriptname", "a");  // taken
  EXPECT_THAT(failure_of([&] { set->update(); }), HasSubstr("UNIQUE"));
  set->set_text("scriptname", "c");
  set->move_first();  // forgets what was not updated
  EXPECT_EQ(set->text("scriptname"), "b");
  EXPECT_NE(failure_of([&] { set->set_text("nothing", "x"); }), "none");

  conn->begin_transaction();
  set->set_text("scriptname", "undone");
  set->update();
  conn->roll_back();
  set->move_first();
  EXPECT_EQ(set->text("scriptname"), "b");

  other.run("DELETE FROM scriptengine");
  set->set_number("svisible", 2);
  EXPECT_THAT(failure_of([&] { set->update(); }), HasSubstr("deleted"));
}

TEST_F(RecordSetTest, DeletesTheCurrentRow) {
  other.run("INSERT INTO words VALUES ('a'), ('b'), ('c')");
  const auto set = open("SELECT * from words order by entry desc", Access::updatable);
  set->move_next();
  set->delete_current();
  EXPECT_TRUE(set->at_end());
  EXPECT_NE(failure_of([&] { set->text("entry"); }), "none");
  EXPECT_NE(failure_of([&] { set->delete_current(); }), "none");
  EXPECT_EQ(other.ask("SELECT entry FROM words"), "a|c");
  set->move_next();
  EXPECT_EQ(set->text("entry"), "a");
  set->move(-1);
  EXPECT_TRUE(set->is_null("entry"));
}

TEST_F(RecordSetTest, ChangesNeedAnUpdatableSet) {
  other.run("INSERT INTO words VALUES ('a'); CREATE VIEW w AS SELECT entry FROM words");
  const auto set = open("SELECT * FROM words");
  EXPECT_NE(failure_of([&] { set->set_text("entry", "b"); }), "none");
  EXPECT_NE(failure_of([&] { set->update(); }), "none");
  EXPECT_NE(failure_of([&] { set->delete_current(); }), "none");
  for (const Literal select : {Literal("SELECT entry FROM words"), Literal("SELECT * FROM words, swords"),
                               Literal("SELECT * FROM w"), Literal("SELECT * FROM")}) {
    EXPECT_NE(failure_of([&] { open(select, Access::updatable); }), "none") << select.text();
  }
  EXPECT_EQ(walk(*open("SELECT * FROM w"), "entry"), "a ");
  EXPECT_EQ(walk(*open("SELECT * FROM [words] where entry='a'"), "entry"), "a ");
  EXPECT_EQ(walk(*open("SELECT entry AS e FROM words UNION SELECT 'z'"), "e"), "a z ");
  EXPECT_THAT(failure_of([&] { open("SELECT * FROM nowhere"); }), HasSubstr("no such table"));
  EXPECT_THAT(failure_of([&] {
                conn->open("SELECT * FROM words where entry='" + value("'") + "'", Access::read_only);
              }),
              StartsWith("3075: "));
}

}  // namespace
}  // namespace zrl::test
