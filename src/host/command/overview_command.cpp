#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <iomanip>
#include <ostream>

#include "core/chart.h"
#include "core/table.h"
#include "core/text/printable.h"
#include "core/text/utf8.h"
#include "host/command/commands.h"
#include "host/command/plain_console.h"
#include "host/form_json.h"

namespace zrl::command {

namespace {

namespace json = boost::json;

constexpr std::string_view tables[] = {"attention", "first_steps", "reasons", "clients", "domains"};
constexpr std::uint64_t most_rows = 100;

Table& table_of(const Form& page, std::string_view name) {
  return static_cast<Table&>(*page.find(name));
}

const Chart& mails_of(const Form& page) {
  return static_cast<const Chart&>(*page.find("mails"));
}

json::array rows_json(Table& table) {
  const TableRows rows = table.read(0, most_rows);
  json::array result;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    json::object told = row_json(table, rows, row);
    told.erase("key");
    told.erase("links");
    result.push_back(std::move(told));
  }
  return result;
}

json::object overview_json(const Form& page) {
  json::object result;
  for (const char* name : {"period", "service"}) {
    const Control& control = *page.find(name);
    const bool is_label = control.kind() == ControlKind::label;
    result[name] = to_json(control.get(is_label ? Property::caption : Property::text));
  }
  json::object mails;
  add_numbers(mails_of(page), ForWhom::programs, mails);
  result["mails"] = std::move(mails);
  for (const std::string_view name : tables) result[name] = rows_json(table_of(page, name));
  return result;
}

std::string sum_of(const std::vector<std::int64_t>& values) {
  std::int64_t sum = 0;
  for (const std::int64_t value : values) sum += value;
  return std::to_string(sum);
}

void print_rows(std::ostream& out, Table& table) {
  const TableRows rows = table.read(0, most_rows);
  if (rows.empty()) return;
  constexpr int number_width = 12;
  constexpr int severity_width = 9;
  out << '\n' << printable(table.caption()) << '\n';
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const auto cell = [&](std::string_view column) { return rows.cell_at(row, table.find_column(column)); };
    const std::string text = printable(cell("text"));
    if (table.find_column("count") < table.columns().size()) {
      out << std::right << std::setw(number_width) << cell("count") << "  " << text << '\n';
    } else if (table.find_column("done") < table.columns().size()) {
      out << (cell("done") == "1" ? "  [x] " : "  [ ] ") << text << '\n';
    } else {
      out << "  " << std::left << std::setw(severity_width) << cell("severity") << text << " ("
          << cell("page") << ")\n";
    }
  }
}

void print_overview(std::ostream& out, const Form& page) {
  out << printable(std::get<std::string_view>(page.find("service")->get(Property::caption))) << '\n';
  const Chart& mails = mails_of(page);
  out << "\n" << printable(mails.caption()) << '\n';
  constexpr int name_width = 14;
  for (std::size_t i = 0; i < mails.series().size(); ++i) {
    out << "  " << std::left << std::setw(name_width) << printable(mails.caption_of(i)) << ' '
        << sum_of(mails.values_of(i)) << '\n';
  }
  for (const std::string_view name : tables) print_rows(out, table_of(page, name));
}

}  // namespace

int run_overview(const Arguments& arguments, const Program& program, std::ostream& out) {
  const PageEntry* entry = find_page(program.pages, "overview");
  if (entry == nullptr) throw std::runtime_error("this build has no page \"overview\"");
  PlainConsole plain(arguments.folder);
  plain.prepare_folder();
  const std::unique_ptr<Page> page = entry->make(plain.console);
  page->initialise();
  if (!page->conn) {
    page->terminate();
    throw std::runtime_error("the database cannot be opened; \"zrlconsole do overview\" says why");
  }
  page->show_query(arguments.period);
  if (arguments.json) {
    out << json::serialize(overview_json(*page)) << '\n';
  } else {
    print_overview(out, *page);
  }
  page->terminate();
  return success;
}

}  // namespace zrl::command
