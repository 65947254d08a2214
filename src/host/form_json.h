#pragma once

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <map>

#include "core/chart.h"
#include "core/controls.h"
#include "core/form.h"
#include "core/table.h"

namespace zrl {

// A property as JSON (RFC 8259): texts are made well-formed UTF-8, items become an array of texts.
boost::json::value to_json(const PropertyValue& value);

// The marks in a source text (faults of a script), one object a mark.
boost::json::array marks_json(const TextField& field);

// The columns of a table, one object a column; their captions in the user's language.
boost::json::array columns_json(const Table& table);

// A row as one object: `key`, a member a column, and `links` for the cells that are links of their own. The
// cells of a column of numbers are numbers where they are such.
boost::json::object row_json(const Table& table, const TableRows& rows, std::size_t row);

// The rows that are printed of each table, by their positions.
struct RowWindow {
  std::uint64_t first = 0;
  std::uint64_t count = 100;
};
using RowWindows = std::map<const Control*, RowWindow>;
// Adds what a chart holds: `labels` and `series`, each with `name` and `values`; for people with `caption`
// and `tone` too.
enum class ForWhom : std::uint8_t { programs, people };
void add_numbers(const Chart& chart, ForWhom reader, boost::json::object& properties);

// One object for each control, by its name: `kind` and the properties of that kind, and `marks` for a source
// text that has some. Copies all items of all lists; of tables the rows of the window, the first hundred if
// none is given, which are read now.
boost::json::object controls_json(const Form& form, const RowWindows& windows = {});

}  // namespace zrl
