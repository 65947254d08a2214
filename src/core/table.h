#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/controls.h"
#include "core/row_source.h"

namespace zrl {

// Rows with columns, of which several may be chosen:
//
//   Table rows{*this, "rows", "Messages", "What the proxy did with each mail",
//              {{.name = "time", .caption = "Time", .kind = ColumnKind::time, .sorts = true}, ...}};
//
// The rows come from a RowSource that the page owns and binds in its constructor; HeldRows is a ready one for
// short tables. The control keeps order, filter, the keys of the chosen rows, and a revision that tells hosts
// when to ask anew. It holds no rows: hosts ask for windows, each read as an event of the form. A failed read
// is recorded like any step and told by problem().
class Table : public CaptionedControl {
 public:
  // More rows than these can't be chosen at once.
  static constexpr std::size_t most_chosen = 10'000;

  Table(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip,
        std::initializer_list<Column> columns);

  Event on_choose;  // the user chose other rows, or the same once more

  const std::vector<Column>& columns() const { return columns_; }
  // In the user's language, once the page has been shown.
  std::string_view caption_of(std::size_t column) const { return captions_[column]; }
  // The index of the column with this name, or columns().size().
  std::size_t find_column(std::string_view name) const;

  // `source` must live as long as the table. To be called once, in the page's constructor.
  void set_source(RowSource& source) { source_ = &source; }
  // People may filter the rows. With `field` they type the filter into that field of the page, whose change
  // this sets, and which chooses rows from then on; without one, hosts show a field of the table's own.
  void set_filters() { filters_ = true; }
  void set_filters(TextField& field);
  bool filters() const { return filters_; }
  const TextField* filter_field() const { return filter_field_; }

  // What hosts say where the table has no rows, though nothing filters it: English, and not copied, a
  // literal.
  void set_empty_text(std::string_view text) { empty_text_ = text; }
  std::string_view empty_text() const { return empty_text_; }

  // The order: the name of a column with " desc" behind it if it falls; empty for the source's own. Setting
  // an unknown column raises error 380.
  const std::string& sort() const { return sort_; }
  void set_sort(std::string_view sort);
  // Chooses nothing, as the chosen rows may not pass the filter. A filter that is not understood is a
  // problem().
  const std::string& filter() const { return filter_; }
  void set_filter(std::string_view filter);

  // The rows begin anew with what is there now. Chosen rows that are gone are chosen no longer.
  void reload();
  // The source has found that positions, or rows, are others than before.
  void rows_changed();

  // The keys of the chosen rows, in the order of choosing.
  const StringList& chosen() const { return chosen_; }
  void set_chosen(StringList keys);
  // A cell of the row that was chosen first, as a copy; empty if none is, or if it is gone.
  std::string chosen_cell(std::string_view column);

  // What hosts and pages read; see RowSource.
  RowCount count();
  TableRows read(std::uint64_t first, std::uint64_t count);
  // The same window, with the time it takes: for hosts in which nothing else happens meanwhile.
  TableRows read_on(std::uint64_t first, std::uint64_t count);
  TableRows read_key(std::string_view key);
  std::optional<std::uint64_t> position_of(std::string_view key);
  // Why the rows are not as asked for, in the user's language; empty if all is well.
  std::string_view problem() const { return source_ == nullptr ? std::string_view() : source_->problem(); }

  // Chooses the row at this position alone.
  void user_choose(std::int64_t index) override;
  // Chooses these rows, none if it is empty. Refused if there is no row with one of the keys.
  void user_choose_keys(StringList keys);
  // As set_sort() and set_filter(). Refused for a column that does not sort, and where people may not filter.
  void user_sort(std::string_view sort);
  void user_filter(std::string_view filter);

 private:
  friend class Form;
  struct Order {
    std::size_t column = TableView::unsorted;
    bool descending = false;
  };
  // Nothing if the text names no column.
  std::optional<Order> parse_order(std::string_view sort) const;
  void put_chosen(StringList keys);
  void start();

  std::vector<Column> columns_;
  std::vector<std::string> captions_;
  RowSource* source_ = nullptr;
  TextField* filter_field_ = nullptr;
  std::string_view empty_text_;
  bool filters_ = false;
  std::string sort_;
  Order order_;
  std::string filter_;
  StringList chosen_;
};

// The rows of a short table, which the page holds in memory: sorted and filtered here, by any column. The
// filter is a text that one of the cells contains, A to Z as a to z. For some thousands of rows; a million
// would be sorted in a second.
//
//   HeldRows counted{reasons};   // after the table, as a member of the page
//   counted.show(std::move(rows));
class HeldRows : public RowSource {
 public:
  // Becomes the table's source.
  explicit HeldRows(Table& table);

  // Replaces all rows and reloads the table.
  void show(TableRows rows);
  // The rows could not be found out: shows none, and the reason, which is in the user's language.
  void show_problem(std::string_view problem);
  const TableRows& rows() const { return rows_; }

  void start(const TableView& view) override;
  RowCount count() override { return {order_.size(), true}; }
  void read(std::uint64_t first, std::uint64_t count, TableRows& rows) override;
  bool read_key(std::string_view key, TableRows& rows) override;
  std::optional<std::uint64_t> position_of(std::string_view key) override;

 private:
  Table& table_;
  TableRows rows_;
  std::string why_;
  std::vector<std::uint32_t> order_;  // the rows of the view
};

}  // namespace zrl
