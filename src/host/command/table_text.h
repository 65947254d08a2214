#pragma once

#include <iosfwd>

#include "core/table.h"

namespace zrl::command {

// The rows of a table for people on a terminal: a line of captions and a line a row, in columns. Columns
// without any text are left out, long cells are cut, and all texts are made printable. Nothing is printed if
// there are no rows.
void print_table(std::ostream& out, Table& table, const TableRows& rows);

}  // namespace zrl::command
