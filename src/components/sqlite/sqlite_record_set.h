#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "components/sqlite/sqlite_connection.h"

namespace zrl::sqlite {

// The values of some rows in one buffer.
class RowBlock {
 public:
  void clear(std::size_t columns);
  // Appends the query's current row, from this column on.
  void append(const Query& query, int first_column);
  // Appends a row that no longer exists: all its values are null.
  void append_missing();

  std::size_t rows() const { return columns_ == 0 ? 0 : cells_.size() / columns_; }
  std::size_t size() const { return bytes_.size(); }
  bool is_null(std::size_t row, std::size_t column) const { return cells_[row * columns_ + column].null; }
  std::string_view text(std::size_t row, std::size_t column) const;

 private:
  struct Cell {
    std::size_t end;
    bool null;
  };

  std::size_t columns_ = 0;
  std::string bytes_;
  std::vector<Cell> cells_;
};

// Over one table ("SELECT * from TABLE ...") the set holds the rows' keys. A visited row is read with the
// columns that were asked for on earlier rows, if they are small; moving from row to row reads blocks of
// rows. Other columns are read when they are asked for. Over any other SELECT the set holds the rows
// themselves.
class SqliteRecordSet : public RecordSet {
 public:
  SqliteRecordSet(std::shared_ptr<Session> session, const Statement& select, Connection::Access access);

  std::int64_t count() const override { return count_; }
  bool at_end() const override { return position_ >= count_ || deleted_; }
  void move_first() override { place(0); }
  void move_next() override;
  void move(std::int64_t rows) override;

  bool is_null(std::string_view column) override { return read(find(column)).null; }
  std::string_view text(std::string_view column) override { return read(find(column)).text; }
  std::string_view bytes(std::string_view column) override { return read(find(column)).text; }
  std::int64_t number(std::string_view column) override;

  void set_text(std::string_view column, std::string_view text) override;
  void set_bytes(std::string_view column, std::string_view bytes) override;
  void set_number(std::string_view column, std::int64_t number) override;
  void update() override;
  void delete_current() override;

 private:
  struct Value {
    bool null;
    std::string_view text;
  };

  enum class Kind : char { text, bytes, number };

  struct Column {
    std::string name;
    bool wanted = false;   // read together with the row
    bool large = false;    // never to be wanted
    int slot = -1;         // its place in the block, or -1
    bool fetched = false;  // of the current row, by itself
    bool null = true;
    std::string text;
    std::optional<Kind> pending;
    std::string new_text;
  };

  bool open_keys(const Statement& select, Connection::Access access);
  void open_rows(const Statement& select);

  std::size_t find(std::string_view name);
  Value read(std::size_t index);
  void fetch(Column& column);
  void prepare_row();
  void load_block();
  void prepare_block();
  void read_range(std::span<const std::int64_t> keys);
  void place(std::int64_t position);
  void forget_row();
  void change(std::string_view column, Kind kind, std::string text);
  void require_updatable() const;
  void require_row() const;
  std::int64_t key() const { return keys_[static_cast<std::size_t>(position_)]; }

  std::shared_ptr<Session> session_;
  std::string table_;  // as the statement names it; empty if the set holds the rows
  bool updatable_;
  std::vector<std::int64_t> keys_;
  std::vector<Column> columns_;
  std::int64_t count_ = 0;
  std::int64_t position_ = 0;
  std::size_t last_found_ = 0;
  bool deleted_ = false;
  bool row_ready_ = false;
  int steps_ = 0;  // moves to the next row without another move between them

  RowBlock block_;
  std::size_t wanted_ = 0;
  Query upwards_;
  Query downwards_;
  std::int64_t block_first_ = 0;
  std::int64_t block_changes_ = 0;  // made through the session before the block was read
  bool wants_changed_ = true;
};

}  // namespace zrl::sqlite
