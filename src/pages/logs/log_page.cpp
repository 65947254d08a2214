#include "pages/logs/log_page.h"

#include <array>
#include <utility>

#include "core/list_changes.h"
#include "core/text/text.h"

namespace zrl {

void LogPage::set_status(Literal table, IpStatus status, std::string_view address) {
  const std::string digit = std::to_string(static_cast<int>(status));
  execute("UPDATE " + table + " set status=" + number(digit) + " where IPNumber='" + value(address) + "'");
}

bool LogPage::list_address(IpStatus status, std::string_view address) {
  switch (status) {
    case IpStatus::white:
      return add_to_whitehost(address);
    case IpStatus::black:
      return add_to_blackhost(address);
    case IpStatus::neutral:
      break;
  }
  return remove_from_iplist(address);
}

void LogPage::say_listed(IpStatus status, std::string_view address) {
  if (status == IpStatus::neutral) return say(said::removed_from_both, {address});
  say_added(address, status == IpStatus::black ? list::black_addresses : list::white_addresses);
}

void LogPage::say_listed(IpStatus status, std::size_t listed, std::size_t addresses) {
  static constexpr Sentence removed{"%1 IP numbers removed from both lists", "IP numbers not removed",
                                    "1 IP number removed from both lists"};
  static constexpr Sentence added{"%1 IP numbers added to the %2", "IP numbers not added to the %2",
                                  "1 IP number added to the %2"};
  if (status == IpStatus::neutral) return say_of_each(removed, listed, addresses);
  const ListTable& own = status == IpStatus::black ? list::black_addresses : list::white_addresses;
  say_of_each(added, listed, addresses, {list_words(own)});
}

void LogPage::delete_rows(std::initializer_list<Literal> tables, Literal column, std::string_view text) {
  for (const Literal table : tables) execute(delete_from(table, column, text));
}

void LogPage::deletes_rows(Button& button, std::vector<Literal> tables, Literal column,
                           std::function<std::string()> text) {
  button.set_destroys(loss::log_rows, [this, tables = std::move(tables), column, text = std::move(text)] {
    return count_rows(tables, column, text());
  });
}

std::optional<std::uint64_t> LogPage::count_rows(const std::vector<Literal>& tables, Literal column,
                                                 std::string_view text) {
  std::uint64_t sum = 0;
  for (const Literal table : tables) {
    const auto rows =
        count_rows("select " + column + " from " + table + " where " + column + "='" + value(text) + "'");
    if (!rows) return {};
    sum += *rows;
  }
  return sum;
}

std::optional<std::uint64_t> LogPage::count_rows(const Statement& select) {
  const std::optional<std::int64_t> rows = count_value(select);
  return rows ? std::optional(static_cast<std::uint64_t>(*rows)) : std::nullopt;
}

void LogPage::blacklist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return say_nothing(said::no_entry_to_add);
  const bool stored =
      run_entry_steps(*this, std::array{take_off(list::white_domains), put_on(list::black_domains)}, entry);
  say_added(entry, list::black_domains, stored);
}

void LogPage::whitelist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return say_nothing(said::no_entry_to_add);
  const bool stored =
      run_entry_steps(*this, std::array{take_off(list::black_domains), put_on(list::white_domains)}, entry);
  say_added(entry, list::white_domains, stored);
}

void LogPage::unlist_domain(std::string_view domain) {
  const std::string_view entry = trim(domain);
  if (entry.empty()) return say_nothing(said::no_entry_to_remove);
  run_entry_steps(*this, std::array{take_off(list::white_domains), take_off(list::black_domains)}, entry);
  say(said::removed_from_both, {entry});
}

void LogPage::connect_by_telnet(const std::string& target) {
  run_program("telnet.exe", {target, "25"});
  say(said::program_started, {target});
}

void LogPage::show_host_name(const Held<DnsClient>& dns, const ListBox& rows,
                             const std::function<std::string()>& address, TextField& field) {
  const std::int64_t row = rows.index();
  const std::string asked = address();
  const std::optional<std::string> name = host_name_of(dns, asked);
  if (name) {
    say_done(said::host_found, {asked, *name});
  } else {
    say_failed(said::host_not_found, {asked});
  }
  if (name && rows.index() == row && address() == asked) field.set_text(*name);
}

StringList LogPage::LogRows::lines() const {
  StringList result;
  std::string line;
  for (std::size_t i = 0; i < size(); ++i) {
    line.assign(what[i]).append(", ").append(addresses[i]);
    line.append(", ").append(senders[i]).append(", ").append(recipients[i]);
    result.push_back(line);
  }
  return result;
}

LogPage::LogRows LogPage::read_log(Literal select, Literal what, Texts texts) {
  LogRows rows;
  const auto take = [texts](StringList& list, std::string_view text) {
    if (texts == Texts::as_stored) {
      list.push_back(text);
    } else {
      list.push_back(lower(trim(text)));
    }
  };
  const std::unique_ptr<RecordSet> set = open(select, Connection::Access::read_only);
  if (!set) return rows;
  const bool read = read_rows(select.text(), [&] {
    for (; !set->at_end(); set->move_next()) {
      take(rows.what, set->text(what.text()));
      take(rows.addresses, set->text("IPNumber"));
      take(rows.senders, set->text("mailfrom"));
      take(rows.recipients, set->text("mailto"));
      rows.keys.push_back(set->number("ID"));
    }
  });
  return read ? std::move(rows) : LogRows();
}

void LogPage::keep_alive(std::string_view value, std::size_t done, std::size_t total) {
  console().host().show_progress({value, done, total});
  process_events();
}

void LogPage::show_count(Label& label, Literal select) {
  if (const auto count = count_value(select)) label.set_caption(std::to_string(*count));
}

void LogPage::select(ListBox& box, std::int64_t index) {
  if (index < static_cast<std::int64_t>(box.items().size())) box.set_index(index);
}

}  // namespace zrl
