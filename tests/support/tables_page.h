#pragma once

#include <set>

#include "core/page.h"
#include "core/table.h"

namespace zrl::test {

// A million rows that are counted, not kept: row n has the key "n". Some may be taken away, and new ones may
// come before all others, as a log has them.
class CountedRows : public RowSource {
 public:
  explicit CountedRows(std::uint64_t rows) : rows_(rows) {}

  void start(const TableView& view) override;
  RowCount count() override;
  void read(std::uint64_t first, std::uint64_t count, TableRows& rows) override;
  bool read_key(std::string_view key, TableRows& rows) override;
  std::optional<std::uint64_t> position_of(std::string_view key) override;

  void take_away(std::string_view key);
  void add_before_all(std::uint64_t count) { rows_ += count; }

  std::uint64_t most_read_at_once = 0;

 private:
  bool is_there(std::uint64_t number) const;
  void add(std::uint64_t number, TableRows& rows) const;

  std::uint64_t rows_;  // numbered from 1, the newest last
  std::set<std::uint64_t> gone_;
  std::vector<std::uint64_t> matches_;  // of a filter
  std::string filter_;
  bool descending_ = true;
};

// A page with tables and links, for the tests of hosts; no product contains it.
class TablesPage : public Page {
 public:
  explicit TablesPage(Console& console);

  Label echo{*this, "echo", "Nothing is chosen"};
  Link Link1{*this, "Link1", "Look up 198.51.100.7", "Opens another page"};
  Table Table1{*this,
               "Table1",
               "Mails",
               "Choosing a row shows it above",
               {{.name = "time", .caption = "Time", .kind = ColumnKind::time, .sorts = true},
                {.name = "verdict", .caption = "Verdict", .kind = ColumnKind::verdict, .sorts = true},
                {.name = "address",
                 .caption = "Address",
                 .kind = ColumnKind::address,
                 .sorts = true,
                 .page = "allcontrols"},
                {.name = "count", .caption = "Count", .kind = ColumnKind::number, .sorts = true},
                {.name = "subject", .caption = "Subject", .minor = true}}};
  HeldRows few{Table1};
  TextField filter{*this, "filter", "Typed here, for the table below"};
  Label filter_label{*this, "filter_label", "Filter", filter};
  Table Table2{*this,
               "Table2",
               "A million rows",
               "",
               {{.name = "number", .caption = "Number", .kind = ColumnKind::number, .sorts = true},
                {.name = "text", .caption = "Text"}}};
  CountedRows many{1'000'000};
  Button take{*this, "take", "Take the chosen rows away"};
  Button grow_rows{*this, "grow_rows", "Three more rows"};

 private:
  void load() override;
  void open_query(std::string_view query) override;
};

}  // namespace zrl::test
