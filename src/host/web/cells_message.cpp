#include "host/web/cells_message.h"

#include <algorithm>
#include <boost/json.hpp>

#include "core/console.h"
#include "core/form.h"
#include "core/text/time_stamp.h"
#include "core/text/utf8.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

constexpr std::size_t longest_cell = 1 << 10;
constexpr std::size_t longest_cells = 1 << 20;  // of a message

json::string part(std::string_view text, std::size_t& bytes) {
  json::string result(valid_utf8(cut_between_characters(text, longest_cell)));
  if (text.size() > longest_cell) result += "\u2026";
  bytes += result.size();
  return result;
}

json::value cell_json(const Table& table, const TableRows& rows, std::size_t row, std::size_t index,
                      std::size_t& bytes) {
  const Column& column = table.columns()[index];
  std::string_view text = rows.cell_at(row, index);
  std::string translated;
  if (column.kind == ColumnKind::word) {
    translated = table.form().console().localisation().translate(text);
    text = translated;
  }
  json::object cell{{"text", part(text, bytes)}};
  if (column.kind == ColumnKind::time) {
    if (const auto seconds = seconds_of(text)) cell["at"] = *seconds;
  }
  if (const auto link = rows.link_at(row, index)) {
    cell["page"] = valid_utf8(link->page);
    cell["query"] = valid_utf8(link->query);
  }
  if (cell.size() == 1) return std::move(cell["text"]);
  return cell;
}

}  // namespace

std::string cells_message(std::string_view form, Table& table, std::uint64_t request, WindowOf window,
                          const std::optional<std::string>& sought) {
  const std::uint64_t revision = table.revision(Property::rows);
  const TableRows rows = table.read(window.start, std::min(window.count, longest_window));
  const RowCount count = table.count();
  json::array told;
  std::size_t bytes = 0;
  for (std::size_t row = 0; row < rows.size() && bytes < longest_cells; ++row) {
    json::array cells;
    for (std::size_t i = 0; i < table.columns().size(); ++i) {
      cells.push_back(cell_json(table, rows, row, i, bytes));
    }
    told.push_back(json::object{{"key", valid_utf8(rows.key(row))}, {"cells", std::move(cells)}});
  }
  json::object message{{"type", "cells"},         {"form", form},
                       {"control", table.name()}, {"request", request},
                       {"revision", revision},    {"length", count.rows},
                       {"more", !count.exact},    {"start", window.start},
                       {"rows", std::move(told)}, {"problem", valid_utf8(table.problem())}};
  if (sought) {
    const std::optional<std::uint64_t> position = table.position_of(*sought);
    message["found"] = position ? json::value(*position) : json::value(nullptr);
  }
  return json::serialize(message);
}

}  // namespace zrl::web
