#include "pages/logs/messages_page.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>

#include "core/contracts/console_folder.h"
#include "core/list_changes.h"
#include "core/text/ascii.h"
#include "core/text/error.h"
#include "core/text/text.h"
#include "core/text/time_stamp.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

constexpr std::string_view periods[] = {"hour", "day", "week", "month", "all"};
constexpr std::int64_t day_length = 86'400;
constexpr std::int64_t lengths[] = {3600, day_length, 7 * day_length, 30 * day_length};
constexpr std::string_view verdicts[] = {"all", "rejected", "allowed", "neutral"};
constexpr int stati[] = {-1, 2, 1, 0};
// Of the other rows, and of the mail.
constexpr std::int64_t seconds_around = 900;
constexpr std::uint64_t most_related = 50;

std::int64_t seconds_now(Console& console) {
  return std::chrono::duration_cast<std::chrono::seconds>(console.now().time_since_epoch()).count();
}

constexpr Sentence marked_neutral{"%1 addresses taken off the lists and marked neutral",
                                  "Addresses not marked neutral",
                                  "1 address taken off the lists and marked neutral"};
constexpr std::string_view may_be_pattern =
    "Left out, because it may stand for more than it says. Type it on the page of the list if that is meant.";
constexpr Sentence rows_exported{"Rows exported to %1", "Rows not exported"};

// A word of a query has no blank: there a T stands between day and time, as in ISO 8601. Fields show a blank.
std::string time_of_query(std::string text) {
  constexpr std::size_t day_size = std::string_view("2026-01-31").size();
  if (text.size() > day_size && text[day_size] == 'T') text[day_size] = ' ';
  return text;
}

// Logged texts are strangers'. One that a list would read as a pattern, or that no statement can hold, is no
// entry.
bool is_plain(std::string_view text) {
  const std::size_t at = text.find('@');
  const std::string_view domain = at == text.npos ? text : text.substr(at + 1);
  const auto is_odd = [](char c) {
    return is_control(c) || std::string_view(" *'\"@,;").find(c) != std::string_view::npos;
  };
  return at != 0 && std::ranges::none_of(text.substr(0, at), is_odd) &&
         std::ranges::none_of(domain, is_odd) && std::ranges::any_of(domain, [](char c) {
           return is_letter_or_digit(c) || static_cast<unsigned char>(c) > 127;
         });
}

}  // namespace

MessagesPage::MessagesPage(Console& console) : Page(console, "messages", "Messages") {
  for (ComboBox* box : {&period, &kind, &verdict}) box->on_click = [this] { choose(); };
  for (TextField* field : {&since, &until}) {
    field->set_chooses_rows();
    field->on_change = [this] { choose(); };
  }
  rows.set_filters(filter);
  rows.set_empty_text("Nothing was logged in this period");
  details.set_empty_text("Choose a row to see all of it here");
  related.set_empty_text("Nothing else of the chosen row's client and sender");
  rows.on_choose = [this] { show_chosen(); };
  Timer1.on_tick = [this] { tick(); };

  const auto lists = [this](Button& button, const ListTable& list, std::string_view column) {
    bind_busy(button, [this, &list, column] { change_lists(list, chosen_texts(column)); });
  };
  lists(block_sender, list::black_mails, "sender");
  lists(allow_sender, list::white_mails, "sender");
  lists(block_address, list::black_addresses, "address");
  lists(allow_address, list::white_addresses, "address");
  bind_busy(block_domain, [this] { change_lists(list::black_domains, chosen_domains()); });
  bind_busy(allow_domain, [this] { change_lists(list::white_domains, chosen_domains()); });
  bind_busy(neutral, &MessagesPage::mark_neutral);
  bind_busy(delete_rows, &MessagesPage::delete_chosen);
  look_up.on_click = [this] { look_up_chosen(); };
  open_mail.on_click = [this] {
    if (mail_ != 0) this->console().open("monitor", std::to_string(mail_));
  };
  bind_busy(export_csv, [this] { export_rows(RowFormat::csv); });
  bind_busy(export_json, [this] { export_rows(RowFormat::json_lines); });
  for (Button* act : {&block_sender, &allow_sender, &block_domain, &allow_domain, &block_address,
                      &allow_address, &neutral, &delete_rows, &look_up}) {
    act->set_needs({&rows});
  }
  delete_rows.set_destroys(loss::log_rows, [this] { return rows.chosen().size(); });

  set_layout(column({
      frame(Frame1, column({row({grow(filter), follow}), row({period, kind, verdict}), row({since, until})})),
      grow(rows),
      row({block_sender, allow_sender, block_domain, allow_domain, block_address, allow_address, neutral,
           delete_rows, look_up, open_mail}),
      row({grow(details), grow(related)}),
      row({export_csv, export_json}),
  }));
}

void MessagesPage::load() {
  for (const std::string_view word : periods) period.add_item(word);
  kind.add_item("all");
  for (const LogTable& log : log_tables) kind.add_item(log.kind);
  for (const std::string_view word : verdicts) verdict.add_item(word);
  period.set_text("all");
  kind.set_text("all");
  verdict.set_text("all");
  choose();
}

// A filter, and what the controls beside it choose.
void MessagesPage::open_query(std::string_view query) {
  constexpr std::string_view fields[] = {"from", "to",      "ip",    "reason", "period",
                                         "kind", "verdict", "since", "until"};
  const auto parsed = parse_filter(query, fields);
  const auto* terms = std::get_if<std::vector<FilterTerm>>(&parsed);
  std::string words;
  if (terms == nullptr) words = query;  // the filter says what is wrong with it
  for (const FilterTerm& term : terms == nullptr ? std::vector<FilterTerm>() : *terms) {
    ComboBox* box = nullptr;
    if (term.field == "period") box = &period;
    if (term.field == "kind") box = &kind;
    if (term.field == "verdict") box = &verdict;
    if (box != nullptr && box->items().find(lower(term.value)) < box->items().size()) {
      box->set_text(lower(term.value));
    } else if (term.field == "since") {
      since.set_text(time_of_query(term.value));
    } else if (term.field == "until") {
      until.set_text(time_of_query(term.value));
    } else {
      words += (words.empty() ? "" : " ") + filter_term(term.field, term.value);
    }
  }
  filter.set_text(words);
  choose();
}

MessageRows::Choice MessagesPage::choice() {
  MessageRows::Choice wanted;
  const auto bound = [&](const TextField& field, std::string& time, bool last) {
    if (trim(field.text()).empty()) return;
    if (const auto typed = typed_time(field.text(), last)) {
      time = *typed;
    } else {
      wanted.fault = translate("Not a day or time:") + " " + field.text();
    }
  };
  bound(since, wanted.since, false);
  bound(until, wanted.until, true);
  const auto index = static_cast<std::size_t>(std::max<std::int64_t>(period.index(), 0));
  if (wanted.since.empty() && wanted.until.empty() && index < std::size(lengths)) {
    wanted.since = log_time(seconds_now(console()) - lengths[index]);
  }
  wanted.log = static_cast<int>(kind.index()) - 1;
  wanted.status = stati[std::max<std::int64_t>(verdict.index(), 0)];
  return wanted;
}

// Rows that were chosen before need not be among those that are shown now.
void MessagesPage::choose() {
  messages.choose(choice());
  rows.set_chosen({});
  show_chosen();
  rows.reload();
}

void MessagesPage::tick() {
  if (follow.checked()) messages.follow();
  messages.read_on();
}

void MessagesPage::show_chosen() {
  mail_ = 0;
  TableRows shown;
  TableRows others;
  const TableRows row = rows.chosen().empty() ? TableRows() : rows.read_key(rows.chosen()[0]);
  if (!row.empty()) {
    for (std::size_t i = 0; i < rows.columns().size(); ++i) {
      const Column& column = rows.columns()[i];
      if (row.cell_at(0, i).empty()) continue;
      const bool is_word = column.kind == ColumnKind::word || column.kind == ColumnKind::verdict;
      const std::string text(row.cell_at(0, i));
      shown.row(column.name).cell(lower(column.caption)).cell(is_word ? translate(text) : text);
      if (!column.page.empty()) shown.link(column.page, row.cell_at(0, i));
    }
    show_mail_of(row, shown);
    others = rows_around(row);
  }
  open_mail.set_enabled(mail_ != 0);
  detail_rows.show(std::move(shown));
  related_rows.show(std::move(others));
}

// The mail of this client that was archived next to that time.
void MessagesPage::show_mail_of(const TableRows& row, TableRows& shown) {
  const auto time = seconds_of(row.cell_at(0, rows.find_column("time")));
  const std::string_view address = row.cell_at(0, rows.find_column("address"));
  if (!time || address.empty() || address.find('\'') != address.npos) return;
  const std::string from = log_time(*time - seconds_around);
  const std::string to = log_time(*time + seconds_around);
  const std::string at = log_time(*time);
  const Statement select = "select ID, substr(subject,1,4096) as subject from marchive where servertime>='" +
                           value(from) + "' and servertime<='" + value(to) + "' and sip='" + value(address) +
                           "' order by case when servertime<'" + value(at) +
                           "' then 1 else 0 end, servertime limit 1";
  const auto set = open(select, Connection::Access::read_only);
  if (!set) return;
  read_rows("marchive", [&] {
    if (set->at_end()) return;
    mail_ = set->number("ID");
    shown.row("mail").cell("archived mail").cell(set->text("subject")).link("monitor", std::to_string(mail_));
  });
}

TableRows MessagesPage::rows_around(const TableRows& row) {
  TableRows found;
  const std::string_view address = row.cell_at(0, rows.find_column("address"));
  const std::size_t sender_column = rows.find_column("sender");
  const std::string sender = lower(row.cell_at(0, sender_column));
  if (address.empty() || address.find_first_of("'/*") != address.npos || address.ends_with('.')) return found;
  MessageRows::Choice around;
  if (const auto time = seconds_of(row.cell_at(0, rows.find_column("time")))) {
    around.since = log_time(*time - seconds_around);
    around.until = log_time(*time + seconds_around);
  }
  const TableRows all = messages.rows_of(around, filter_term("ip", address), 4 * most_related);
  for (std::size_t i = 0; i < all.size() && found.size() < most_related; ++i) {
    const std::string other = lower(all.cell_at(i, sender_column));
    const bool same_sender = sender.empty() || other.empty() || other == sender;
    if (same_sender && all.key(i) != row.key(0)) found.append(all, i);
  }
  return found;
}

StringList MessagesPage::chosen_texts(std::string_view name) {
  StringList texts;
  std::set<std::string> known;  // the lists ignore case
  const std::size_t place = rows.find_column(name);
  for (std::size_t i = 0; i < rows.chosen().size(); ++i) {
    const TableRows row = rows.read_key(rows.chosen()[i]);
    if (row.empty() || row.cell_at(0, place).empty()) continue;
    if (known.insert(lower(row.cell_at(0, place))).second) texts.push_back(row.cell_at(0, place));
  }
  return texts;
}

StringList MessagesPage::chosen_domains() {
  StringList domains;
  const StringList senders = chosen_texts("sender");
  for (std::size_t i = 0; i < senders.size(); ++i) {
    const std::string domain = domain_of_address(senders[i]);
    if (!domain.empty() && domains.find(domain) == domains.size()) domains.push_back(domain);
  }
  return domains;
}

// What is refused is told when all others have been changed.
void MessagesPage::change_lists(const ListTable& list, const StringList& entries) {
  std::string refused;
  if (entries.empty()) refused = translate("The chosen rows have nothing that could be put on this list.");
  for (std::size_t i = 0; i < entries.size(); ++i) {
    EntryChange change{.entry = std::string(entries[i]), .reason = std::string(may_be_pattern)};
    if (is_plain(entries[i])) {
      change = add_entry(*this, console(), list, entries[i]);
      say_addition(*this, list, entries[i], change);
    }
    if (change.state != EntryChange::State::refused || refused.size() > 1000) continue;
    refused += (refused.empty() ? "" : "\n") + std::string(entries[i]) + ": " + translate(change.reason);
  }
  if (!refused.empty()) show_error(valid_utf8(refused), translate("Messages"));
}

// As the page of the address log does.
void MessagesPage::mark_neutral() {
  const StringList addresses = chosen_texts("address");
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    const std::string address(trim(addresses[i]));
    remove_from_iplist(address);
    execute("UPDATE iplog set status=0 where IPNumber='" + value(address) + "'");
    execute("UPDATE predatalog set status=0 where IPNumber='" + value(address) + "'");
  }
  say_counted(marked_neutral, addresses.size());
  rows.reload();
  show_chosen();
}

void MessagesPage::delete_chosen() {
  for (std::size_t i = 0; i < rows.chosen().size(); ++i) {
    const MessageKey key = message_key(rows.chosen()[i]);
    if (key.log == nullptr) continue;
    execute("DELETE FROM " + key.log->table + " where ID=" + number(std::to_string(key.id)));
  }
  say_counted(said::log_rows, rows.chosen().size());
  rows.reload();
  show_chosen();
}

void MessagesPage::look_up_chosen() {
  std::string what = rows.chosen_cell("address");
  if (what.empty()) what = rows.chosen_cell("sender");
  if (!what.empty()) console().open("lookup", what);
}

void MessagesPage::export_rows(RowFormat format) {
  const std::filesystem::path folder = console_folder::archive(console().folder());
  const std::string_view extension = format == RowFormat::csv ? ".csv" : ".jsonl";
  const std::string name = "messages-" + console().time_stamp() + std::string(extension);
  const std::filesystem::path path = folder / name;
  const std::uint64_t total = rows.count().rows;
  console().writes().commit();
  const Outcome written = console().attempt(Kind::file, path.string(), Step::write, [&] {
    std::filesystem::create_directories(folder);
    std::ofstream file(path, std::ios::binary);
    RowWriter writer(file, format, rows.columns());
    std::uint64_t done = 0;
    messages.read_all([&](const TableRows& part) {
      for (std::size_t i = 0; i < part.size(); ++i) writer.write(part, i);
      done += part.size();
      console().host().show_progress({path.filename().native(), done, std::max(total, done)});
      process_events();
      return file.good();
    });
    file.close();
    if (!file) throw Error(error_number::invalid_call, "The file could not be written");
  });
  say(rows_exported, {name});
  if (written) console().host().offer_file(path);
}

}  // namespace zrl
