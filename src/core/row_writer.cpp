#include "core/row_writer.h"

#include "core/text/ascii.h"
#include "core/text/csv.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

void append_json(std::string& line, std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  line += '"';
  for (const char c : valid_utf8(text)) {
    if (c == '"' || c == '\\') {
      line += '\\';
      line += c;
    } else if (is_control(c)) {
      line += "\\u00";
      line += digits[static_cast<unsigned char>(c) >> 4];
      line += digits[static_cast<unsigned char>(c) & 15];
    } else {
      line += c;
    }
  }
  line += '"';
}

}  // namespace

RowWriter::RowWriter(std::ostream& out, RowFormat format, const std::vector<Column>& columns)
    : out_(out), format_(format), columns_(columns) {
  if (format_ != RowFormat::csv) return;
  std::string line;
  for (const Column& column : columns_) append_csv(line, column.name);
  out_ << line << "\r\n";
}

void RowWriter::write(const TableRows& rows, std::size_t row) {
  std::string line;
  for (std::size_t place = 0; place < columns_.size(); ++place) {
    const std::string_view cell = rows.cell_at(row, place);
    if (format_ == RowFormat::csv) {
      append_csv(line, cell);
      continue;
    }
    line += place == 0 ? '{' : ',';
    append_json(line, columns_[place].name);
    line += ':';
    append_json(line, cell);
  }
  out_ << line << (format_ == RowFormat::csv ? "\r\n" : "}\n");
}

}  // namespace zrl
