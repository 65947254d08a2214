#include "host/command/report.h"

#include <algorithm>
#include <boost/json/array.hpp>
#include <iomanip>
#include <ostream>

#include "core/controls.h"
#include "core/table.h"
#include "core/text/printable.h"
#include "core/text/utf8.h"
#include "host/form_json.h"

namespace zrl::command {

namespace {

namespace json = boost::json;

// Of more rows of a list than these only the number is reported.
constexpr std::size_t rows_for_people = 20;
// Longer texts are cut.
constexpr std::size_t width_for_people = 200;

std::string short_text(std::string_view text) {
  if (text.size() <= width_for_people) return printable(text);
  return printable(cut_between_characters(text, width_for_people)) + "...";
}

std::string_view reply_name(BoxReply reply) {
  return reply == BoxReply::ok ? "ok" : "cancel";
}

json::array messages_json(const StepRunner& runner) {
  json::array messages;
  for (const StepRunner::Message& message : runner.messages()) {
    messages.push_back({{"title", valid_utf8(message.box.title)},
                        {"text", valid_utf8(message.box.text)},
                        {"style", static_cast<int>(message.box.style)},
                        {"reply", reply_name(message.reply)}});
  }
  return messages;
}

json::array programs_json(const StepRunner& runner) {
  json::array programs;
  for (const ProgramStart& program : runner.programs()) {
    programs.push_back(
        {{"command_line", valid_utf8(program.command_line())}, {"folder", valid_utf8(program.folder)}});
  }
  return programs;
}

json::array opened_json(const StepRunner& runner) {
  json::array opened;
  for (const StepRunner::Opened& page : runner.opened()) {
    opened.push_back({{"page", valid_utf8(page.page)}, {"query", valid_utf8(page.query)}});
  }
  return opened;
}

json::array activity_json(const ActivityRecord& activity) {
  json::array entries;
  for (std::uint64_t i = activity.first(); i < activity.total(); ++i) {
    const ActivityRecord::Entry entry = activity[i];
    entries.push_back({{"kind", name_of(entry.kind)},
                       {"text", valid_utf8(entry.text)},
                       {"ok", entry.ok},
                       {"error", valid_utf8(entry.error)}});
  }
  return entries;
}

json::array said_json(const ActivityRecord& activity) {
  json::array sentences;
  for (std::uint64_t i = activity.first_said(); i < activity.total_said(); ++i) {
    const ActivityRecord::Said& said = activity.said(i);
    sentences.push_back({{"text", valid_utf8(said.text)}, {"tone", name_of(said.tone)}});
  }
  return sentences;
}

void print_items(std::ostream& out, const StringList& items, std::int64_t index) {
  for (std::size_t i = 0; i < items.size() && i < rows_for_people; ++i) {
    const bool chosen = static_cast<std::int64_t>(i) == index;
    out << "      " << (chosen ? "> " : "  ") << short_text(items[i]) << '\n';
  }
  if (items.size() > rows_for_people) {
    out << "        ... and " << items.size() - rows_for_people << " more (--json prints them all)\n";
  }
}

void print_rows(std::ostream& out, Table& table, const RowWindow& window) {
  const TableRows rows = table.read(window.first, std::min<std::uint64_t>(window.count, rows_for_people));
  for (std::size_t row = 0; row < rows.size(); ++row) {
    const bool chosen = table.chosen().find(rows.key(row)) < table.chosen().size();
    out << "      " << (chosen ? "> " : "  ");
    for (std::size_t column = 0; column < table.columns().size(); ++column) {
      out << (column == 0 ? "" : " | ") << short_text(rows.cell_at(row, column));
    }
    out << '\n';
  }
  const RowCount count = table.count();
  if (count.rows > window.first + rows.size()) {
    out << "        ... and more (--json prints them, NAME.window=FROM,COUNT others)\n";
  }
  if (!table.problem().empty()) out << "      ! " << short_text(table.problem()) << '\n';
}

// A password that is there.
bool hides(const Control& control) {
  const auto& field = static_cast<const TextField&>(control);
  return field.style().secret && !field.text().empty();
}

void print_marks(std::ostream& out, const TextField& field) {
  for (const TextField::Mark& mark : field.marks()) {
    out << "      ! " << short_text(mark.name);
    if (mark.line > 0) out << '(' << mark.line << ", " << mark.column << ')';
    out << ": " << short_text(mark.text) << '\n';
  }
}

// A line for each label, beneath the names of the series.
void print_chart(std::ostream& out, const Chart& chart) {
  constexpr int label_width = 18;
  constexpr int number_width = 12;
  const auto cell = [&](std::string_view text) {
    out << std::right << std::setw(number_width) << short_text(text);
  };
  out << "      " << std::left << std::setw(label_width) << "";
  for (std::size_t i = 0; i < chart.series().size(); ++i) cell(chart.caption_of(i));
  out << '\n';
  for (std::size_t label = 0; label < chart.labels().size(); ++label) {
    out << "      " << std::left << std::setw(label_width) << short_text(chart.labels()[label]);
    for (std::size_t i = 0; i < chart.series().size(); ++i) {
      cell(std::to_string(chart.values_of(i)[label]));
    }
    out << '\n';
  }
}

// What a control holds, in one line; lists follow it with their items.
void print_control(std::ostream& out, Control& control, const RowWindows& windows) {
  const auto table_of = [](Control& shown) -> Table& { return static_cast<Table&>(shown); };
  const auto text = [&](Property property) {
    return short_text(std::get<std::string_view>(control.get(property)));
  };
  const auto number = [&](Property property) { return std::get<std::int64_t>(control.get(property)); };
  out << "  " << std::left << std::setw(20) << control.name() << ' ';
  switch (control.kind()) {
    case ControlKind::check_box:
      out << (number(Property::value) == 1 ? "[x] " : "[ ] ") << text(Property::caption);
      break;
    case ControlKind::option_button:
      out << (number(Property::value) == 1 ? "(o) " : "( ) ") << text(Property::caption);
      break;
    case ControlKind::button:
      out << "<" << text(Property::caption) << ">";
      break;
    case ControlKind::text_field:
      out << '"' << (hides(control) ? "********" : text(Property::text)) << '"';
      break;
    case ControlKind::timer:
      out << "every " << number(Property::interval) << " ms";
      break;
    case ControlKind::scroll_bar:
      out << number(Property::value) << " of " << number(Property::min) << " to " << number(Property::max);
      break;
    case ControlKind::chart:
    case ControlKind::frame:
    case ControlKind::label:
      out << text(Property::caption);
      break;
    case ControlKind::link:
      out << text(Property::caption) << " -> " << text(Property::page) << ' ' << text(Property::query);
      break;
    case ControlKind::table: {
      const RowCount count = table_of(control).count();
      out << text(Property::caption) << ", " << (count.exact ? "" : "more than ") << count.rows << " rows";
      break;
    }
    default:
      if (control.has(Property::text)) out << '"' << text(Property::text) << "\", ";
      out << std::get<const StringList*>(control.get(Property::items))->size() << " entries";
  }
  if (!control.visible()) out << "  (hidden)";
  if (!control.enabled()) out << "  (disabled)";
  out << '\n';
  if (control.kind() == ControlKind::text_field) print_marks(out, static_cast<const TextField&>(control));
  if (control.kind() == ControlKind::chart) print_chart(out, static_cast<const Chart&>(control));
  if (control.has(Property::items)) {
    print_items(out, *std::get<const StringList*>(control.get(Property::items)), number(Property::index));
  }
  if (control.kind() != ControlKind::table) return;
  const auto window = windows.find(&control);
  print_rows(out, table_of(control), window == windows.end() ? RowWindow() : window->second);
}

void print_said(std::ostream& out, const ActivityRecord& activity) {
  if (activity.total_said() > 0) out << '\n';
  for (std::uint64_t i = activity.first_said(); i < activity.total_said(); ++i) {
    out << activity.said(i).text << '\n';
  }
}

void print_activity(std::ostream& out, const ActivityRecord& activity) {
  if (activity.total() == 0) return;
  out << "\nActivity\n";
  for (std::uint64_t i = activity.first(); i < activity.total(); ++i) {
    const ActivityRecord::Entry entry = activity[i];
    out << (entry.ok ? "  done    " : "  failed  ") << std::left << std::setw(10) << name_of(entry.kind)
        << short_text(entry.public_text);
    if (!entry.ok) out << ": " << printable(entry.error);
    out << '\n';
  }
}

}  // namespace

void Report::take_dialogs(const RowWindows& windows) {
  for (const auto& dialog : console_.dialogs()) {
    forms_[dialog->name()] = {{"caption", valid_utf8(dialog->caption())},
                              {"controls", controls_json(*dialog, windows)}};
  }
}

json::object Report::json(const Form& page, const StepRunner& runner) const {
  json::object result;
  result["page"] = page.name();
  result["controls"] = controls_json(page, runner.windows());
  result["forms"] = forms_;
  result["messages"] = messages_json(runner);
  result["programs"] = programs_json(runner);
  result["opened"] = opened_json(runner);
  result["said"] = said_json(console_.activity());
  result["activity"] = activity_json(console_.activity());
  return result;
}

void Report::print(std::ostream& out, const Form& page, const StepRunner& runner) const {
  out << printable(console_.localisation().translate(page.caption())) << " (" << page.name() << ")\n\n";
  for (Control* control : page.controls()) print_control(out, *control, runner.windows());
  for (const auto& form : forms_) out << "\nThe dialog " << form.key() << " was still open.\n";
  for (const StepRunner::Message& message : runner.messages()) {
    out << "\nMessage: " << printable(message.box.title) << "\n  " << printable(message.box.text, true)
        << "\n  (answered " << reply_name(message.reply) << ")\n";
  }
  for (const ProgramStart& program : runner.programs()) {
    out << "\nProgram: " << printable(program.command_line()) << '\n';
  }
  for (const StepRunner::Opened& opened : runner.opened()) {
    out << "\nOpened: " << printable(opened.page) << ' ' << printable(opened.query) << '\n';
  }
  print_said(out, console_.activity());
  print_activity(out, console_.activity());
}

}  // namespace zrl::command
