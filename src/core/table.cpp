#include "core/table.h"

#include <algorithm>
#include <utility>

#include "core/form.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::string_view falling = " desc";
constexpr std::string_view rising = " asc";

}  // namespace

Table::Table(Form& form, std::string_view name, std::string_view caption, std::string_view tool_tip,
             std::initializer_list<Column> columns)
    : CaptionedControl(form, ControlKind::table, name, caption, tool_tip), columns_(columns) {
  for (const Column& column : columns_) captions_.emplace_back(column.caption);
}

std::size_t Table::find_column(std::string_view name) const {
  const auto found = std::ranges::find(columns_, name, &Column::name);
  return static_cast<std::size_t>(found - columns_.begin());
}

void Table::set_filters(TextField& field) {
  filters_ = true;
  filter_field_ = &field;
  field.set_chooses_rows();
  field.on_change = [this, &field] { set_filter(field.text()); };
}

std::optional<Table::Order> Table::parse_order(std::string_view sort) const {
  Order order;
  sort = trim(sort);
  if (sort.empty()) return order;
  if (sort.ends_with(falling)) {
    order.descending = true;
    sort.remove_suffix(falling.size());
  } else if (sort.ends_with(rising)) {
    sort.remove_suffix(rising.size());
  }
  order.column = find_column(trim(sort));
  if (order.column == columns_.size()) return {};
  return order;
}

void Table::set_sort(std::string_view sort) {
  const std::optional<Order> order = parse_order(sort);
  if (!order) throw Error(error_number::invalid_property_value, "Invalid property value: " + name());
  std::string text;
  if (order->column != TableView::unsorted) text = columns_[order->column].name;
  if (order->descending) text += falling;
  if (text == sort_) return;
  sort_ = std::move(text);
  order_ = *order;
  changed(Property::sort);
  start();
}

void Table::set_filter(std::string_view filter) {
  if (filter == filter_) return;
  filter_ = filter;
  changed(Property::filter);
  put_chosen({});
  start();
}

void Table::start() {
  if (source_ == nullptr) return;
  form().run([this] {
    const bool sorted = order_.column != TableView::unsorted;
    source_->start({.column = order_.column,
                    .kind = sorted ? columns_[order_.column].kind : ColumnKind::text,
                    .descending = order_.descending,
                    .filter = filter_});
  });
  rows_changed();
}

void Table::reload() {
  start();
  if (chosen_.empty()) return;
  StringList there;
  for (std::size_t i = 0; i < chosen_.size(); ++i) {
    if (!read_key(chosen_[i]).empty()) there.push_back(chosen_[i]);
  }
  if (there.size() != chosen_.size()) put_chosen(std::move(there));
}

void Table::rows_changed() {
  changed(Property::rows);
}

void Table::set_chosen(StringList keys) {
  put_chosen(std::move(keys));
}

void Table::put_chosen(StringList keys) {
  if (keys.empty() && chosen_.empty()) return;
  chosen_ = std::move(keys);
  changed(Property::chosen);
}

std::string Table::chosen_cell(std::string_view column) {
  if (chosen_.empty()) return {};
  const TableRows row = read_key(chosen_[0]);
  return row.empty() ? std::string() : std::string(row.cell_at(0, find_column(column)));
}

RowCount Table::count() {
  RowCount count;
  if (source_ != nullptr) form().run([&] { count = source_->count(); });
  return count;
}

TableRows Table::read(std::uint64_t first, std::uint64_t count) {
  TableRows rows;
  if (source_ != nullptr) form().run([&] { source_->read(first, count, rows); });
  return rows;
}

TableRows Table::read_on(std::uint64_t first, std::uint64_t count) {
  TableRows rows;
  bool over = source_ == nullptr;
  while (rows.size() < count) {
    const TableRows part = read(first + rows.size(), count - rows.size());
    for (std::size_t i = 0; i < part.size(); ++i) rows.append(part, i);
    if (!part.empty()) continue;
    if (over) break;
    form().run([&] { over = !source_->read_on(); });
  }
  return rows;
}

TableRows Table::read_key(std::string_view key) {
  TableRows rows;
  if (source_ != nullptr) form().run([&] { source_->read_key(key, rows); });
  return rows;
}

std::optional<std::uint64_t> Table::position_of(std::string_view key) {
  std::optional<std::uint64_t> position;
  if (source_ != nullptr) form().run([&] { position = source_->position_of(key); });
  return position;
}

void Table::user_choose(std::int64_t index) {
  require_usable();
  const TableRows row = index < 0 ? TableRows() : read(static_cast<std::uint64_t>(index), 1);
  if (row.empty()) refuse("has no row " + std::to_string(index));
  put_chosen({row.key(0)});
  form().run(on_choose);
}

void Table::user_choose_keys(StringList keys) {
  require_usable();
  if (keys.size() > most_chosen) refuse("has at most " + std::to_string(most_chosen) + " rows chosen");
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (read_key(keys[i]).empty()) refuse("has no row with the key " + std::string(keys[i]));
  }
  put_chosen(std::move(keys));
  form().run(on_choose);
}

void Table::user_sort(std::string_view sort) {
  require_usable();
  const std::optional<Order> order = parse_order(sort);
  if (!order) refuse("has no such column");
  if (order->column != TableView::unsorted && !columns_[order->column].sorts) {
    refuse("does not sort by " + std::string(columns_[order->column].name));
  }
  set_sort(sort);
}

void Table::user_filter(std::string_view filter) {
  require_usable();
  if (!filters_) refuse("cannot be filtered");
  if (filter_field_ != nullptr) {
    filter_field_->user_type(filter);
  } else {
    form().run([&] { set_filter(filter); });
  }
}

HeldRows::HeldRows(Table& table) : table_(table) {
  table.set_source(*this);
}

void HeldRows::show(TableRows rows) {
  rows_ = std::move(rows);
  why_.clear();
  table_.reload();
}

void HeldRows::show_problem(std::string_view problem) {
  rows_ = {};
  why_ = problem;
  table_.reload();
}

void HeldRows::start(const TableView& view) {
  set_problem(why_);
  order_.clear();
  const std::string wanted = lower(view.filter);
  const auto passes = [&](std::size_t row) {
    if (wanted.empty()) return true;
    for (std::size_t column = 0; column < table_.columns().size(); ++column) {
      if (lower(rows_.cell_at(row, column)).find(wanted) != std::string::npos) return true;
    }
    return false;
  };
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (passes(row)) order_.push_back(static_cast<std::uint32_t>(row));
  }
  if (view.column == TableView::unsorted) return;
  const auto less = [&](std::uint32_t left, std::uint32_t right) {
    const std::string_view a = rows_.cell_at(left, view.column);
    const std::string_view b = rows_.cell_at(right, view.column);
    if (view.kind != ColumnKind::number) {
      return lower(a) < lower(b);
    }
    return to_number(a).value_or(0) < to_number(b).value_or(0);
  };
  std::ranges::sort(order_, [&](std::uint32_t left, std::uint32_t right) {
    if (less(left, right)) return !view.descending;
    if (less(right, left)) return view.descending;
    return left < right;
  });
}

void HeldRows::read(std::uint64_t first, std::uint64_t count, TableRows& rows) {
  for (std::uint64_t i = first; i < order_.size() && i - first < count; ++i) rows.append(rows_, order_[i]);
}

bool HeldRows::read_key(std::string_view key, TableRows& rows) {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (rows_.key(row) != key) continue;
    rows.append(rows_, row);
    return true;
  }
  return false;
}

std::optional<std::uint64_t> HeldRows::position_of(std::string_view key) {
  for (std::size_t i = 0; i < order_.size(); ++i) {
    if (rows_.key(order_[i]) == key) return i;
  }
  return {};
}

}  // namespace zrl
