#include "core/keyset_rows.h"

#include <algorithm>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/console.h"
#include "core/form.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

// A log in memory, to which others add and from which they delete.
class MemoryLog : public KeysetRows {
 public:
  explicit MemoryLog(Table& table) : KeysetRows(table) {}

  struct Row {
    std::string time;
    std::uint32_t table;
    std::int64_t id;

    auto operator<=>(const Row&) const = default;
    std::string key() const { return time + "/" + std::to_string(table) + "/" + std::to_string(id); }
  };
  std::set<Row> rows;
  std::uint64_t fetched = 0;
  std::optional<std::uint64_t> searches;  // rows that one call may look at
  std::string wanted;                     // a time; empty: all rows
  bool counts = true;

  // In the order of the view.
  std::vector<std::string> keys() const {
    std::vector<Place> places;
    for (const Row& row : rows) {
      if (wanted.empty() || row.time == wanted) places.push_back({row.time, row.table, row.id});
    }
    std::ranges::sort(places, [&](const Place& a, const Place& b) { return precedes(a, b); });
    std::vector<std::string> found;
    for (const Place& place : places) found.push_back(Row{place.order, place.rank, place.id}.key());
    return found;
  }

  bool read_key(std::string_view key, TableRows& found) override {
    for (const Row& row : rows) {
      if (row.key() != key) continue;
      found.row(key);
      return true;
    }
    return false;
  }

 protected:
  bool begin(const TableView&) override { return true; }
  Found find(const std::optional<Place>& behind, std::uint64_t limit, std::vector<Place>& places,
             TableRows* found, std::optional<Place>& examined) override {
    std::vector<Place> all;
    for (const Row& row : rows) {
      const Place place{row.time, row.table, row.id};
      if (!behind || precedes(*behind, place)) all.push_back(place);
    }
    std::ranges::sort(all, [&](const Place& a, const Place& b) { return precedes(a, b); });
    std::uint64_t seen = 0;
    for (const Place& place : all) {
      if (limit == 0) return Found::full;
      if (searches && seen == *searches) return Found::stopped;
      ++seen;
      examined = place;
      if (!wanted.empty() && place.order != wanted) continue;
      ++fetched;
      --limit;
      places.push_back(place);
      if (found != nullptr) found->row(Row{place.order, place.rank, place.id}.key());
    }
    return limit == 0 ? Found::full : Found::end;
  }
  std::optional<RowCount> tally() override {
    if (!counts) return {};
    return RowCount{std::min<std::uint64_t>(keys().size(), most_counted), keys().size() <= most_counted};
  }
  std::optional<Place> place_of(std::string_view key) override {
    for (const Row& row : rows) {
      if (row.key() == key) return Place{row.time, row.table, row.id};
    }
    return {};
  }
};

class LogForm : public Form {
 public:
  explicit LogForm(Console& console) : Form(console, "log", "Log") {}
  Table table{*this, "rows", "Rows", "", {{.name = "time", .caption = "Time", .sorts = true}}};
  MemoryLog log{table};
};

class KeysetRowsTest : public testing::Test {
 protected:
  // Several rows share a second, and a table.
  void fill(int count) {
    for (int i = 1; i <= count; ++i) add(i);
    form.table.reload();
  }
  void add(std::int64_t id) {
    form.log.rows.insert({std::to_string(1000 + id / 7), static_cast<std::uint32_t>(id % 3), id});
  }

  std::vector<std::string> read(std::uint64_t first, std::uint64_t count) {
    const TableRows rows = form.table.read(first, count);
    std::vector<std::string> keys;
    for (std::size_t i = 0; i < rows.size(); ++i) keys.emplace_back(rows.key(i));
    return keys;
  }
  // What stands there in truth.
  std::vector<std::string> truth(std::uint64_t first, std::uint64_t count) {
    const auto all = form.log.keys();
    const auto begin = std::min<std::size_t>(first, all.size());
    const auto end = std::min<std::size_t>(first + count, all.size());
    return {all.begin() + static_cast<std::ptrdiff_t>(begin), all.begin() + static_cast<std::ptrdiff_t>(end)};
  }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console{folder.path(), host};
  LogForm form{console};
};

TEST_F(KeysetRowsTest, WindowsAreWhereTheySayInBothOrders) {
  fill(1000);
  for (const char* sort : {"", "time"}) {
    form.table.set_sort(sort);
    EXPECT_EQ(form.table.count(), (RowCount{1000, true}));
    for (const std::uint64_t first : {0U, 100U, 700U, 695U, 3U, 990U, 1000U, 2000U}) {
      EXPECT_EQ(read(first, 20), truth(first, 20)) << sort << first;
    }
    EXPECT_EQ(form.table.position_of(form.log.keys()[456]), 456u);
    EXPECT_EQ(form.table.position_of("none"), std::nullopt);
  }
}

TEST_F(KeysetRowsTest, ReadingOnCostsTheWindow) {
  fill(2000);
  (void)form.table.count();
  read(1500, 100);
  form.log.fetched = 0;
  read(1600, 100);
  read(1700, 100);
  EXPECT_EQ(form.log.fetched, 200u);
}

// Windows that follow each other show each row once, whatever is written meanwhile, as long as no row on the
// way is deleted or added itself; and when nothing is written any more, all is where it belongs.
TEST_F(KeysetRowsTest, NothingIsSkippedOrRepeatedWhileOthersWrite) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    std::mt19937 random(seed);
    form.log.rows.clear();
    fill(600);
    std::int64_t newest = 600;
    (void)form.table.count();
    // Someone has looked around before.
    for (int i = 0; i < 3; ++i) read(random() % 600, 50);
    std::vector<std::string> seen;
    std::set<std::string> kept;
    for (const std::string& key : form.log.keys()) kept.insert(key);
    std::uint64_t position = 0;
    while (true) {
      const Revision before = form.table.revision(Property::rows);
      auto keys = read(position, 40);
      if (form.table.revision(Property::rows) != before) {
        // The host asks anew, and goes on behind the row that it saw last.
        if (!seen.empty()) {
          const auto place = form.table.position_of(seen.back());
          ASSERT_TRUE(place);
          position = *place + 1;
          keys = read(position, 40);
        }
      }
      if (keys.empty()) break;
      seen.insert(seen.end(), keys.begin(), keys.end());
      position += keys.size();
      for (int i = 0; i < 5; ++i) add(++newest);
      // Rows that were seen, or are yet to be seen, disappear; not the last one, which the host goes on from.
      for (int i = 0; i < 3; ++i) {
        auto row = form.log.rows.begin();
        std::advance(row, random() % form.log.rows.size());
        if (row->key() == seen.back()) continue;
        kept.erase(row->key());
        form.log.rows.erase(row);
      }
      ASSERT_LT(seen.size(), 1000u);
    }
    std::set<std::string> once(seen.begin(), seen.end());
    EXPECT_EQ(once.size(), seen.size()) << "a row was repeated, seed " << seed;
    for (const std::string& key : kept)
      EXPECT_TRUE(once.contains(key)) << key << " was skipped, seed " << seed;
    for (int i = 0; i < 3; ++i) {
      form.log.follow();
      for (std::uint64_t first = 0; first < form.log.rows.size(); first += 90) read(first, 90);
    }
    for (std::uint64_t first = 0; first < form.log.rows.size(); first += 90)
      EXPECT_EQ(read(first, 90), truth(first, 90));
    EXPECT_EQ(form.table.count().rows, form.log.rows.size());
  }
}

TEST_F(KeysetRowsTest, FollowingFindsWhatIsNewAndKeepsWhatIsKnown) {
  fill(500);
  (void)form.table.count();
  read(0, 50);
  read(300, 50);
  const std::string row = form.log.keys()[300];
  Revision before = form.table.revision(Property::rows);
  form.log.follow();
  EXPECT_EQ(form.table.revision(Property::rows), before);
  for (int i = 501; i <= 503; ++i) add(i);
  form.log.follow();
  EXPECT_GT(form.table.revision(Property::rows), before);
  EXPECT_EQ(form.table.count(), (RowCount{503, true}));
  EXPECT_EQ(form.table.position_of(row), 303u);
  EXPECT_EQ(read(303, 1), std::vector{row});
  // More than it looks for.
  for (int i = 504; i <= 2503; ++i) add(i);
  form.log.follow();
  EXPECT_EQ(read(2303, 1), std::vector{row});
  EXPECT_EQ(form.table.count(), (RowCount{2503, true}));
  form.log.rows.clear();
  form.log.follow();
  EXPECT_EQ(form.table.count(), (RowCount{0, true}));
  add(1);
  form.log.follow();
  EXPECT_EQ(read(0, 10), truth(0, 10));
}

TEST_F(KeysetRowsTest, ASearchThatIsBrokenOffGoesOn) {
  fill(700);
  form.log.counts = false;
  form.log.wanted = "1010";
  form.log.searches = 50;
  form.table.reload();
  EXPECT_TRUE(read(0, 5).empty());
  EXPECT_FALSE(form.table.count().exact);
  int calls = 0;
  while (form.log.read_on()) ASSERT_LT(++calls, 100);
  EXPECT_EQ(form.table.count(), (RowCount{7, true}));
  EXPECT_EQ(read(0, 10), truth(0, 10));
  EXPECT_FALSE(form.log.read_on());

  form.table.reload();
  EXPECT_EQ(form.table.read_on(0, 3).size(), 3u);
  form.log.searches.reset();
  form.table.reload();
  EXPECT_EQ(form.table.count(), (RowCount{7, true}));
}

}  // namespace
}  // namespace zrl
