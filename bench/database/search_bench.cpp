#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <benchmark/benchmark.h>

#include "components/sqlite/sqlite.h"
#include "core/contracts/entry_search.h"
#include "database/comparison.h"
#include "support/fake_services.h"

// The search for entries over lists of a million rows together. The goal of an answer is a time, so it is
// told as a part of it; a search through all of them is measured against a bare loop that looks for the same
// text.
namespace zrl::bench {

namespace {

constexpr int names = 1'000'000;
constexpr double longest_answer = 50;  // milliseconds
constexpr std::chrono::milliseconds slice{40};
constexpr std::size_t most = 20;

void require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

// Half on the one list, half on the other; the needle is the last.
class Lists {
 public:
  Lists() {
    console_.settings["dataprovider"] = "sqlite:search.db";
    console_.registry.add<Database>([this] { return sqlite::make(console_); });
    access_to("sqlite:search.db")->open_database("sqlite:search.db");
    Bare made(folder() / "search.db", Bare::Settings::of_the_component);
    made.run("BEGIN");
    sqlite3_stmt* black = made.prepare("INSERT INTO blacklist (entry) VALUES (?)");
    sqlite3_stmt* white = made.prepare("INSERT INTO whitelist (entry) VALUES (?)");
    bool odd = false;
    for (const std::string& name : host_names(names, 7)) {
      sqlite3_stmt* insert = (odd = !odd) ? black : white;
      sqlite3_bind_text(insert, 1, name.c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_step(insert);
      sqlite3_reset(insert);
    }
    sqlite3_finalize(black);
    sqlite3_finalize(white);
    made.run("INSERT INTO whitelist (entry) VALUES ('mail.qqneedle.example'); COMMIT");
    made.run("PRAGMA wal_checkpoint(TRUNCATE)");
    search_ = sqlite::make_entry_search(console_);
  }

  EntrySearch::Found find(std::string_view text, const std::optional<EntrySearch::Place>& from = {}) {
    return search_->find(lists_, text, from, most, slice);
  }

 private:
  test::FakeServices console_{folder()};
  std::shared_ptr<EntrySearch> search_;
  const std::vector<EntrySearch::List> lists_{{list::black_domains}, {list::white_domains}};
};

Lists& lists() {
  static Lists made;
  return made;
}

double milliseconds_of(const std::function<void()>& work) {
  constexpr double milliseconds_a_second = 1000;
  return seconds_of(work) * milliseconds_a_second;
}

// The longest of the answers that it takes to find the needle.
double longest_of_answers() {
  double longest = 0;
  std::optional<EntrySearch::Place> place;
  bool found = false;
  do {
    EntrySearch::Found part;
    longest = std::max(longest, milliseconds_of([&] { part = lists().find("qqneedle", place); }));
    found = found || !part.hits.empty();
    place = part.next;
  } while (place);
  require(found, "the needle was not found");
  return longest;
}

double beginnings() {
  lists();
  return milliseconds_of([] { require(lists().find("ma").hits.size() == most, "too few beginnings"); });
}

double search_ours() {
  lists();
  return seconds_of([] {
    std::optional<EntrySearch::Place> place;
    do place = lists().find("qqneedle", place).next;
    while (place);
  });
}

double search_bare() {
  static Bare bare(folder() / "search.db", Bare::Settings::of_the_component);
  return seconds_of([] {
    int found = 0;
    for (const char* select : {"SELECT entry FROM blacklist WHERE entry LIKE '%qqneedle%'",
                               "SELECT entry FROM whitelist WHERE entry LIKE '%qqneedle%'"}) {
      sqlite3_stmt* rows = bare.prepare(select);
      while (sqlite3_step(rows) == SQLITE_ROW) ++found;
      sqlite3_finalize(rows);
    }
    require(found == 1, "the bare loop found another needle");
  });
}

}  // namespace

void add_search(Suite& suite) {
  suite.add(Measure{"the longest answer of a search in 1,000,000 entries", 1.0, longest_of_answers,
                    [] { return longest_answer; }});
  suite.add(Measure{"the answer with beginnings of 1,000,000 entries", 1.0, beginnings,
                    [] { return longest_answer; }});
  suite.add(Comparison{"a search through 1,000,000 entries", 1.3, search_ours, search_bare});
}

}  // namespace zrl::bench
