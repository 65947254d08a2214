#pragma once

#include <cstdint>
#include <ostream>
#include <vector>

#include "core/row_source.h"

namespace zrl {

// For other programs: comma-separated values (RFC 4180, see core/text/csv.h for formulas) with the names of
// the columns in their first line, or JSON lines, an object of texts (RFC 8259) for each row.
enum class RowFormat : std::uint8_t { csv, json_lines };

// Writes the rows of a table, one line each, with all of their cells. Bytes that are no UTF-8 become U+FFFD.
// Whether writing worked is told by the stream.
class RowWriter {
 public:
  // Both must outlive the object. Writes the names of the columns where the format has them.
  RowWriter(std::ostream& out, RowFormat format, const std::vector<Column>& columns);

  void write(const TableRows& rows, std::size_t row);

 private:
  std::ostream& out_;
  RowFormat format_;
  const std::vector<Column>& columns_;
};

}  // namespace zrl
