#include <algorithm>
#include <boost/json/serialize.hpp>
#include <chrono>
#include <limits>
#include <ostream>

#include "core/console.h"
#include "core/row_writer.h"
#include "core/table.h"
#include "core/text/printable.h"
#include "core/text/time_stamp.h"
#include "core/text/utf8.h"
#include "host/command/commands.h"
#include "host/command/step_runner.h"
#include "host/composition.h"
#include "host/folder.h"
#include "host/form_json.h"

namespace zrl::command {

namespace {

constexpr std::uint64_t read_at_once = 200;
constexpr std::size_t longest_cell = 60;

std::string readable_cell(std::string_view text) {
  if (text.size() <= longest_cell) return printable(text);
  return printable(cut_between_characters(text, longest_cell)) + "...";
}

std::string readable_row(const Table& table, const TableRows& rows, std::size_t row) {
  std::string line;
  for (std::size_t column = 0; column < table.columns().size(); ++column) {
    const std::string_view cell = rows.cell_at(row, column);
    line += (column == 0 ? "" : "  ") + (cell.empty() ? "-" : readable_cell(cell));
  }
  return line;
}

// The number of rows that were printed.
std::uint64_t print_rows(std::ostream& out, const Arguments& arguments, Table& table) {
  std::optional<RowWriter> csv;
  if (arguments.messages.csv) csv.emplace(out, RowFormat::csv, table.columns());
  std::uint64_t printed = 0;
  while (printed < arguments.messages.limit) {
    const std::uint64_t wanted = std::min(read_at_once, arguments.messages.limit - printed);
    const TableRows rows = table.read_on(printed, wanted);
    if (rows.empty()) break;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      if (csv) {
        csv->write(rows, row);
      } else if (arguments.json) {
        out << (printed + row == 0 ? "" : ",\n") << boost::json::serialize(row_json(table, rows, row));
      } else {
        out << readable_row(table, rows, row) << '\n';
      }
    }
    printed += rows.size();
  }
  return printed;
}

}  // namespace

int run_messages(const Arguments& arguments, const Program& program, std::ostream& out, std::ostream& err) {
  const PageEntry* entry = find_page(program.pages, "messages");
  if (entry == nullptr) throw UsageError("this build has no page of messages");
  const MessagesOptions& options = arguments.messages;
  StepRunner runner([] { return std::optional<Step>(); }, false);
  Console console(arguments.folder, runner);
  register_components(console);
  if (!std::filesystem::exists(arguments.folder)) lay_out_folder(console);
  const auto now = std::chrono::duration_cast<std::chrono::seconds>(console.now().time_since_epoch()).count();
  const auto since = options.since.empty() ? std::optional<std::string>("") : since_time(options.since, now);
  if (!since) throw UsageError("--since takes 24h, 7d, 2026-01-31 or \"2026-01-31 08:00\"");
  const std::unique_ptr<Page> page = entry->make(console);
  int status = success;
  runner.run(
      console, *page, [&] { page->initialise(); },
      [&] {
        auto& table = static_cast<Table&>(*page->find("rows"));
        page->find("since")->user_type(*since);
        table.user_filter(options.filter);
        if (!table.problem().empty()) {
          err << "zrlconsole: " << printable(table.problem()) << '\n';
          status = usage_error;
          return;
        }
        if (arguments.json) out << '[';
        const std::uint64_t printed = print_rows(out, arguments, table);
        if (arguments.json) out << "]\n";
        if (printed == 0 && !arguments.json && !options.csv) out << "No messages.\n";
        if (!table.problem().empty()) {
          err << "zrlconsole: " << printable(table.problem()) << '\n';
          status = failure;
        }
      });
  page->terminate();
  return status;
}

}  // namespace zrl::command
