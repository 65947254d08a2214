#include "core/entry_notes.h"

#include <algorithm>
#include <chrono>

#include "core/text/text.h"

namespace zrl {

namespace {

using Days = std::chrono::sys_days;

// `digits` are those of a date, eight of them.
std::optional<Days> day_of(std::string_view digits) {
  const auto number = [&](std::size_t from, std::size_t count) -> unsigned {
    unsigned result = 0;
    for (const char c : digits.substr(from, count)) result = result * 10 + static_cast<unsigned>(c - '0');
    return result;
  };
  if (digits.size() != 8 || digits.find_first_not_of("0123456789") != digits.npos) return {};
  const std::chrono::year_month_day date{std::chrono::year(static_cast<int>(number(0, 4))),
                                         std::chrono::month(number(4, 2)), std::chrono::day(number(6, 2))};
  return date.ok() ? std::optional(Days(date)) : std::nullopt;
}

std::string text_of(Days day) {
  const std::chrono::year_month_day date(day);
  const auto padded = [](unsigned number, std::size_t width) {
    std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
  };
  return padded(static_cast<unsigned>(static_cast<int>(date.year())), 4) + "-" +
         padded(static_cast<unsigned>(date.month()), 2) + "-" + padded(static_cast<unsigned>(date.day()), 2);
}

Statement of_entry(Literal verb, const ListTable& list, std::string_view entry) {
  return verb + " from entry_notes where list='" + value(list.name) + "' and entry='" + value(entry) + "'";
}

}  // namespace

std::optional<std::string> last_day(std::string_view typed, std::string_view today) {
  const std::string_view text = trim(typed);
  if (text.empty()) return std::string();
  const std::optional<Days> first = day_of(today.substr(0, 8));
  if (!first) return {};
  std::optional<Days> day;
  if (text.back() == 'd') {
    constexpr std::int64_t most_days = 100'000;
    const auto days = to_number(text.substr(0, text.size() - 1));
    if (days && *days >= 0 && *days <= most_days) day = *first + std::chrono::days(*days);
  } else if (text.size() == 10 && text[4] == '-' && text[7] == '-') {
    day = day_of(std::string(text.substr(0, 4)).append(text.substr(5, 2)).append(text.substr(8)));
  }
  if (!day || *day < *first) return {};
  return text_of(*day);
}

EntryNote note_of(DatabaseClient& client, const ListTable& list, std::string_view entry) {
  EntryNote note;
  const Statement select = of_entry("SELECT *", list, entry);
  if (!select.fault().empty()) return note;
  const auto rows = client.open(select, Connection::Access::read_only);
  if (!rows) return note;
  client.read_rows(select.text(), [&] {
    if (rows->at_end()) return;
    note.comment = rows->text("comment");
    note.expires = rows->text("expires");
  });
  return note;
}

// The comment is written through a set, because no statement can hold an apostrophe.
bool save_note(DatabaseClient& client, const ListTable& list, std::string_view entry, const EntryNote& note) {
  if (!client.execute(of_entry("DELETE", list, entry))) return false;
  if (note.empty()) return true;
  if (!client.execute("INSERT INTO entry_notes (list, entry, expires) VALUES ('" + value(list.name) + "','" +
                      value(entry) + "','" + value(note.expires) + "')"))
    return false;
  if (note.comment.empty()) return true;
  return client.write_row(
      "update entry_notes comment " + std::string(list.name) + " " + std::string(entry), [&] {
        const auto row = client.conn->open(of_entry("SELECT *", list, entry), Connection::Access::updatable);
        row->set_text("comment", note.comment);
        row->update();
      });
}

}  // namespace zrl
