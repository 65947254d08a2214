#include "core/row_source.h"

#include <algorithm>
#include <array>

#include "core/text/utf8.h"

namespace zrl {

std::string_view name_of(ColumnKind kind) {
  static constexpr std::array<std::string_view, 9> names = {"text", "number",   "time",  "address", "verdict",
                                                            "word", "severity", "check", "page"};
  return names[static_cast<std::size_t>(kind)];
}

TableRows& TableRows::row(std::string_view key) {
  begins_.push_back(static_cast<std::uint32_t>(cells_.size()));
  keys_.push_back(key);
  return *this;
}

TableRows& TableRows::cell(std::string_view text) {
  cells_.push_back(cut_between_characters(text, longest_cell));
  return *this;
}

TableRows& TableRows::link(std::string_view page, std::string_view query) {
  linked_.push_back(static_cast<std::uint32_t>(cells_.size() - 1));
  targets_.push_back(page);
  targets_.push_back(query);
  return *this;
}

std::string_view TableRows::cell_at(std::size_t row, std::size_t column) const {
  const std::size_t end = row + 1 < begins_.size() ? begins_[row + 1] : cells_.size();
  const std::size_t index = begins_[row] + column;
  return index < end ? cells_[index] : std::string_view();
}

std::optional<TableRows::Link> TableRows::link_at(std::size_t row, std::size_t column) const {
  const std::size_t end = row + 1 < begins_.size() ? begins_[row + 1] : cells_.size();
  const std::size_t index = begins_[row] + column;
  const auto found = std::ranges::lower_bound(linked_, index);
  if (index >= end || found == linked_.end() || *found != index) return {};
  const auto place = static_cast<std::size_t>(found - linked_.begin());
  return Link{targets_[2 * place], targets_[2 * place + 1]};
}

void TableRows::append(const TableRows& from, std::size_t index) {
  row(from.key(index));
  const std::size_t end = index + 1 < from.begins_.size() ? from.begins_[index + 1] : from.cells_.size();
  for (std::size_t column = 0; from.begins_[index] + column < end; ++column) {
    cell(from.cell_at(index, column));
    if (const auto linked = from.link_at(index, column)) link(linked->page, linked->query);
  }
}

}  // namespace zrl
