#include "core/table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/error.h"
#include "support/fake_components.h"
#include "support/recording_host.h"
#include "support/tables_page.h"
#include "support/temporary_folder.h"

namespace zrl {
namespace {

using testing::ElementsAre;

class TableTest : public testing::Test {
 protected:
  TableTest() { page.show_query({}); }

  // The keys in the order of the view.
  static std::vector<std::string> keys(Table& table, std::uint64_t first = 0, std::uint64_t count = 10) {
    const TableRows rows = table.read(first, count);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < rows.size(); ++i) result.emplace_back(rows.key(i));
    return result;
  }
  static std::vector<std::string> chosen(const Table& table) {
    std::vector<std::string> result;
    for (std::size_t i = 0; i < table.chosen().size(); ++i) result.emplace_back(table.chosen()[i]);
    return result;
  }

  test::TemporaryFolder folder;
  test::RecordingHost host;
  Console console{folder.path(), host};
  test::TablesPage page{console};
};

class ShownTableTest : public TableTest {
 protected:
  ShownTableTest() { page.initialise(); }
};

TEST(TableRows, KeepAnyCellsAndTheirLinks) {
  TableRows rows;
  rows.row("1").cell("a\0b").cell(std::int64_t{-7});
  rows.row("2");
  rows.row("3").cell("x").link("lookup", "x y").cell(std::string(TableRows::longest_cell, 'y') + "\u00e4");
  EXPECT_EQ(rows.cell_at(0, 1), "-7");
  EXPECT_EQ(rows.cell_at(1, 0), "");
  EXPECT_EQ(rows.cell_at(2, 7), "");
  EXPECT_EQ(rows.cell_at(2, 1), std::string(TableRows::longest_cell, 'y'));
  EXPECT_FALSE(rows.link_at(0, 0));
  EXPECT_FALSE(rows.link_at(1, 0));
  ASSERT_TRUE(rows.link_at(2, 0));
  EXPECT_EQ(rows.link_at(2, 0)->query, "x y");
  TableRows copy;
  for (const std::size_t row : {2U, 1U, 0U}) copy.append(rows, row);
  EXPECT_EQ(copy.link_at(0, 0)->page, "lookup");
  EXPECT_EQ(copy.cell_at(1, 0), "");
  EXPECT_EQ(copy.cell_at(2, 1), "-7");
}

TEST_F(ShownTableTest, HeldRowsSortByTheKindOfTheColumnAndFilterByAnyCell) {
  Table& table = page.Table1;
  EXPECT_THAT(keys(table), ElementsAre("a", "b", "c", "d"));
  table.user_sort("count");
  EXPECT_THAT(keys(table), ElementsAre("d", "b", "a", "c"));
  EXPECT_EQ(table.sort(), "count");
  table.user_sort(" count desc ");
  EXPECT_THAT(keys(table), ElementsAre("c", "a", "b", "d"));
  EXPECT_EQ(table.position_of("b"), 2u);
  table.user_filter("MIN");
  EXPECT_THAT(keys(table), ElementsAre("b"));
  EXPECT_EQ(table.count(), (RowCount{1, true}));
  EXPECT_EQ(table.position_of("a"), std::nullopt);
  table.user_filter("nothing has this");
  EXPECT_THAT(keys(table), ElementsAre());
  table.user_filter("");
  table.user_sort("");
  EXPECT_THAT(keys(table, 1, 2), ElementsAre("b", "c"));
  EXPECT_THAT(keys(table, 4, 2), ElementsAre());
  EXPECT_THROW(table.user_sort("subject"), Refused);
  EXPECT_THROW(table.user_sort("nothing"), Refused);
  EXPECT_THROW(table.set_sort("nothing"), Error);
}

TEST_F(ShownTableTest, RowsAreChosenByKeyAndStayChosenAsLongAsTheyAreSeen) {
  Table& table = page.Table2;
  table.user_choose(2);
  EXPECT_THAT(chosen(table), ElementsAre("999998"));
  EXPECT_EQ(page.echo.caption(), "Chosen: 1");
  table.user_choose_keys({"5", "7"});
  EXPECT_EQ(page.echo.caption(), "Chosen: 2");
  EXPECT_EQ(table.chosen_cell("text"), "row 5");
  EXPECT_THROW(table.user_choose(1'000'000), Refused);
  EXPECT_THROW(table.user_choose(-1), Refused);
  EXPECT_THROW(table.user_choose_keys({"5", "0"}), Refused);
  EXPECT_THAT(chosen(table), ElementsAre("5", "7"));
  StringList many;
  for (std::size_t i = 0; i <= Table::most_chosen; ++i) many.push_back(std::to_string(i + 1));
  EXPECT_THROW(table.user_choose_keys(many), Refused);

  table.user_sort("number");
  EXPECT_THAT(chosen(table), ElementsAre("5", "7"));
  page.many.take_away("5");
  table.reload();
  EXPECT_THAT(chosen(table), ElementsAre("7"));
  // An act on rows that nobody sees any more would be a surprise.
  table.user_filter("123456");
  EXPECT_THAT(chosen(table), ElementsAre());
  EXPECT_EQ(page.filter.text(), "123456");
  EXPECT_EQ(table.count(), (RowCount{1, true}));

  table.user_filter("?");
  EXPECT_EQ(table.problem(), "\"?\" at character 1 means nothing");
  EXPECT_THAT(keys(table), ElementsAre());
  table.user_filter("");
  EXPECT_EQ(table.problem(), "");

  table.set_enabled(false);
  EXPECT_THROW(table.user_choose(0), Refused);
  EXPECT_THROW(table.user_filter("x"), Refused);
  EXPECT_THROW(table.user_sort("number"), Refused);
}

TEST_F(ShownTableTest, RevisionsTellWhatHostsHaveToAskAnew) {
  Table& table = page.Table2;
  const auto changes = [&](const std::function<void()>& act) {
    const Revision before = page.revision();
    act();
    std::string changed;
    for (const auto [property, name] : {std::pair{Property::rows, "rows "},
                                        {Property::sort, "sort "},
                                        {Property::filter, "filter "},
                                        {Property::chosen, "chosen "}}) {
      if (table.revision(property) > before) changed += name;
    }
    return changed;
  };
  EXPECT_EQ(changes([&] { table.user_choose(0); }), "chosen ");
  EXPECT_EQ(changes([&] { table.user_sort("number"); }), "rows sort ");
  EXPECT_EQ(changes([&] { table.user_sort("number"); }), "");
  EXPECT_EQ(changes([&] { table.user_filter("1"); }), "rows filter chosen ");
  EXPECT_EQ(changes([&] { table.rows_changed(); }), "rows ");
  EXPECT_EQ(changes([&] { (void)table.read(0, 5); }), "");
}

// A source that raises must not end the host that asked for a window.
TEST_F(TableTest, AFailedReadIsRecordedAndLeavesNoRows) {
  struct Broken : RowSource {
    void start(const TableView&) override {}
    RowCount count() override { throw Error(5, "locked"); }
    void read(std::uint64_t, std::uint64_t, TableRows&) override { throw Error(5, "locked"); }
    bool read_key(std::string_view, TableRows&) override { throw Error(5, "locked"); }
    std::optional<std::uint64_t> position_of(std::string_view) override { throw Error(5, "locked"); }
  } broken;
  page.Table1.set_source(broken);
  EXPECT_TRUE(page.Table1.read(0, 10).empty());
  EXPECT_EQ(page.Table1.count(), RowCount());
  EXPECT_EQ(page.Table1.position_of("a"), std::nullopt);
  EXPECT_THROW(page.Table1.user_choose_keys({"a"}), Refused);
  EXPECT_EQ(console.activity().failures(), 4u);
}

TEST_F(TableTest, CaptionsOfColumnsAreTranslatedWithThePage) {
  test::MemoryRegistry::Store store;
  test::add_registry(console.components(), store);
  store.values["hklm\\software\\mirvan\\language"] = "german";
  test::ShoutingTranslator::Log log;
  test::add_translator(console.components(), log);
  page.initialise();
  EXPECT_EQ(page.Table1.caption(), "MAILS");
  EXPECT_EQ(page.Table1.caption_of(1), "VERDICT");
  page.initialise();
  EXPECT_EQ(page.Table1.caption_of(1), "VERDICT");
}

TEST_F(ShownTableTest, LinksAndQueriesReachHostAndPage) {
  page.Link1.user_click();
  EXPECT_THAT(host.opened, ElementsAre("allcontrols/198.51.100.7"));
  page.Link1.set_target("", "");
  EXPECT_THROW(page.Link1.user_click(), Refused);
  const Revision before = page.revision();
  page.show_query("77");
  EXPECT_EQ(page.echo.caption(), "Opened with 77");
  EXPECT_EQ(page.Table2.filter(), "77");
  EXPECT_EQ(page.query(), "77");
  EXPECT_GT(page.revision(), before);
}

}  // namespace
}  // namespace zrl
