#pragma once

#include <initializer_list>
#include <string_view>

#include "core/contracts/database.h"

namespace zrl::sample {

struct Cell {
  std::string_view column;
  std::string_view content;
  bool bytes = false;
};

// Sets columns of the one row that the statement selects, for contents that no statement can hold:
// apostrophes, zero bytes, bytes that are no UTF-8. Raises zrl::Error.
inline void set_cells(Connection& conn, const Statement& select, std::initializer_list<Cell> cells) {
  const auto row = conn.open(select, Connection::Access::updatable);
  for (const Cell& cell : cells) {
    if (cell.bytes) {
      row->set_bytes(cell.column, cell.content);
    } else {
      row->set_text(cell.column, cell.content);
    }
  }
  row->update();
}

}  // namespace zrl::sample
