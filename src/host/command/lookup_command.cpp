#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <ostream>

#include "core/text/printable.h"
#include "core/text/utf8.h"
#include "host/command/commands.h"
#include "host/command/plain_console.h"
#include "host/command/table_text.h"
#include "host/form_json.h"

namespace zrl::command {

namespace {

constexpr std::uint64_t most_rows = 1000;

Table& table_of(const Page& page, std::string_view name) {
  return static_cast<Table&>(*page.find(name));
}

boost::json::array rows_json(Table& table) {
  const TableRows rows = table.read(0, most_rows);
  boost::json::array told;
  for (std::size_t row = 0; row < rows.size(); ++row) told.push_back(row_json(table, rows, row));
  return told;
}

void print_section(std::ostream& out, Table& table) {
  const TableRows rows = table.read(0, most_rows);
  if (!table.problem().empty()) out << '\n' << printable(table.problem()) << '\n';
  if (rows.empty()) return;
  out << '\n' << printable(table.caption()) << '\n';
  print_table(out, table, rows);
}

}  // namespace

int run_lookup(const Arguments& arguments, const Program& program, std::ostream& out) {
  const PageEntry* entry = find_page(program.pages, "lookup");
  if (entry == nullptr) throw std::runtime_error("this build has no look-up");
  PlainConsole plain(arguments.folder);
  plain.prepare_folder();
  const std::unique_ptr<Page> page = entry->make(plain.console);
  const bool finished = plain.host.run(
      plain.console, *page,
      [&] {
        page->initialise();
        page->show_query(arguments.lookup.what);
        if (arguments.lookup.dns) page->find("ask_dns")->user_click();
      },
      [] {});
  if (!finished) throw std::runtime_error(printable(plain.host.problem()));
  if (!page->conn) throw std::runtime_error(plain.last_failure());

  const std::string& verdict = static_cast<Label&>(*page->find("verdict")).caption();
  constexpr std::string_view names[] = {"entries", "counts", "log", "dns"};
  if (arguments.json) {
    boost::json::object told{{"verdict", valid_utf8(verdict)}};
    for (const std::string_view name : names) told[name] = rows_json(table_of(*page, name));
    out << boost::json::serialize(told) << '\n';
  } else {
    out << printable(verdict) << '\n';
    for (const std::string_view name : names) print_section(out, table_of(*page, name));
  }
  page->terminate();
  return success;
}

}  // namespace zrl::command
