#include "pages/traffic/log_counts.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "core/text/text.h"

namespace zrl {

namespace {

constexpr std::size_t leaders_of_hour = 200;
constexpr std::size_t leaders_of_day = 1000;
constexpr std::size_t longest_domain = 255;
// Progress is shown for more units than these.
constexpr std::size_t few_units = 3;
constexpr std::string_view step = "count the logs";
// For so long nothing is kept after a failure: a locked database would hold up every refresh.
constexpr std::chrono::minutes pause_after_failure{10};

struct Kind {
  std::string_view name;
  NameCounts LogTotals::* counts;
};
constexpr Kind kinds[] = {
    {"reason", &LogTotals::reasons}, {"client", &LogTotals::clients}, {"domain", &LogTotals::domains}};
constexpr std::string_view verdict_kind = "verdict";

bool is_day(std::string_view unit) {
  return unit.find(' ') == std::string_view::npos;
}

// Statements take no apostrophes and databases no ill-formed texts, so names are kept in plain characters.
std::string encoded(std::string_view name) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string result;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > ' ' && byte < 0x7F && c != '%' && c != '\'') {
      result += c;
    } else {
      result.append("%").append(digits.substr(byte / 16, 1)).append(digits.substr(byte % 16, 1));
    }
  }
  return result;
}

std::string decoded(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    const bool is_code = text[i] == '%' && i + 2 < text.size() &&
                         std::from_chars(&text[i + 1], &text[i + 3], byte, 16).ptr == &text[i + 3];
    result += is_code ? static_cast<char>(byte) : text[i];
    if (is_code) i += 2;
  }
  return result;
}

// Four decimal numbers: their network of 24 bits; anything else stays as it is.
std::string network_of(std::string_view address) {
  const std::string_view text = trim(address);
  const bool is_ipv4 =
      std::ranges::count(text, '.') == 3 && text.find_first_not_of("0123456789.") == std::string_view::npos;
  if (!is_ipv4) return std::string(text);
  return std::string(text.substr(0, text.rfind('.'))) + ".0/24";
}

// Empty if there is none.
std::string domain_of(std::string_view sender) {
  const std::size_t at = sender.rfind('@');
  if (at == std::string_view::npos) return {};
  std::string_view domain = trim(sender.substr(at + 1));
  if (domain.ends_with('>')) domain.remove_suffix(1);
  return domain.size() > longest_domain ? std::string() : lower(domain);
}

std::size_t place_of_status(std::int64_t status) {
  return static_cast<std::size_t>(verdict_of(status));
}

void each_row(Connection& connection, const Statement& select, const std::function<void(RecordSet&)>& take) {
  const auto rows = connection.open(select, Connection::Access::read_only);
  for (; !rows->at_end(); rows->move_next()) take(*rows);
}

// "FROM log WHERE" the time is in the unit.
Statement& within(Statement& select, Literal table, const TimeUnit& unit) {
  return select.append(" FROM ")
      .append(table)
      .append(" WHERE servertime>='")
      .append(value(unit.from))
      .append("' AND servertime<'")
      .append(value(unit.until))
      .append("'");
}

}  // namespace

LogCounts::Result LogCounts::count(Period period, Check check) {
  const std::vector<TimeUnit> units = units_of(period, console_.now());
  if (check == Check::thorough) unread_.clear();
  Result result;
  for (const TimeUnit& unit : units) {
    if (unit.place == result.labels.size()) result.labels.push_back(unit.label);
  }
  result.verdicts.resize(result.labels.size());
  if (check == Check::thorough) {
    distrusts_ = false;
    check_marks();
  }

  const auto kept = read_kept(units, result);
  std::vector<const TimeUnit*> wanted;
  for (const TimeUnit& unit : units) {
    if (!kept.contains(unit.name)) wanted.push_back(&unit);
  }
  bool wrote = false;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const TimeUnit& unit = *wanted[i];
    if (wanted.size() > few_units) console_.host().show_progress({step, i, wanted.size()});
    Counted counted;
    const auto held = held_.find(unit.name);
    if (held != held_.end()) {
      counted.totals = held->second;
    } else {
      counted = count_unit(unit);
      if (unit.finished && counted.complete) {
        counted.totals.keep_leaders(is_day(unit.name) ? leaders_of_day : leaders_of_hour);
        keep(unit, counted);
        wrote = true;
      }
    }
    for (std::size_t verdict = 0; verdict < verdict_count; ++verdict) {
      result.verdicts[unit.place][verdict] += counted.totals.verdicts[verdict];
    }
    result.totals.add(counted.totals);
  }
  if (wrote) drop_old(units);
  result.unread = unread_;
  return result;
}

std::string LogCounts::newest_rows() {
  std::string result;
  for (const LogTable& log : log_tables) {
    if (!is_readable(log.table)) continue;
    const bool read = client_.read_rows(step, [&] {
      each_row(*client_.conn, "SELECT max(ID) AS newest FROM " + log.table,
               [&](RecordSet& row) { result.append(row.text("newest")).append(" "); });
    });
    if (!read) unread_.push_back(log.table.text());
  }
  return result;
}

bool LogCounts::is_readable(Literal table) const {
  return client_.conn && std::ranges::find(unread_, table.text()) == unread_.end();
}

// Adds what is kept of the units to the result; the names of those that are complete.
std::set<std::string, std::less<>> LogCounts::read_kept(const std::vector<TimeUnit>& units, Result& result) {
  std::map<std::string, const TimeUnit*, std::less<>> wanted;
  for (const TimeUnit& unit : units) {
    if (unit.finished) wanted.emplace(unit.name, &unit);
  }
  std::set<std::string, std::less<>> complete;
  LogTotals totals;
  std::vector<std::array<std::int64_t, verdict_count>> verdicts(result.verdicts.size());
  const bool read = client_.conn && client_.read_rows(step, [&] {
    const std::string& oldest = units.front().name;
    each_row(*client_.conn,
             "SELECT unit, count(*) AS amount FROM log_units WHERE unit>='" + value(oldest) +
                 "' AND amount>=0 GROUP BY unit",
             [&](RecordSet& row) {
               const bool whole = row.number("amount") == static_cast<std::int64_t>(log_count);
               if (whole && wanted.contains(row.text("unit"))) complete.emplace(row.text("unit"));
             });
    each_row(*client_.conn,
             "SELECT unit, kind, name, amount FROM log_counts WHERE unit>='" + value(oldest) + "'",
             [&](RecordSet& row) {
               const auto unit = wanted.find(row.text("unit"));
               if (unit == wanted.end() || !complete.contains(unit->first)) return;
               const std::string_view kind = row.text("kind");
               const std::int64_t amount = row.number("amount");
               if (kind == verdict_kind) {
                 const std::size_t verdict = place_of_status(row.number("name"));
                 verdicts[unit->second->place][verdict] += amount;
                 totals.verdicts[verdict] += amount;
                 return;
               }
               for (const Kind& one : kinds) {
                 if (kind == one.name) (totals.*one.counts)[decoded(row.text("name"))] += amount;
               }
             });
  });
  if (!read || distrusts_) return {};
  result.totals.add(totals);
  result.verdicts = std::move(verdicts);
  return complete;
}

LogCounts::Counted LogCounts::count_unit(const TimeUnit& unit) {
  Counted counted;
  counted.rows.resize(log_count);
  for (std::size_t log = 0; log < log_count; ++log) {
    if (count_log(log, unit, counted)) continue;
    counted.complete = false;
    if (is_readable(log_tables[log].table)) unread_.push_back(log_tables[log].table.text());
  }
  return counted;
}

bool LogCounts::count_log(std::size_t index, const TimeUnit& unit, Counted& counted) {
  const LogTable& log = log_tables[index];
  // A log that failed for one unit would fail for all; it is tried again some minutes later.
  if (!is_readable(log.table)) return false;
  return client_.read_rows(std::string(step) + " " + std::string(log.table.text()), [&] {
    Statement select = log.has_status
                           ? Literal("SELECT status, substr(IPNumber,1,64) AS name, count(*) AS amount")
                           : Literal("SELECT 2 AS status, substr(IPNumber,1,64) AS name, count(*) AS amount");
    within(select, log.table, unit)
        .append(log.has_status ? Literal(" GROUP BY status, substr(IPNumber,1,64)")
                               : Literal(" GROUP BY substr(IPNumber,1,64)"));
    each_row(*client_.conn, select, [&](RecordSet& row) {
      const std::int64_t amount = row.number("amount");
      counted.rows[index] += amount;
      counted.totals.verdicts[place_of_status(row.number("status"))] += amount;
      std::string network = network_of(row.text("name"));
      if (!network.empty()) counted.totals.clients[std::move(network)] += amount;
    });
    if (log.has_sender) {
      Statement senders("SELECT substr(mailfrom,1,320) AS name, count(*) AS amount");
      within(senders, log.table, unit).append(" GROUP BY substr(mailfrom,1,320)");
      each_row(*client_.conn, senders, [&](RecordSet& row) {
        std::string domain = domain_of(row.text("name"));
        if (!domain.empty()) counted.totals.domains[std::move(domain)] += row.number("amount");
      });
    }
    if (log.reason.empty()) return;
    Statement reasons = "SELECT substr(" + log.reason;
    reasons.append(",1,200) AS name, count(*) AS amount");
    within(reasons, log.table, unit).append(" GROUP BY substr(").append(log.reason).append(",1,200)");
    each_row(*client_.conn, reasons, [&](RecordSet& row) {
      const std::string_view reason = trim(row.text("name"));
      if (!reason.empty()) counted.totals.reasons[std::string(reason)] += row.number("amount");
    });
  });
}

// The rows of log_units come first: if a row of the unit is changed while the counts are written, the
// database takes them away again, and the unit is not complete.
void LogCounts::keep(const TimeUnit& unit, const Counted& counted) {
  const bool claimed = write([&](Connection& connection) {
    connection.execute("DELETE FROM log_units WHERE unit='" + value(unit.name) + "'");
    for (const LogTable& log : log_tables) {
      connection.execute("INSERT INTO log_units (unit, log, amount) VALUES ('" + value(unit.name) + "', '" +
                         value(log.table.text()) + "', -1)");
    }
  });
  const auto add = [&](Connection& connection, std::string_view kind, const std::string& name,
                       std::int64_t amount) {
    connection.execute("INSERT INTO log_counts (unit, kind, name, amount) VALUES ('" + value(unit.name) +
                       "', '" + value(kind) + "', '" + value(name) + "', " + number(std::to_string(amount)) +
                       ")");
  };
  const auto keep = [&](Connection& connection) {
    connection.execute("DELETE FROM log_counts WHERE unit='" + value(unit.name) + "'");
    for (std::size_t i = 0; i < verdict_count; ++i) {
      add(connection, verdict_kind, std::to_string(i), counted.totals.verdicts[i]);
    }
    for (const Kind& kind : kinds) {
      for (const auto& [name, amount] : counted.totals.*kind.counts) {
        add(connection, kind.name, encoded(name), amount);
      }
    }
    for (std::size_t i = 0; i < log_count; ++i) {
      connection.execute("UPDATE log_units SET amount=" + number(std::to_string(counted.rows[i])) +
                         " WHERE unit='" + value(unit.name) + "' AND log='" +
                         value(log_tables[i].table.text()) + "'");
    }
  };
  if (!claimed || !write(keep)) held_.insert_or_assign(unit.name, counted.totals);
}

// Nothing asks any more for hours before yesterday, and for days before the month.
void LogCounts::drop_old(const std::vector<TimeUnit>& units) {
  const std::string hour = units_of(Period::day, console_.now()).front().name;
  const std::string day = units_of(Period::month, console_.now()).front().name;
  std::erase_if(held_, [&](const auto& held) {
    return std::ranges::find(units, held.first, &TimeUnit::name) == units.end();
  });
  write([&](Connection& connection) {
    for (const Literal table : {Literal("log_units"), Literal("log_counts")}) {
      connection.execute("DELETE FROM " + table + " WHERE unit<'" + value(day) + "'");
      connection.execute("DELETE FROM " + table + " WHERE unit<'" + value(hour) + "' AND length(unit)=13");
    }
  });
}

bool LogCounts::write(const std::function<void(Connection&)>& statements) {
  const auto now = std::chrono::steady_clock::now();
  if (!client_.conn || now < no_writes_until_) return false;
  console_.writes().commit();
  Connection& connection = *client_.conn;
  const bool written = client_.read_rows("keep the counts of the logs", [&] {
    connection.begin_transaction();
    try {
      statements(connection);
      connection.commit();
    } catch (const Error&) {
      try {
        connection.roll_back();
      } catch (const Error&) {  // a failed commit has ended the transaction
      }
      throw;
    }
  });
  if (!written) no_writes_until_ = now + pause_after_failure;
  return written;
}

}  // namespace zrl
