#include "host/form_json.h"

#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

boost::json::string text_json(std::string_view text) {
  return is_valid_utf8(text) ? boost::json::string(text) : boost::json::string(valid_utf8(text));
}

}  // namespace

boost::json::value to_json(const PropertyValue& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  if (const auto* text = std::get_if<std::string_view>(&value)) return text_json(*text);
  const StringList& items = *std::get<const StringList*>(value);
  boost::json::array array;
  array.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) array.emplace_back(text_json(items[i]));
  return array;
}

boost::json::array marks_json(const TextField& field) {
  boost::json::array marks;
  for (const TextField::Mark& mark : field.marks()) {
    marks.push_back({{"name", text_json(mark.name)},
                     {"line", mark.line},
                     {"column", mark.column},
                     {"text", text_json(mark.text)},
                     {"elsewhere", mark.elsewhere}});
  }
  return marks;
}

void add_numbers(const Chart& chart, ForWhom reader, boost::json::object& properties) {
  boost::json::array labels;
  for (std::size_t i = 0; i < chart.labels().size(); ++i) labels.push_back(text_json(chart.labels()[i]));
  properties["labels"] = std::move(labels);
  boost::json::array all;
  for (std::size_t i = 0; i < chart.series().size(); ++i) {
    boost::json::object series{{"name", chart.series()[i].name}};
    if (reader == ForWhom::people) series["caption"] = text_json(chart.caption_of(i));
    if (reader == ForWhom::people) series["tone"] = name_of(chart.series()[i].tone);
    const auto& values = chart.values_of(i);
    series["values"] = boost::json::array(values.begin(), values.end());
    all.push_back(std::move(series));
  }
  properties["series"] = std::move(all);
}

boost::json::array columns_json(const Table& table) {
  boost::json::array columns;
  for (std::size_t i = 0; i < table.columns().size(); ++i) {
    const Column& column = table.columns()[i];
    boost::json::object told{
        {"name", column.name}, {"caption", text_json(table.caption_of(i))}, {"kind", name_of(column.kind)}};
    if (column.sorts) told["sorts"] = true;
    if (column.minor) told["minor"] = true;
    if (!column.page.empty()) told["page"] = column.page;
    columns.push_back(std::move(told));
  }
  return columns;
}

boost::json::object row_json(const Table& table, const TableRows& rows, std::size_t row) {
  boost::json::object told{{"key", text_json(rows.key(row))}};
  boost::json::object links;
  for (std::size_t i = 0; i < table.columns().size(); ++i) {
    const Column& column = table.columns()[i];
    const std::string_view cell = rows.cell_at(row, i);
    const auto number = column.kind == ColumnKind::number || column.kind == ColumnKind::check
                            ? to_number(cell)
                            : std::nullopt;
    if (number) {
      told[column.name] = *number;
    } else {
      told[column.name] = text_json(cell);
    }
    if (const auto link = rows.link_at(row, i)) {
      links[column.name] = {{"page", text_json(link->page)}, {"query", text_json(link->query)}};
    }
  }
  if (!links.empty()) told["links"] = std::move(links);
  return told;
}

namespace {

void add_table(Table& table, const RowWindow& window, boost::json::object& properties) {
  properties["columns"] = columns_json(table);
  // Windows first: reading them may find out more about the count.
  const TableRows rows = table.read_on(window.first, window.count);
  const RowCount count = table.count();
  properties["total"] = count.rows;
  if (!count.exact) properties["more"] = true;
  properties["sort"] = table.sort();
  properties["filter"] = text_json(table.filter());
  boost::json::array chosen;
  for (std::size_t i = 0; i < table.chosen().size(); ++i) chosen.push_back(text_json(table.chosen()[i]));
  properties["chosen"] = std::move(chosen);
  boost::json::array told;
  for (std::size_t row = 0; row < rows.size(); ++row) told.push_back(row_json(table, rows, row));
  properties["rows"] = std::move(told);
  if (!table.problem().empty()) properties["problem"] = text_json(table.problem());
}

}  // namespace

boost::json::object controls_json(const Form& form, const RowWindows& windows) {
  boost::json::object controls;
  for (Control* control : form.controls()) {
    boost::json::object properties;
    properties["kind"] = name_of(control->kind());
    for (const Property property : properties_of(control->kind())) {
      properties[name_of(property)] = to_json(control->get(property));
    }
    if (control->kind() == ControlKind::text_field) {
      const auto& field = static_cast<const TextField&>(*control);
      if (!field.marks().empty()) properties["marks"] = marks_json(field);
    }
    if (control->kind() == ControlKind::table) {
      const auto window = windows.find(control);
      add_table(static_cast<Table&>(*control), window == windows.end() ? RowWindow() : window->second,
                properties);
    }
    if (control->kind() == ControlKind::chart) {
      add_numbers(static_cast<const Chart&>(*control), ForWhom::programs, properties);
    }
    controls[control->name()] = std::move(properties);
  }
  return controls;
}

}  // namespace zrl
