#include "core/contracts/entry_search.h"

#include "components/sqlite/database_fixture.h"

namespace zrl::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Place = EntrySearch::Place;
using std::chrono::milliseconds;

class EntrySearchTest : public DatabaseTest {
 protected:
  EntrySearchTest() {
    console.registry.add<Database>([this] { return sqlite::make(console, {milliseconds(200)}); });
    search = sqlite::make_entry_search(console);
  }

  std::vector<std::string> found(std::string_view text, std::size_t most = 20) {
    return told(search->find(lists, text, {}, most, milliseconds(10'000)));
  }

  static std::vector<std::string> told(const EntrySearch::Found& found) {
    std::vector<std::string> hits;
    for (const auto& [list, entry] : found.hits) hits.push_back(std::to_string(list) + " " + entry);
    return hits;
  }

  const std::vector<EntrySearch::List> lists{
      {list::black_domains, EntrySearch::Entries::without_at}, {list::black_addresses}, {list::file_names}};
  std::shared_ptr<EntrySearch> search;
};

TEST_F(EntrySearchTest, ExactOnesComeFirstThenBeginningsOfAllListsThenTheRest) {
  other.run(
      "INSERT INTO blacklist (entry) VALUES ('my.royal.example'),('Royal.example'),('royalty.example')");
  other.run("INSERT INTO files (files) VALUES ('ROYAL'),('royale.exe'),('%royal_')");
  EXPECT_THAT(found("royal"), ElementsAre("2 ROYAL", "0 Royal.example", "0 royalty.example", "2 royale.exe",
                                          "0 my.royal.example", "2 %royal_"));
  // No list crowds the others out.
  EXPECT_THAT(found("royal", 2), ElementsAre("2 ROYAL", "0 Royal.example"));
  EXPECT_THAT(found("%"), ElementsAre("2 %royal_"));
}

TEST_F(EntrySearchTest, WhatTheListDoesNotShowIsNotFound) {
  other.run("INSERT INTO blacklist (entry) VALUES ('@*spam.example'),('spam@spam.example'),('spam.example')");
  EXPECT_THAT(found("spam"), ElementsAre("0 spam.example"));
}

TEST_F(EntrySearchTest, AnyTextIsTakenAsItIs) {
  other.run("INSERT INTO files (files) VALUES ('o''neil'),('a\"b'),('x')");
  EXPECT_THAT(found("'"), ElementsAre("2 o'neil"));
  EXPECT_THAT(found("\"b"), ElementsAre("2 a\"b"));
  EXPECT_THAT(found(""), IsEmpty());
  EXPECT_THAT(found(std::string_view("x\0", 2)), IsEmpty());
  EXPECT_THAT(found("\xFF'; DROP TABLE files; --"), IsEmpty());
}

// However little time there is, every entry is found in the end, once.
TEST_F(EntrySearchTest, GoesOnWhereTheTimeWasOver) {
  other.run(
      "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<5000) INSERT INTO blacklist "
      "(entry) SELECT 'host'||i||'.'||(CASE WHEN i%1000=0 THEN 'needle' ELSE 'hay' END)||'.example' FROM n");
  other.run("INSERT INTO files (files) VALUES ('a needle')");
  std::vector<std::string> hits;
  std::optional<Place> place;
  int turns = 0;
  do {
    const EntrySearch::Found part = search->find(lists, "needle", place, 20, milliseconds(0));
    for (const std::string& hit : told(part)) hits.push_back(hit);
    place = part.next;
    ASSERT_LT(++turns, 100);
  } while (place);
  EXPECT_GT(turns, 5);
  EXPECT_THAT(
      hits, ElementsAre("0 host1000.needle.example", "0 host2000.needle.example", "0 host3000.needle.example",
                        "0 host4000.needle.example", "0 host5000.needle.example", "2 a needle"));
  EXPECT_THAT(told(search->find(lists, "needle", Place{17, 0}, 20, milliseconds(0))), IsEmpty());
}

TEST_F(EntrySearchTest, DoesNotWaitForAWriter) {
  other.run("INSERT INTO files (files) VALUES ('needle')");
  other.run("BEGIN IMMEDIATE; DELETE FROM files");
  EXPECT_THAT(found("needle"), ElementsAre("2 needle"));
  other.run("COMMIT");
  EXPECT_THAT(found("needle"), IsEmpty());
}

}  // namespace
}  // namespace zrl::test
