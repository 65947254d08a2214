#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zrl::command {

// One step of the command `do`, as the user wrote it (UTF-8):
//
//   NAME            click
//   NAME=TEXT       enter a text, or choose the item with this text
//   NAME#I          choose the item at index I
//   NAME.tick       a timer's tick
//   NAME.key=KEYS   choose the rows of a table with these keys, with commas between them
//   NAME.sort=TEXT  order a table by a column, "COLUMN" or "COLUMN desc"
//   NAME.filter=TEXT    filter a table
//   NAME.window=FROM,COUNT    which rows of a table the report has
//   FORM.close      close a dialog
//   answer=ok       how message boxes are answered from now on (or answer=cancel)
//
// NAME may be preceded by the name of a form and a dot: "transfer.source=lists/black.txt".
struct Step {
  enum class Kind { click, text, item, tick, close, answer };

  Kind kind = Kind::click;
  std::string written;
  std::string target;  // [FORM.]NAME, or FORM for `close`
  std::string text;
  std::int64_t index = 0;
};

// What a step on a table is about, if the target ends with one of its words and a dot before it: "key",
// "sort", "filter" or "window", which is then taken off. A control may have such a name, so callers look
// whether there is a table of the name that is left.
enum class TablePart { none, key, sort, filter, window };
TablePart take_table_part(std::string& target);

// A step that breaks this syntax.
class BadStep : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Parses one step. Raises BadStep; whether the control exists is found out only when the step runs.
Step parse_step(std::string_view written);

}  // namespace zrl::command
