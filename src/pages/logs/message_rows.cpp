#include "pages/logs/message_rows.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "core/console.h"
#include "core/text/filled.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Clock = std::chrono::steady_clock;

// A call gives up the search for rows that no index finds after this time,
constexpr std::chrono::milliseconds patience{150};
// which it looks at between searches of so many rows.
constexpr std::uint64_t searched_at_once = 20'000;
// Rows of a log that are fetched at a time.
constexpr std::uint64_t fewest_fetched = 40;
constexpr std::uint64_t most_fetched = 1000;
constexpr std::uint64_t exported_at_once = 1000;
// A statement has room for so many values of the filter beside those of period, status and place.
constexpr std::size_t most_values = 9;

char letter_of(const LogTable& log) {
  return log.kind.front();
}

// "192.0.2.0/24", "192.0.2." or "192.0.2.*" as what the addresses begin with, and the bounds of the number
// behind it.
struct Network {
  std::string prefix;
  int low = 0;
  int high = 255;

  bool is_wide() const { return std::ranges::count(prefix, '.') < 2; }
};

std::optional<Network> parse_network(std::string_view text) {
  const std::size_t slash = text.find('/');
  std::string_view address = text.substr(0, slash);
  if (slash == text.npos && address.ends_with('*')) address.remove_suffix(1);
  const bool open = slash == text.npos;
  if (open && !address.ends_with('.')) return {};
  if (open) address.remove_suffix(1);
  std::array<int, 4> parts{};
  std::size_t count = 0;
  for (std::size_t end = 0; end != address.npos; ++count) {
    end = address.find('.');
    const std::string_view part = address.substr(0, end);
    const auto number = to_number(part);
    if (count == parts.size() || part.empty() || part.size() > 3 || !number || *number < 0 || *number > 255)
      return {};
    parts[count] = static_cast<int>(*number);
    if (end != address.npos) address.remove_prefix(end + 1);
  }
  if (open) {
    if (count > 3) return {};
  } else if (count != 4) {
    return {};
  }
  const auto bits = open ? std::optional<std::int64_t>(8 * static_cast<std::int64_t>(count))
                         : to_number(text.substr(slash + 1));
  if (!bits || *bits < 1 || *bits > 32) return {};
  Network network;
  const auto whole =
      static_cast<std::size_t>((*bits - 1) / 8);  // parts that stand before the one that varies
  for (std::size_t i = 0; i < whole; ++i) network.prefix += std::to_string(parts[i]) + ".";
  const auto left = static_cast<int>(*bits - 8 * static_cast<std::int64_t>(whole));
  const int size = 1 << (8 - left);
  network.low = parts[whole] / size * size;
  network.high = network.low + size - 1;
  return network;
}

}  // namespace

MessageKey message_key(std::string_view key) {
  if (key.empty()) return {};
  const auto id = to_number(key.substr(1));
  const auto log = std::ranges::find(log_tables, key.front(), letter_of);
  // There is one key to a row: "h+12" is none.
  if (!id || log == std::end(log_tables) || std::to_string(*id) != key.substr(1)) return {};
  return {log, *id};
}

// The rows of one log on their way; those without a time are a stream of their own, because no comparison
// finds them.
struct MessageRows::Stream {
  const LogTable* log = nullptr;
  std::uint32_t rank = 0;
  bool timeless = false;
  bool over = false;   // there are no more rows behind `searched`
  bool tried = false;  // in this call
  std::optional<Place> searched;
  std::unique_ptr<RecordSet> set = nullptr;  // null, or at the next row
  Place head = {};

  bool has_head() const { return set != nullptr; }
};

MessageRows::MessageRows(Table& table, DatabaseClient& client, Console& console)
    : KeysetRows(table), client_(client), console_(console) {}

bool MessageRows::begin(const TableView& view) {
  Wanted wanted;
  wanted.choice = choice_;
  wanted.descending = descending();
  const std::string fault = choice_.fault.empty() ? parse(view.filter, wanted) : choice_.fault;
  set_problem(fault);
  wanted_ = std::move(wanted);
  return fault.empty();
}

std::string MessageRows::parse(std::string_view filter, Wanted& wanted) const {
  auto parsed = parse_filter(filter, fields);
  if (const auto* fault = std::get_if<FilterFault>(&parsed)) return told(*fault);
  wanted.terms = std::move(std::get<std::vector<FilterTerm>>(parsed));
  std::size_t values = 0;
  for (const FilterTerm& term : wanted.terms) {
    if (term.field == "ip") {
      const auto network = parse_network(term.value);
      const bool is_network =
          term.value.find_first_of("/*") != std::string::npos || term.value.ends_with('.');
      if (is_network && !network) return told({term.column, "This is no network of IPv4 addresses", {}});
      values += network ? 5 : 1;
      if (network) (network->is_wide() ? wanted.scans : wanted.gathers) = true;
    } else {
      const bool is_exact = term.field == "from" &&
                            (term.value.empty() || term.value.find('@', 1) != std::string::npos) &&
                            term.value.find('\'') == std::string::npos;
      values += term.field == "from" && !is_exact ? 2 : 1;
      if (!is_exact) wanted.scans = true;
    }
  }
  return values > most_values ? told({1, "The filter has too many parts", {}}) : std::string();
}

std::string MessageRows::told(const FilterFault& fault) const {
  Localisation& localisation = console_.localisation();
  return filled(localisation.translate(fault.text), {fault.detail}) + " (" +
         filled(localisation.translate("character %1"), {std::to_string(fault.column)}) + ")";
}

class MessageRows::Instead {
 public:
  Instead(MessageRows& rows, Wanted& wanted) : rows_(rows), wanted_(wanted) { swap(); }
  Instead(const Instead&) = delete;
  Instead& operator=(const Instead&) = delete;
  ~Instead() { swap(); }

 private:
  void swap() {
    std::swap(rows_.wanted_, wanted_);
    rows_.set_descending(rows_.wanted_.descending);
  }

  MessageRows& rows_;
  Wanted& wanted_;
};

void MessageRows::could_not_read(const LogTable& log) {
  wanted_.unreadable.insert(letter_of(log));
  const ActivityRecord& record = console_.activity();
  const std::string why = record.total() == 0 ? std::string() : std::string(record[record.total() - 1].error);
  set_problem(
      filled(console_.localisation().translate("The log %1 could not be read: %2"), {log.table.text(), why}));
}

bool MessageRows::add_terms(const LogTable& log, Statement& where) const {
  for (const FilterTerm& term : wanted_.terms) {
    const std::string pattern = like_pattern(term.value);
    if (term.field == "from") {
      if (!log.has_sender) return false;
      if (term.value.empty()) {
        where.append(" and (mailfrom='' or mailfrom is null)");
      } else if (term.value.find('@', 1) != std::string::npos) {
        if (term.value.find('\'') != std::string::npos) {
          where.append(" and mailfrom like '").append(value(pattern)).append("' escape '!'");
        } else {
          where.append(" and mailfrom='").append(value(term.value)).append("'");
        }
      } else {
        // A domain with those below it.
        const std::string_view domain = std::string_view(pattern).substr(pattern.starts_with('@') ? 1 : 0);
        where.append(" and (mailfrom like '%@")
            .append(value(domain))
            .append("' escape '!' or mailfrom like '%.");
        where.append(value(domain)).append("' escape '!')");
      }
    } else if (term.field == "to") {
      if (!log.has_recipient) return false;
      where.append(" and mailto like '%").append(value(pattern)).append("%' escape '!'");
    } else if (term.field == "ip") {
      const auto network = parse_network(term.value);
      if (!network) {
        if (term.value.find('\'') != std::string::npos) return false;
        where.append(" and IPNumber='").append(value(term.value)).append("'");
        continue;
      }
      if (!network->prefix.empty()) {
        // The character behind the dot ends the range of texts that begin so.
        std::string behind = network->prefix;
        behind.back() = '/';
        where.append(" and IPNumber>='").append(value(network->prefix)).append("' and IPNumber<'");
        where.append(value(behind)).append("'");
      } else {
        // What does not begin with a number would count as 0.
        where.append(" and IPNumber>='0' and IPNumber<':' and IPNumber not like '%:%'");
      }
      const std::string start = std::to_string(network->prefix.size() + 1);
      where.append(" and cast(substr(IPNumber,").append(number(start)).append(") as integer) between ");
      where.append(number(std::to_string(network->low))).append(" and ");
      where.append(number(std::to_string(network->high)));
    } else if (term.field == "reason") {
      if (log.reason.empty()) return false;
      where.append(" and ")
          .append(log.reason)
          .append(" like '%")
          .append(value(pattern))
          .append("%' escape '!'");
    } else {
      where.append(" and (coalesce(IPNumber,'')");
      if (log.has_sender) where.append("||' '||coalesce(mailfrom,'')");
      if (log.has_recipient) where.append("||' '||coalesce(mailto,'')");
      if (!log.reason.empty()) where.append("||' '||coalesce(").append(log.reason).append(",'')");
      where.append(") like '%").append(value(pattern)).append("%' escape '!'");
    }
  }
  return true;
}

bool MessageRows::may_have_rows(const Stream& stream) const {
  const LogTable& log = *stream.log;
  if (stream.timeless && !(wanted_.choice.since.empty() && wanted_.choice.until.empty())) return false;
  if (wanted_.choice.status >= 0 && !log.has_status && wanted_.choice.status != 2) return false;
  Statement unused;
  return add_terms(log, unused);
}

void MessageRows::add_condition(const Stream& stream, Statement& where) const {
  const LogTable& log = *stream.log;
  // A time with an apostrophe or a zero byte could not be said again, as the place behind which a window
  // begins.
  where.append(stream.timeless ? Literal(" where servertime is null")
                               : Literal(" where servertime is not null and instr(servertime,char(39))=0 and "
                                         "instr(servertime,char(0))=0"));
  if (!wanted_.choice.since.empty())
    where.append(" and servertime>='").append(value(wanted_.choice.since)).append("'");
  if (!wanted_.choice.until.empty())
    where.append(" and servertime<='").append(value(wanted_.choice.until)).append("'");
  if (wanted_.choice.status >= 0 && log.has_status) {
    where.append(" and status=").append(number(std::to_string(wanted_.choice.status)));
  }
}

// What stands behind a place of any stream, in one of them.
void MessageRows::add_behind(const Stream& stream, const Place& behind, Statement& where) const {
  if (stream.rank == behind.rank) {
    const std::string id = std::to_string(behind.id);
    if (!stream.timeless) {
      const std::string time = behind.order;
      where.append(descending() ? Literal(" and (servertime,ID)<('") : Literal(" and (servertime,ID)>('"));
      where.append(value(time)).append("',").append(number(id)).append(")");
    } else {
      where.append(descending() ? Literal(" and ID<") : Literal(" and ID>")).append(number(id));
    }
    return;
  }
  const bool later = stream.rank > behind.rank;
  if (stream.timeless) {
    const bool all = behind.order.empty() ? later == descending() : descending();
    if (!all) where.append(" and 1=0");
    return;
  }
  if (descending()) {
    where.append(later ? Literal(" and servertime<='") : Literal(" and servertime<'"));
  } else {
    where.append(later ? Literal(" and servertime>'") : Literal(" and servertime>='"));
  }
  where.append(value(behind.order)).append("'");
}

std::vector<MessageRows::Stream> MessageRows::streams() const {
  std::vector<Stream> found;
  for (const bool timeless : {false, true}) {
    for (std::size_t i = 0; i < log_count; ++i) {
      if (wanted_.choice.log >= 0 && wanted_.choice.log != static_cast<int>(i)) continue;
      if (wanted_.unreadable.contains(letter_of(log_tables[i]))) continue;
      Stream stream;
      stream.log = &log_tables[i];
      stream.rank = static_cast<std::uint32_t>(i + (timeless ? log_count : 0));
      stream.timeless = timeless;
      if (may_have_rows(stream)) found.push_back(std::move(stream));
    }
  }
  return found;
}

namespace {

// `sorted`: by an expression, which no index has, so that the rows are gathered first.
Literal order_by(bool timeless, bool descending, bool sorted) {
  if (timeless) return descending ? Literal(" order by ID desc") : Literal(" order by ID");
  if (sorted) {
    return descending ? Literal(" order by servertime||'' desc, ID desc")
                      : Literal(" order by servertime||'', ID");
  }
  return descending ? Literal(" order by servertime desc, ID desc") : Literal(" order by servertime, ID");
}

}  // namespace

Statement MessageRows::page_of(const Stream& stream, std::uint64_t limit, bool cells) const {
  const LogTable& log = *stream.log;
  Statement select = cells ? select_log_rows(log) : select_log_keys(log);
  const auto append_range = [&](Statement& to) {
    add_condition(stream, to);
    if (stream.searched) add_behind(stream, *stream.searched, to);
  };
  const Literal order = order_by(stream.timeless, descending(), false);
  const Literal gathered = order_by(stream.timeless, descending(), wanted_.scans || wanted_.gathers);
  if (!wanted_.scans) {
    append_range(select);
    add_terms(log, select);
  } else {
    // Only the newest of the rows that are left are searched.
    select.append(" where ID in (select ID from ").append(log.table);
    append_range(select);
    select.append(order).append(" limit ").append(number(std::to_string(searched_at_once))).append(")");
    add_terms(log, select);
  }
  select.append(gathered).append(" limit ").append(number(std::to_string(limit)));
  return select;
}

// Brings the stream to its next row, or over its end, or as far as one search goes.
bool MessageRows::fill(Stream& stream, std::uint64_t limit, bool cells) {
  const std::uint64_t fetched = std::clamp(wanted_.scans ? limit : limit / 3, fewest_fetched, most_fetched);
  const Statement select = page_of(stream, fetched, cells);
  bool read = false;
  stream.set = client_.open(select, Connection::Access::read_only);
  if (stream.set) {
    read = client_.read_rows(select.text(), [&] {
      if (!stream.set->at_end()) {
        stream.head = {std::string(stream.set->text("servertime")), stream.rank, stream.set->number("ID")};
        // A time that is no text stands behind all texts, its own included, so such rows would come for ever.
        if (!stream.searched || precedes(*stream.searched, stream.head)) return;
        stream.set.reset();
        stream.over = true;
        return;
      }
      stream.set.reset();
      if (!wanted_.scans) {
        stream.over = true;
        return;
      }
      // Nothing was found: on behind the last row that was searched.
      Statement last = select_log_keys(*stream.log);
      add_condition(stream, last);
      if (stream.searched) add_behind(stream, *stream.searched, last);
      last.append(order_by(stream.timeless, descending(), false)).append(" limit 1 offset ");
      last.append(number(std::to_string(searched_at_once - 1)));
      const auto end = client_.open(last, Connection::Access::read_only);
      if (!end || end->at_end()) {
        stream.over = true;
      } else {
        stream.searched = Place{std::string(end->text("servertime")), stream.rank, end->number("ID")};
      }
    });
  }
  if (!read) {
    stream.set.reset();
    stream.over = true;
    could_not_read(*stream.log);
  }
  return read;
}

MessageRows::Found MessageRows::find(const std::optional<Place>& behind, std::uint64_t limit,
                                     std::vector<Place>& places, TableRows* rows,
                                     std::optional<Place>& examined) {
  const auto deadline = Clock::now() + patience;
  std::vector<Stream> open = streams();
  for (Stream& stream : open) stream.searched = behind;
  const std::size_t before = places.size();
  bool late = false;
  while (places.size() - before < limit) {
    const Stream* unknown = nullptr;  // of those whose next row is not known, the one that is first
    Stream* next = nullptr;
    for (Stream& stream : open) {
      while (!stream.has_head() && !stream.over && !(late && stream.tried)) {
        stream.tried = true;
        fill(stream, limit, rows != nullptr);
        late = wanted_.scans && Clock::now() >= deadline;
      }
      if (stream.has_head()) {
        if (next == nullptr || precedes(stream.head, next->head)) next = &stream;
      } else if (!stream.over && (unknown == nullptr || !stream.searched ||
                                  (unknown->searched && precedes(*stream.searched, *unknown->searched)))) {
        unknown = &stream;
      }
    }
    if (unknown != nullptr &&
        (next == nullptr || !unknown->searched || precedes(*unknown->searched, next->head))) {
      if (unknown->searched) examined = unknown->searched;
      return Found::stopped;
    }
    if (next == nullptr) return Found::end;
    places.push_back(next->head);
    examined = next->head;
    const bool read = client_.read_rows(next->log->table.text(), [&] {
      if (rows != nullptr) add_row(*next->log, *next->set, *rows);
      next->searched = next->head;
      next->set->move_next();
      if (next->set->at_end()) {
        next->set.reset();
      } else {
        next->head = {std::string(next->set->text("servertime")), next->rank, next->set->number("ID")};
      }
    });
    if (!read) {
      next->set.reset();
      next->over = true;
      could_not_read(*next->log);
    }
  }
  return Found::full;
}

void MessageRows::add_row(const LogTable& log, RecordSet& set, TableRows& rows) const {
  const LogRow row = log_row(set);
  rows.row(letter_of(log) + std::to_string(row.id)).cell(row.time).cell(name_of(row.verdict)).cell(log.kind);
  rows.cell(row.address).cell(row.sender).cell(row.recipient).cell(row.reason);
}

bool MessageRows::read_key(std::string_view key, TableRows& rows) {
  const MessageKey wanted = message_key(key);
  if (wanted.log == nullptr) return false;
  const std::size_t before = rows.size();
  Statement select = select_log_rows(*wanted.log);
  select.append(" where ID=").append(number(std::to_string(wanted.id)));
  if (const auto set = client_.open(select, Connection::Access::read_only)) {
    client_.read_rows(select.text(), [&] {
      if (!set->at_end()) add_row(*wanted.log, *set, rows);
    });
  }
  return rows.size() > before;
}

std::optional<RowCount> MessageRows::tally() {
  if (wanted_.scans) return {};
  std::uint64_t sum = 0;
  for (const Stream& stream : streams()) {
    if (sum > most_counted) break;
    Statement select = select_log_keys(*stream.log);
    add_condition(stream, select);
    add_terms(*stream.log, select);
    select.append(" limit ").append(number(std::to_string(most_counted + 1 - sum)));
    const auto rows = client_.count_value(select);
    if (!rows) could_not_read(*stream.log);
    sum += static_cast<std::uint64_t>(rows.value_or(0));
  }
  return RowCount{std::min(sum, most_counted), sum <= most_counted};
}

std::optional<KeysetRows::Place> MessageRows::place_of(std::string_view key) {
  const MessageKey wanted = message_key(key);
  if (wanted.log == nullptr) return {};
  std::optional<Place> place;
  Statement select = select_log_keys(*wanted.log);
  select.append(" where ID=").append(number(std::to_string(wanted.id)));
  const auto set = client_.open(select, Connection::Access::read_only);
  if (!set) return {};
  client_.read_rows(select.text(), [&] {
    if (set->at_end()) return;
    const auto rank = static_cast<std::uint32_t>(wanted.log - log_tables);
    const bool timeless = set->is_null("servertime");
    place = Place{std::string(set->text("servertime")),
                  rank + (timeless ? static_cast<std::uint32_t>(log_count) : 0), wanted.id};
  });
  return place;
}

bool MessageRows::read_all(const std::function<bool(const TableRows&)>& take) {
  Wanted all = wanted_;
  std::optional<Place> here;
  Found found = Found::full;
  while (found != Found::end) {
    std::vector<Place> places;
    TableRows rows;
    std::optional<Place> examined = here;
    {
      const Instead instead(*this, all);
      found = find(here, exported_at_once, places, &rows, examined);
    }
    here = examined;
    if (!take(rows)) break;
  }
  return all.unreadable.empty();
}

TableRows MessageRows::rows_of(const Choice& choice, std::string_view filter, std::uint64_t limit) {
  Wanted wanted;
  wanted.choice = choice;
  TableRows rows;
  if (!parse(filter, wanted).empty()) return rows;
  const std::string problem_before = problem();
  std::vector<Place> places;
  std::optional<Place> examined;
  {
    const Instead instead(*this, wanted);
    find({}, limit, places, &rows, examined);
  }
  set_problem(problem_before);
  return rows;
}

}  // namespace zrl
