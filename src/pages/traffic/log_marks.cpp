#include <algorithm>

#include "core/text/text.h"
#include "pages/traffic/log_counts.h"

// How deleted and late rows are noticed, without reading the log: by what log_marks has of it when it was
// looked at last. Rows get ascending keys, so those with greater ones are new.
namespace zrl {

namespace {

struct Mark {
  std::string last_id = "9223372036854775807";  // no row is newer: a log that is new is not read
  std::string last_time;
  std::int64_t rows = -1;
  std::string counted_until;
};

struct Present {
  std::int64_t rows = 0;
  std::int64_t newer = 0;  // than the mark
  std::string earliest;    // time of those, in the period
  std::string at_mark;     // the time of the row with the mark's key
  std::string last_id;
  std::string last_time;
};

Mark read_mark(Connection& connection, Literal table) {
  Mark mark;
  const auto row = connection.open("SELECT * FROM log_marks WHERE log='" + value(table.text()) + "'",
                                   Connection::Access::read_only);
  if (row->at_end()) return mark;
  mark.last_id = std::to_string(row->number("last_id"));
  mark.last_time = row->text("last_time");
  mark.rows = row->number("amount");
  mark.counted_until = row->text("counted_until");
  return mark;
}

// In one statement, so that all of it is of the same moment.
Present look_at(Connection& connection, Literal table, const Mark& mark, const std::string& oldest) {
  Statement select =
      "SELECT present.amount, later.newer, later.earliest, (SELECT substr(servertime,1,30) FROM " + table;
  select.append(" WHERE ID=").append(number(mark.last_id));
  select.append(") AS at_mark, present.last_id, (SELECT substr(servertime,1,30) FROM ").append(table);
  select.append(" WHERE ID=(SELECT max(ID) FROM ").append(table);
  select.append(")) AS last_time FROM (SELECT (SELECT count(*) FROM ").append(table);
  select.append(") AS amount, (SELECT max(ID) FROM ").append(table);
  select.append(") AS last_id) AS present, (SELECT count(*) AS newer, min(CASE WHEN servertime>='");
  select.append(value(oldest));
  select.append("' THEN substr(servertime,1,30) END) AS earliest FROM ").append(table);
  select.append(" WHERE ID>").append(number(mark.last_id)).append(") AS later");
  const auto row = connection.open(select, Connection::Access::read_only);
  Present present;
  present.rows = row->number("amount");
  present.newer = row->number("newer");
  present.earliest = row->text("earliest");
  present.at_mark = row->text("at_mark");
  present.last_id = std::to_string(row->number("last_id"));
  present.last_time = row->text("last_time");
  return present;
}

// What of a text of strangers may stand in a statement.
std::string plain(std::string text) {
  std::erase_if(text, [](char c) { return c < ' ' || c > '~' || c == '\''; });
  return text;
}

}  // namespace

// Whatever is looked at now, all that is kept is compared, because the marks are set forth.
void LogCounts::check_marks() {
  const std::vector<TimeUnit> month = units_of(Period::month, console_.now());
  const auto unfinished = std::ranges::find(month, false, &TimeUnit::finished);
  for (std::size_t log = 0; log < log_count; ++log) {
    check_mark(log, month.front().name, unfinished->name);
  }
}

void LogCounts::check_mark(std::size_t log, const std::string& oldest, const std::string& until) {
  const Literal table = log_tables[log].table;
  Mark mark;
  Present present;
  const bool looked = client_.conn && client_.read_rows("count the logs " + std::string(table.text()), [&] {
    mark = read_mark(*client_.conn, table);
    present = look_at(*client_.conn, table, mark, oldest);
  });
  if (!looked) {
    if (is_readable(table)) unread_.push_back(table.text());
    return;
  }
  const bool is_new = mark.rows < 0;
  const bool replaced = !is_new && plain(present.at_mark) != mark.last_time;
  const bool deleted = !is_new && (replaced || present.rows != mark.rows + present.newer);
  const bool late = !is_new && !present.earliest.empty() && present.earliest < mark.counted_until;
  if (!is_new && !deleted && !late && present.newer == 0) return;
  if (is_new || deleted || late) held_.clear();
  if (replaced || is_new) {
    // Keys were given anew, so rows of the last hours may be others although they are as many.
    const std::string from = is_new ? std::string("0") : mark.last_time.substr(0, 10);
    const bool dropped = write([&](Connection& connection) {
      connection.execute("DELETE FROM log_units WHERE log='" + value(table.text()) + "' AND unit>='" +
                         value(from) + "'");
    });
    if (!dropped) return distrust_all();
  }
  if ((deleted || late) && !compare_units(log, oldest)) return distrust_all();
  write([&](Connection& connection) {
    connection.execute("DELETE FROM log_marks WHERE log='" + value(table.text()) + "'");
    connection.execute("INSERT INTO log_marks (log, last_id, last_time, amount, counted_until) VALUES ('" +
                       value(table.text()) + "', " + number(present.last_id) + ", '" +
                       value(plain(present.last_time)) + "', " + number(std::to_string(present.rows)) +
                       ", '" + value(until) + "')");
  });
}

// Units whose number of rows is another one are counted again. False if that cannot be noted.
bool LogCounts::compare_units(std::size_t log, const std::string& oldest) {
  const Literal table = log_tables[log].table;
  StringList changed;
  const bool compared = client_.read_rows("count the logs " + std::string(table.text()), [&] {
    const auto units =
        client_.conn->open("SELECT unit, amount FROM log_units WHERE log='" + value(table.text()) +
                               "' AND unit>='" + value(oldest) + "' AND amount>=0",
                           Connection::Access::read_only);
    for (; !units->at_end(); units->move_next()) {
      const std::string unit(units->text("unit"));
      const bool is_day = unit.find(' ') == unit.npos;
      const auto count =
          client_.conn->open("SELECT count(*) AS amount FROM " + table + " WHERE servertime>='" +
                                 value(unit + (is_day ? " " : ":")) + "' AND servertime<'" +
                                 value(unit + (is_day ? "!" : ";")) + "'",
                             Connection::Access::read_only);
      if (count->number("amount") != units->number("amount")) changed.push_back(unit);
    }
  });
  if (!compared || changed.empty()) return compared;
  return write([&](Connection& connection) {
    for (std::size_t i = 0; i < changed.size(); ++i) {
      connection.execute("DELETE FROM log_units WHERE unit='" + value(changed[i]) + "' AND log='" +
                         value(table.text()) + "'");
    }
  });
}

}  // namespace zrl
