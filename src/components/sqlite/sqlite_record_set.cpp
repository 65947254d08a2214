#include "components/sqlite/sqlite_record_set.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <utility>

#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

constexpr std::size_t block_rows = 256;
constexpr std::size_t block_bytes = std::size_t{256} << 10;
constexpr std::size_t large_value = std::size_t{16} << 10;
constexpr int steps_of_a_walk = 2;

class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  bool accept(std::string_view word) {
    skip_blanks();
    const std::size_t length = word_length();
    if (!equals_ignoring_case(text_.substr(0, length == 0 ? word.size() : length), word)) return false;
    text_.remove_prefix(word.size());
    return true;
  }

  std::string_view name() {
    skip_blanks();
    std::size_t length = word_length();
    if (text_.starts_with('[')) length = text_.find(']') + 1;
    const std::string_view result = text_.substr(0, length);
    text_.remove_prefix(length);
    return result;
  }

  std::string_view rest() {
    skip_blanks();
    return text_;
  }

 private:
  void skip_blanks() { text_.remove_prefix(std::min(text_.find_first_not_of(" \t\r\n"), text_.size())); }

  std::size_t word_length() const {
    const auto other = [](char c) {
      return !(c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'));
    };
    return static_cast<std::size_t>(std::find_if(text_.begin(), text_.end(), other) - text_.begin());
  }

  std::string_view text_;
};

struct TableSelect {
  std::string_view table;
  std::string rest;
};

// Takes "SELECT * from TABLE where ... order by ..." apart.
std::optional<TableSelect> table_select(std::string_view skeleton) {
  Words words(skeleton);
  if (!words.accept("select") || !words.accept("*") || !words.accept("from")) return std::nullopt;
  const std::string_view table = words.name();
  const std::string_view rest = words.rest();
  const auto starts_with = [&](std::string_view word) { return Words(rest).accept(word); };
  if (table.empty() || !(rest.empty() || starts_with("where") || starts_with("order"))) return std::nullopt;
  TableSelect result{table, std::string(rest)};
  // Without an order, rows are expected as inserted; a query for their keys alone might follow an index.
  if (lower(rest).find("order by ") == std::string::npos) result.rest += " ORDER BY rowid";
  return result;
}

// Keys that rise or fall with few others between them: a sweep is quicker than many look-ups.
bool is_dense(std::span<const std::int64_t> keys) {
  const bool rising = std::is_sorted(keys.begin(), keys.end());
  if (!rising && !std::is_sorted(keys.begin(), keys.end(), std::greater<>())) return false;
  const auto low = static_cast<std::uint64_t>(std::min(keys.front(), keys.back()));
  const auto high = static_cast<std::uint64_t>(std::max(keys.front(), keys.back()));
  return high - low <= 3 * keys.size();
}

// The number at the start of a text, as the engine reads numbers.
std::int64_t leading_number(std::string_view text) {
  text = trim(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int64_t result = 0;
  std::from_chars(text.data(), text.data() + text.size(), result);
  return result;
}

}  // namespace

void RowBlock::clear(std::size_t columns) {
  columns_ = columns;
  bytes_.clear();
  cells_.clear();
}

void RowBlock::append(const Query& query, int first_column) {
  for (std::size_t i = 0; i < columns_; ++i) {
    const int column = first_column + static_cast<int>(i);
    const std::string_view text = query.text(column);
    bytes_ += text;
    cells_.push_back({bytes_.size(), text.empty() && query.is_null(column)});
  }
}

void RowBlock::append_missing() {
  cells_.insert(cells_.end(), columns_, {bytes_.size(), true});
}

std::string_view RowBlock::text(std::size_t row, std::size_t column) const {
  const std::size_t cell = row * columns_ + column;
  const std::size_t begin = cell == 0 ? 0 : cells_[cell - 1].end;
  return std::string_view(bytes_).substr(begin, cells_[cell].end - begin);
}

SqliteRecordSet::SqliteRecordSet(std::shared_ptr<Session> session, const Statement& select,
                                 Connection::Access access)
    : session_(std::move(session)), updatable_(access == Connection::Access::updatable) {
  if (!open_keys(select, access)) open_rows(select);
}

bool SqliteRecordSet::open_keys(const Statement& select, Connection::Access access) {
  const std::optional<TableSelect> parts = table_select(select.skeleton());
  try {
    if (!parts) throw Error(SQLITE_ERROR, "the statement selects no whole rows of one table");
    std::string keys = "SELECT rowid FROM ";
    keys.append(parts->table).append(" ").append(parts->rest);
    // Otherwise the engine would read the keys from the smallest index, in its order.
    const std::string rest = lower(parts->rest);
    if (rest.find("order by") == rest.npos && rest.find("limit") == rest.npos) keys += " ORDER BY rowid";
    const Loan rows = session_->statements.prepare(keys, select);
    while (rows->step()) {
      if (rows->is_null(0)) throw Error(SQLITE_ERROR, "the rows have no keys");
      keys_.push_back(rows->number(0));
    }
    keys_.shrink_to_fit();
  } catch (const Error& error) {
    // A view, or a table without row ids, can still be read row by row.
    if (error.number() != SQLITE_ERROR || access == Connection::Access::updatable) throw;
    keys_.clear();
    return false;
  }
  table_ = parts->table;
  const Query all(session_->engine, "SELECT * FROM " + table_);
  for (int i = 0; i < all.columns(); ++i) columns_.emplace_back().name = all.name(i);
  count_ = static_cast<std::int64_t>(keys_.size());
  return true;
}

void SqliteRecordSet::open_rows(const Statement& select) {
  const Loan rows = session_->statements.prepare(select);
  for (int i = 0; i < rows->columns(); ++i) columns_.emplace_back().name = rows->name(i);
  block_.clear(columns_.size());
  while (rows->step()) block_.append(*rows, 0);
  count_ = static_cast<std::int64_t>(block_.rows());
}

void SqliteRecordSet::move_next() {
  const int steps = steps_;
  place(std::min(position_ + 1, count_));
  steps_ = steps + 1;
}

void SqliteRecordSet::move(std::int64_t rows) {
  const std::int64_t forward = std::min(rows, count_ - position_);
  place(std::max<std::int64_t>(forward, -position_) + position_);
}

void SqliteRecordSet::place(std::int64_t position) {
  position_ = position;
  steps_ = 0;
  deleted_ = false;
  forget_row();
}

void SqliteRecordSet::forget_row() {
  row_ready_ = false;
  for (Column& column : columns_) {
    column.fetched = false;
    column.pending.reset();
  }
}

std::int64_t SqliteRecordSet::number(std::string_view column) {
  return leading_number(read(find(column)).text);
}

// Rows are mostly read column by column in the same order, so the search goes on where the last
// one ended.
std::size_t SqliteRecordSet::find(std::string_view name) {
  const std::size_t count = columns_.size();
  for (std::size_t i = 1; i <= count; ++i) {
    const std::size_t index = last_found_ + i < count ? last_found_ + i : (last_found_ + i) % count;
    if (columns_[index].name == name) return last_found_ = index;
  }
  for (std::size_t index = 0; index < count; ++index) {
    if (equals_ignoring_case(columns_[index].name, name)) return last_found_ = index;
  }
  throw Error(error_number::subscript_out_of_range, "no such column: " + std::string(name));
}

SqliteRecordSet::Value SqliteRecordSet::read(std::size_t index) {
  require_row();
  Column& column = columns_[index];
  if (column.pending) return {false, column.new_text};
  if (table_.empty()) {
    const auto row = static_cast<std::size_t>(position_);
    return {block_.is_null(row, index), block_.text(row, index)};
  }
  if (!row_ready_) prepare_row();
  if (column.slot >= 0) {
    const auto row = static_cast<std::size_t>(position_ - block_first_);
    const auto slot = static_cast<std::size_t>(column.slot);
    return {block_.is_null(row, slot), block_.text(row, slot)};
  }
  if (!column.fetched) fetch(column);
  return {column.null, column.text};
}

void SqliteRecordSet::fetch(Column& column) {
  const Loan row = session_->statements.prepare("SELECT " + quoted_name(column.name) + " FROM " + table_ +
                                                " WHERE rowid=?1");
  row->bind(1, key());
  const bool present = row->step();
  column.null = !present || row->is_null(0);
  column.text = column.null ? std::string_view() : row->text(0);
  column.fetched = true;
  column.large = column.large || column.text.size() > large_value;
  if (present && !column.large && !column.wanted) column.wanted = wants_changed_ = true;
}

// Makes the block cover the current row, if any columns are wanted at all. The block does not change again
// before the set moves, because callers hold views into it.
void SqliteRecordSet::prepare_row() {
  const bool covered = !wants_changed_ && block_changes_ == session_->engine.total_changes() &&
                       position_ >= block_first_ &&
                       position_ - block_first_ < static_cast<std::int64_t>(block_.rows());
  if (!covered) load_block();
  row_ready_ = true;
}

void SqliteRecordSet::load_block() {
  if (std::exchange(wants_changed_, false)) prepare_block();
  block_.clear(wanted_);
  if (wanted_ == 0) return;
  block_first_ = position_;
  block_changes_ = session_->engine.total_changes();
  const auto here = keys_.begin() + position_;
  const auto left = static_cast<std::size_t>(keys_.end() - here);
  const std::span<const std::int64_t> keys(here, steps_ < steps_of_a_walk ? 1 : std::min(block_rows, left));
  if (is_dense(keys)) {
    read_range(keys);
  } else {
    const Snapshot snapshot(session_->engine);
    for (std::size_t i = 0; i < keys.size() && block_.size() < block_bytes; ++i)
      read_range(keys.subspan(i, 1));
  }
  for (Column& column : columns_) {
    if (column.slot < 0 || block_.text(0, static_cast<std::size_t>(column.slot)).size() <= large_value) {
      continue;
    }
    column.large = true;
    column.wanted = false;
    wants_changed_ = true;
  }
}

void SqliteRecordSet::prepare_block() {
  std::string select = "SELECT rowid";
  wanted_ = 0;
  for (Column& column : columns_) {
    column.slot = column.wanted ? static_cast<int>(wanted_++) : -1;
    if (column.wanted) select += ", " + quoted_name(column.name);
  }
  if (wanted_ == 0) return;
  select += " FROM " + table_ + " WHERE rowid BETWEEN ?1 AND ?2 ORDER BY rowid";
  upwards_ = Query(session_->engine, select, Query::Life::kept);
  downwards_ = Query(session_->engine, select + " DESC", Query::Life::kept);
}

// Adds the rows of these keys, which rise or fall, in one sweep; stops early when the block is full.
void SqliteRecordSet::read_range(std::span<const std::int64_t> keys) {
  const bool upwards = keys.front() <= keys.back();
  Query& rows = upwards ? upwards_ : downwards_;
  const Loan sweep(rows);
  rows.bind(1, std::min(keys.front(), keys.back())).bind(2, std::max(keys.front(), keys.back()));
  auto wanted = keys.begin();
  while (wanted != keys.end() && rows.step()) {
    const std::int64_t found = rows.number(0);
    for (; upwards ? *wanted < found : *wanted > found; ++wanted) block_.append_missing();
    if (*wanted != found) continue;  // a row that the set leaves out
    block_.append(rows, 1);
    ++wanted;
    if (block_.size() >= block_bytes) return;
  }
  for (; wanted != keys.end(); ++wanted) block_.append_missing();
}

void SqliteRecordSet::set_text(std::string_view column, std::string_view text) {
  change(column, Kind::text, std::string(text));
}

void SqliteRecordSet::set_bytes(std::string_view column, std::string_view bytes) {
  change(column, Kind::bytes, std::string(bytes));
}

void SqliteRecordSet::set_number(std::string_view column, std::int64_t number) {
  change(column, Kind::number, std::to_string(number));
}

void SqliteRecordSet::change(std::string_view column, Kind kind, std::string text) {
  require_updatable();
  require_row();
  Column& changed = columns_[find(column)];
  changed.pending = kind;
  changed.new_text = std::move(text);
}

void SqliteRecordSet::update() {
  require_updatable();
  require_row();
  std::string assignments;
  for (const Column& column : columns_) {
    if (column.pending) assignments += (assignments.empty() ? "" : ", ") + quoted_name(column.name) + "=?";
  }
  if (assignments.empty()) return;
  session_->engine.enter(Engine::Use::write);
  Query query(session_->engine, "UPDATE " + table_ + " SET " + assignments + " WHERE rowid=?");
  int parameter = 0;
  for (const Column& column : columns_) {
    if (!column.pending) continue;
    ++parameter;
    if (column.pending == Kind::text) query.bind(parameter, column.new_text);
    if (column.pending == Kind::bytes) query.bind_bytes(parameter, column.new_text);
    if (column.pending == Kind::number) query.bind(parameter, leading_number(column.new_text));
  }
  if (query.bind(parameter + 1, key()).run() == 0) {
    throw Error(SQLITE_NOTFOUND, "the row has been deleted meanwhile");
  }
  forget_row();
}

void SqliteRecordSet::delete_current() {
  require_updatable();
  require_row();
  session_->engine.enter(Engine::Use::write);
  const Loan deletion = session_->statements.prepare("DELETE FROM " + table_ + " WHERE rowid=?1");
  deletion->bind(1, key()).run();
  forget_row();
  deleted_ = true;
}

void SqliteRecordSet::require_updatable() const {
  if (!updatable_) throw Error(error_number::property_not_supported, "the record set is read-only");
}

void SqliteRecordSet::require_row() const {
  if (at_end()) throw Error(error_number::subscript_out_of_range, "no current row");
}

}  // namespace zrl::sqlite
