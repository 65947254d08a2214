#include "pages/traffic/subject_log.h"

#include <algorithm>
#include <chrono>
#include <tuple>

#include "core/contracts/log_tables.h"
#include "core/text/time_stamp.h"

namespace zrl {

namespace {

struct HitColumn {
  std::string_view list;
  Literal table;
  Literal column;
};

constexpr HitColumn hit_columns[] = {
    {"ips.black", "iplog", "IPNumber"},
    {"ips.white", "iplog", "IPNumber"},
    {"mails.black", "predatalog", "mailfrom"},
    {"mails.white", "predatalog", "mailfrom"},
    {"keywords.subject", "subjectlog", "keyword"},
    {"keywords.body", "bodylog", "keyword"},
};

constexpr std::chrono::days periods[] = {std::chrono::days(1), std::chrono::days(7), std::chrono::days(30)};
constexpr std::chrono::days hit_period{30};

class Reading {
 public:
  Reading(DatabaseClient& client, Console& console, const Subject& subject)
      : client_(client), subject_(subject) {
    for (std::size_t i = 0; i < since_.size(); ++i) since_[i] = log_time(console.now() - periods[i]);
  }

  SubjectLog run() {
    const bool by_address = subject_.kind == Subject::Kind::address;
    if (!by_address && subject_.kind != Subject::Kind::mail) return {};
    for (const LogTable& log : log_tables) {
      if (by_address || log.has_sender) read(log, by_address ? Literal("IPNumber") : Literal("mailfrom"));
    }
    std::ranges::sort(found_.rows, [](const SubjectLog::Row& left, const SubjectLog::Row& right) {
      return std::tie(right.time, right.key) < std::tie(left.time, left.key);
    });
    if (found_.rows.size() > SubjectLog::most_shown) found_.rows.resize(SubjectLog::most_shown);
    return std::move(found_);
  }

 private:
  // Keys rise as rows come in, and the index of the column has them, so that nothing is sorted.
  void read(const LogTable& log, Literal column) {
    Statement select = select_log_rows(log);
    select.append(" where ").append(column).append("='").append(value(subject_.text));
    select.append("' order by ID desc limit 5000");
    if (!select.fault().empty()) return;
    const auto set = client_.open(select, Connection::Access::read_only);
    if (!set) {
      found_.complete = false;
      return;
    }
    std::size_t count = 0;
    const bool read = client_.read_rows(select.text(), [&] {
      for (; !set->at_end(); set->move_next(), ++count) take(log, *set, count);
    });
    if (!read || count >= SubjectLog::most_rows) found_.complete = false;
  }

  void take(const LogTable& log, RecordSet& set, std::size_t number) {
    const LogRow row = log_row(set);
    const std::string time(row.time.substr(0, 40));
    if (found_.first_seen.empty() || time < found_.first_seen) found_.first_seen = time;
    if (time > found_.last_seen) found_.last_seen = time;
    for (std::size_t period = 0; period < since_.size(); ++period) {
      if (time < since_[period]) continue;
      SubjectLog::Counts& counts = found_.counts[period];
      ++(row.verdict == LogVerdict::rejected  ? counts.rejected
         : row.verdict == LogVerdict::allowed ? counts.allowed
                                              : counts.neutral);
    }
    if (number >= SubjectLog::most_shown) return;
    found_.rows.push_back({.log = std::string(log.table.text()),
                           .key = row.id,
                           .time = time,
                           .kind = log.kind,
                           .verdict = name_of(row.verdict),
                           .address = std::string(row.address),
                           .sender = std::string(row.sender),
                           .recipient = std::string(row.recipient),
                           .reason = std::string(row.reason)});
  }

  DatabaseClient& client_;
  const Subject& subject_;
  std::array<std::string, 3> since_;
  SubjectLog found_;
};

}  // namespace

SubjectLog log_of(DatabaseClient& client, Console& console, const Subject& subject) {
  return Reading(client, console, subject).run();
}

std::optional<std::uint64_t> hits_of(DatabaseClient& client, Console& console, const KnownList& list,
                                     std::string_view entry) {
  const auto rule = std::ranges::find(hit_columns, list.table.name, &HitColumn::list);
  if (rule == std::end(hit_columns)) return {};
  const std::string since = log_time(console.now() - hit_period);
  const Statement select =
      "select ID from (select ID, servertime from " + rule->table + " where " + rule->column + "='" +
      value(entry) + "' order by ID desc limit 1000) as newest where servertime>='" + value(since) + "'";
  if (!select.fault().empty()) return {};
  const auto count = client.count_value(select);
  return count ? std::optional(static_cast<std::uint64_t>(*count)) : std::nullopt;
}

}  // namespace zrl
