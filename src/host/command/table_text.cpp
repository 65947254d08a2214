#include "host/command/table_text.h"

#include <algorithm>
#include <ostream>

#include "core/text/printable.h"
#include "core/text/utf8.h"

namespace zrl::command {

namespace {

constexpr std::size_t widest_cell = 60;

// "2026-11-21 22:10:00" of fourteen digits.
std::string time_text(std::string_view cell) {
  if (cell.size() != 14 || cell.find_first_not_of("0123456789") != cell.npos) return printable(cell);
  std::string text(cell);
  for (const auto& [place, mark] : {std::pair(12, ':'), {10, ':'}, {8, ' '}, {6, '-'}, {4, '-'}})
    text.insert(static_cast<std::size_t>(place), 1, mark);
  return text;
}

std::string cell_text(ColumnKind kind, std::string_view cell) {
  std::string text = kind == ColumnKind::time ? time_text(cell) : printable(cell);
  if (character_count(text) <= widest_cell) return text;
  std::string_view rest = text;
  for (std::size_t i = 0; i + 3 < widest_cell; ++i) take_character(rest);
  return text.substr(0, text.size() - rest.size()) + "...";
}

}  // namespace

void print_table(std::ostream& out, Table& table, const TableRows& rows) {
  if (rows.empty()) return;
  const std::size_t columns = table.columns().size();
  std::vector<std::size_t> widths(columns, 0);
  const auto text_at = [&](std::size_t row, std::size_t column) {
    return cell_text(table.columns()[column].kind, rows.cell_at(row, column));
  };
  for (std::size_t column = 0; column < columns; ++column) {
    for (std::size_t row = 0; row < rows.size(); ++row)
      widths[column] = std::max(widths[column], character_count(text_at(row, column)));
    if (widths[column] > 0)
      widths[column] = std::max(widths[column], character_count(table.caption_of(column)));
  }
  std::string line;
  std::size_t pending = 0;  // blanks, which no line ends in
  const auto put = [&](std::size_t column, const std::string& text) {
    if (widths[column] == 0) return;
    const std::size_t blanks = widths[column] - std::min(widths[column], character_count(text));
    const bool right = table.columns()[column].kind == ColumnKind::number;
    line.append(pending + (right ? blanks : 0), ' ').append(text);
    pending = 2 + (right ? 0 : blanks);
  };
  const auto end_line = [&] {
    out << line << '\n';
    line.clear();
    pending = 0;
  };
  for (std::size_t column = 0; column < columns; ++column) put(column, std::string(table.caption_of(column)));
  end_line();
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (std::size_t column = 0; column < columns; ++column) put(column, text_at(row, column));
    end_line();
  }
}

}  // namespace zrl::command
