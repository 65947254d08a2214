#include "support/tables_page.h"

#include <algorithm>

#include "core/text/text.h"

namespace zrl::test {

void CountedRows::start(const TableView& view) {
  set_problem({});
  descending_ = view.descending || view.column == TableView::unsorted;
  filter_ = view.filter;
  matches_.clear();
  if (filter_ == "?") set_problem("\"?\" at character 1 means nothing");
  if (filter_.empty() || !problem().empty()) return;
  for (std::uint64_t number = 1; number <= rows_; ++number) {
    if (is_there(number) && std::to_string(number).find(filter_) != std::string::npos)
      matches_.push_back(number);
  }
}

RowCount CountedRows::count() {
  if (!problem().empty()) return {};
  const std::uint64_t rows = filter_.empty() ? rows_ - gone_.size() : matches_.size();
  return {rows, true};
}

void CountedRows::read(std::uint64_t first, std::uint64_t count, TableRows& rows) {
  most_read_at_once = std::max(most_read_at_once, count);
  const std::uint64_t all = this->count().rows;
  for (std::uint64_t position = first; position < all && position - first < count; ++position) {
    const std::uint64_t rank = descending_ ? all - 1 - position : position;
    if (!filter_.empty()) {
      add(matches_[rank], rows);
      continue;
    }
    std::uint64_t number = rank + 1;
    for (const std::uint64_t gone : gone_) number += gone <= number ? 1 : 0;
    add(number, rows);
  }
}

bool CountedRows::read_key(std::string_view key, TableRows& rows) {
  const auto number = to_number(key);
  if (!number || !is_there(static_cast<std::uint64_t>(*number))) return false;
  add(static_cast<std::uint64_t>(*number), rows);
  return true;
}

std::optional<std::uint64_t> CountedRows::position_of(std::string_view key) {
  const auto number = to_number(key);
  if (!number || !filter_.empty() || !is_there(static_cast<std::uint64_t>(*number))) return {};
  const auto before = static_cast<std::uint64_t>(std::ranges::count_if(
      gone_, [&](std::uint64_t gone) { return gone < static_cast<std::uint64_t>(*number); }));
  const std::uint64_t rank = static_cast<std::uint64_t>(*number) - 1 - before;
  return descending_ ? count().rows - 1 - rank : rank;
}

void CountedRows::take_away(std::string_view key) {
  if (const auto number = to_number(key)) gone_.insert(static_cast<std::uint64_t>(*number));
}

bool CountedRows::is_there(std::uint64_t number) const {
  return number >= 1 && number <= rows_ && !gone_.contains(number);
}

void CountedRows::add(std::uint64_t number, TableRows& rows) const {
  const std::string text = std::to_string(number);
  rows.row(text).cell(text).cell("row " + text);
}

TablesPage::TablesPage(Console& console) : Page(console, "tables", "Tables") {
  Table1.set_filters();
  Table2.set_filters(filter);
  Table2.set_source(many);
  Table1.on_choose = [this] { echo.set_caption("Chosen: " + Table1.chosen_cell("subject")); };
  Table2.on_choose = [this] { echo.set_caption("Chosen: " + std::to_string(Table2.chosen().size())); };
  Link1.set_target("allcontrols", "198.51.100.7");
  take.set_needs({&Table2});
  take.on_click = [this] {
    for (std::size_t i = 0; i < Table2.chosen().size(); ++i) many.take_away(Table2.chosen()[i]);
    Table2.reload();
  };
  grow_rows.on_click = [this] {
    many.add_before_all(3);
    Table2.rows_changed();
  };
  set_layout(column({row({echo, Link1}), grow(Table1), row({filter, take, grow_rows}), grow(Table2)}));
}

void TablesPage::load() {
  TableRows rows;
  rows.row("a").cell("20260105093000").cell("rejected").cell("198.51.100.7").cell(12);
  rows.cell("<b>Win</b> \"now\"").link("allcontrols", "a/b c");
  rows.row("b").cell("2026-01-04 09:30:00").cell("allowed").cell("192.0.2.1").cell(3).cell("Minutes");
  rows.row("c").cell("yesterday").cell("neutral").cell("2001:db8::1").cell(101).cell("\xff\xfe not UTF-8");
  rows.row("d").cell("").cell("odd").cell("").cell("many").cell(std::string(100'000, 'x'));
  few.show(std::move(rows));
  Table2.reload();
}

void TablesPage::open_query(std::string_view query) {
  echo.set_caption("Opened with " + std::string(query));
  filter.set_text(query);
}

}  // namespace zrl::test
