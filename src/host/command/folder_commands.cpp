#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>
#include <limits>
#include <ostream>

#include "core/console.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/time_stamp.h"
#include "host/command/commands.h"
#include "host/command/plain_console.h"
#include "host/folder.h"
#include "host/sample/sample_data.h"

namespace zrl::command {

namespace {

std::uint32_t dword(const std::string& text) {
  const auto number = to_number(text);
  if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max()) {
    throw UsageError("a REG_DWORD is a number from 0 to 4294967295");
  }
  return static_cast<std::uint32_t>(*number);
}

}  // namespace

int run_init(const Arguments& arguments, std::ostream& out) {
  PlainConsole plain(arguments.folder);
  for (const std::string& line : lay_out_folder(plain.console)) out << printable(line) << '\n';
  if (!arguments.sample) return success;
  const auto report = [&out](std::string_view table, std::size_t rows) {
    out << "table " << table << ": " << rows << " rows\n";
  };
  if (!sample::fill_sample_data(plain.console, local_seconds_of(plain.console.now()), report)) {
    out << "the database already holds data; nothing was changed\n";
  }
  return success;
}

namespace {

boost::json::array destroying_acts(const Form& form) {
  boost::json::array names;
  for (const Control* control : form.controls()) {
    if (control->kind() != ControlKind::button) continue;
    if (static_cast<const Button*>(control)->destroys() != nullptr) names.emplace_back(control->name());
  }
  return names;
}

}  // namespace

int run_pages(const Arguments& arguments, const Program& program, std::ostream& out) {
  PlainConsole plain(arguments.folder);
  Localisation& localisation = plain.console.localisation();
  boost::json::array list;
  for (const PageEntry& entry : program.pages) {
    const std::string group = localisation.translate(entry.group);
    const std::string title = localisation.translate(entry.title);
    if (arguments.json) {
      list.push_back({{"name", entry.name},
                      {"group", group},
                      {"title", title},
                      {"destroys", destroying_acts(*entry.make(plain.console))}});
    } else {
      out << entry.name << '\t' << group << '\t' << title << '\n';
    }
  }
  if (arguments.json) out << boost::json::serialize(list) << '\n';
  return success;
}

int run_registry_get(const Arguments& arguments, std::ostream& out) {
  PlainConsole plain(arguments.folder);
  const auto value = plain.registry()->regread(arguments.path);
  if (!value) throw std::runtime_error("there is no value " + printable(arguments.path));
  out << *value << '\n';
  return success;
}

int run_registry_set(const Arguments& arguments) {
  PlainConsole plain(arguments.folder);
  if (arguments.kind == "REG_SZ") {
    plain.registry()->write_string(arguments.path, arguments.value);
  } else if (arguments.kind == "REG_DWORD") {
    plain.registry()->write_dword(arguments.path, dword(arguments.value));
  } else {
    throw UsageError("the kind is REG_SZ or REG_DWORD");
  }
  return success;
}

int run_registry_delete(const Arguments& arguments) {
  PlainConsole plain(arguments.folder);
  plain.registry()->delete_value(arguments.path);
  return success;
}

}  // namespace zrl::command
