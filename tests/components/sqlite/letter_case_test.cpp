// The case of letters: entries and rows of logs are found without regard to it, and stored as they come.
#include "components/sqlite/column_case.h"
#include "components/sqlite/database_fixture.h"
#include "core/contracts/list_tables.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using LetterCaseTest = DatabaseTest;

TEST_F(LetterCaseTest, EveryListIgnoresIt) {
  for (const ListTable* one :
       {&list::black_domains,   &list::white_domains,    &list::local_domains,   &list::exempt_domains,
        &list::black_addresses, &list::white_addresses,  &list::local_addresses, &list::black_subnets,
        &list::white_subnets,   &list::black_mails,      &list::white_mails,     &list::exempt_mails,
        &list::local_users,     &list::subject_keywords, &list::body_keywords,   &list::white_subjects,
        &list::black_zones,     &list::white_zones,      &list::uri_zones,       &list::file_names,
        &list::extensions}) {
    execute(insert_into(*one, "Spam.Example"));
    EXPECT_THAT(list(one->table, one->column), ElementsAre("Spam.Example")) << one->name;
    execute(delete_from(*one, "sPAM.eXAMPLE"));
    EXPECT_THAT(list(one->table, one->column), IsEmpty()) << one->name;
  }
}

TEST_F(LetterCaseTest, LogsAndKeysIgnoreItAndOptionsDoNot) {
  const struct {
    const char* table;
    const char* column;
  } ignoring[] = {
      {"iplog", "IPNumber"},      {"predatalog", "IPNumber"},
      {"predatalog", "mailfrom"}, {"predatalog", "reason"},
      {"subjectlog", "IPNumber"}, {"subjectlog", "mailfrom"},
      {"subjectlog", "keyword"},  {"bodylog", "IPNumber"},
      {"bodylog", "mailfrom"},    {"bodylog", "keyword"},
      {"avlog", "IPNumber"},      {"avlog", "mailfrom"},
      {"pop3", "entry"},          {"rwords", "orig"},
      {"disclaimer", "rule"},     {"scriptengine", "scriptname"},
  };
  database->CreateTable(conn, "scriptengine", "scriptname nvarchar (255) NOT NULL Primary Key, prio int");
  for (const auto& [table, column] : ignoring) {
    other.run(std::string("INSERT INTO ") + table + " (" + column + ") VALUES ('Bob@Spam.example')");
    EXPECT_EQ(other.ask(std::string("SELECT ") + column + " FROM " + table + " WHERE " + column +
                        "='bob@spam.EXAMPLE'"),
              "Bob@Spam.example")
        << table << '.' << column;
  }
  database->set_option("checkMX", 1, conn);
  EXPECT_EQ(database->read_option("checkmx", conn).text, "");
}

TEST_F(LetterCaseTest, ListOperationsIgnoreIt) {
  database->add_to_blackdomain("Spam.Example", conn);
  database->add_to_whitedomain("spam.example", conn);
  EXPECT_THAT(list("blacklist"), IsEmpty());
  EXPECT_THAT(list("whitelist"), ElementsAre("spam.example"));
  database->add_to_whitedomain("SPAM.example", conn);  // it is there, and keeps its place and its letters
  EXPECT_THAT(list("whitelist"), ElementsAre("spam.example"));
  database->add_to_words("Viagra", conn);
  database->add_to_words("viagra", conn);
  EXPECT_THAT(list("words"), ElementsAre("Viagra"));
}

// A short file goes line by line, a long one by hashes.
TEST_F(LetterCaseTest, ImportsAndDeletionsIgnoreIt) {
  for (const int more : {0, 6000}) {
    std::string names;
    std::vector<std::string> expected{"Old@Example.COM", "New@Example.com"};
    for (int i = 0; i < more; ++i) {
      expected.push_back("Filler" + std::to_string(i));
      names += expected.back() + "\n";
    }
    execute("DELETE FROM blackmail");
    execute(insert_into(list::black_mails, "Old@Example.COM"));
    const std::string in =
        write_list("in.txt", "old@example.com\nNew@Example.com\nNEW@example.com\n" + names);
    database->import_(list::black_mails, in);
    EXPECT_EQ(list("blackmail"), expected) << more;
    std::string upper;
    for (const char c : names) upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    const std::string out = write_list("out.txt", "OLD@EXAMPLE.com\n" + upper);
    database->delete_(list::black_mails, out);
    EXPECT_THAT(list("blackmail"), ElementsAre("New@Example.com")) << more;
  }
}

TEST_F(LetterCaseTest, LowerCasingChangesWhatOnlyDiffersByIt) {
  execute(insert_into(list::body_keywords, "ViAgRa"));
  execute(insert_into(list::body_keywords, "lower"));
  database->lcase_table("words", "entry");
  EXPECT_THAT(list("words"), ElementsAre("viagra", "lower"));
}

// Definitions as people write them: the change hits the columns and nothing else.
TEST(WithCaseIgnored, ChangesTheColumnsOfAnyDefinition) {
  const struct {
    const char* before;
    const char* after;  // empty if it is left alone
  } cases[] = {
      {"CREATE TABLE t (entry TEXT)", "CREATE TABLE t (entry TEXT COLLATE NOCASE)"},
      {"CREATE TABLE t(entry)", "CREATE TABLE t(entry COLLATE NOCASE)"},
      {"CREATE TABLE \"a(b\" (x INTEGER, \"ENTRY\" varchar(10, 2) NOT NULL -- (entry\n, y)",
       "CREATE TABLE \"a(b\" (x INTEGER, \"ENTRY\" varchar(10, 2) NOT NULL COLLATE NOCASE -- (entry\n, y)"},
      {"CREATE TABLE t ([entry] TEXT DEFAULT ('a,)' || \"x\"\"y\") /* , */ CHECK (length(entry) > 0), "
       "PRIMARY "
       "KEY (entry))",
       "CREATE TABLE t ([entry] TEXT DEFAULT ('a,)' || \"x\"\"y\") /* , */ CHECK (length(entry) > 0) COLLATE "
       "NOCASE, PRIMARY KEY (entry))"},
      {"CREATE TABLE t (entry TEXT COLLATE RTRIM)", ""},
      {"CREATE TABLE t (other TEXT)", ""},
      {"CREATE TABLE t (entry TEXT", ""},
      {"CREATE TABLE t (entry TEXT PRIMARY KEY) WITHOUT ROWID", ""},
      {"CREATE TABLE t", ""},
      {"", ""},
  };
  for (const auto& [before, after] : cases) {
    EXPECT_EQ(sqlite::with_case_ignored(before, {"entry"}), after) << before;
  }
}

}  // namespace
}  // namespace zrl::test
