#include "pages/traffic/subject_log.h"

#include <algorithm>
#include <ctime>
#include <tuple>

#include "core/text/text.h"

namespace zrl {

namespace {

struct Log {
  Literal table;
  std::string_view kind;
  bool has_status;
  bool has_recipient;
  std::string_view reason;  // its column; empty if there is none
};

constexpr Log logs[] = {
    {"iplog", "connection", true, false, {}},          {"predatalog", "header", true, false, "reason"},
    {"subjectlog", "subject", false, true, "keyword"}, {"bodylog", "body", false, true, "keyword"},
    {"avlog", "attachment", false, true, "reason"},
};

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

// The local time so many hours ago, as logs store it.
std::string hours_ago(const Console& console, int hours) {
  const std::time_t seconds = std::chrono::system_clock::to_time_t(console.now() - std::chrono::hours(hours));
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return {};
  char text[32];
  return {text, std::strftime(text, sizeof text, "%F %T", &local)};
}

std::string_view verdict_of(const Log& log, std::int64_t status) {
  if (!log.has_status || status == 2) return "rejected";
  return status == 1 ? "allowed" : "neutral";
}

class Reading {
 public:
  Reading(DatabaseClient& client, Console& console, const Subject& subject)
      : client_(client),
        subject_(subject),
        since_{hours_ago(console, 24), hours_ago(console, 7 * 24), hours_ago(console, 30 * 24)} {}

  SubjectLog run() {
    const bool by_address = subject_.kind == Subject::Kind::address;
    if (!by_address && subject_.kind != Subject::Kind::mail) return {};
    for (const Log& log : logs) {
      if (by_address || log.kind != "connection")
        read(log, by_address ? Literal("IPNumber") : Literal("mailfrom"));
    }
    std::ranges::sort(found_.rows, [](const SubjectLog::Row& left, const SubjectLog::Row& right) {
      return std::tie(right.time, right.key) < std::tie(left.time, left.key);
    });
    if (found_.rows.size() > SubjectLog::most_shown) found_.rows.resize(SubjectLog::most_shown);
    return std::move(found_);
  }

 private:
  // Keys rise as rows come in, and the index of the column has them, so that nothing is sorted.
  void read(const Log& log, Literal column) {
    const Statement select = "SELECT * from " + log.table + " where " + column + "='" + value(subject_.text) +
                             "' order by ID desc limit 5000";
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

  void take(const Log& log, RecordSet& set, std::size_t number) {
    const std::string time(set.text("servertime").substr(0, 40));
    const std::string_view verdict = verdict_of(log, log.has_status ? set.number("status") : 2);
    if (found_.first_seen.empty() || time < found_.first_seen) found_.first_seen = time;
    if (time > found_.last_seen) found_.last_seen = time;
    for (std::size_t period = 0; period < since_.size(); ++period) {
      if (time < since_[period]) continue;
      SubjectLog::Counts& counts = found_.counts[period];
      ++(verdict == "rejected" ? counts.rejected : verdict == "allowed" ? counts.allowed : counts.neutral);
    }
    if (number >= SubjectLog::most_shown) return;
    SubjectLog::Row row{.log = std::string(log.table.text()),
                        .key = set.number("ID"),
                        .time = time,
                        .kind = log.kind,
                        .verdict = verdict,
                        .address = std::string(set.text("IPNumber")),
                        .sender = {},
                        .recipient = {},
                        .reason = {}};
    if (log.kind != "connection") row.sender = set.text("mailfrom");
    if (log.has_recipient) row.recipient = set.text("mailto");
    if (!log.reason.empty()) row.reason = set.text(log.reason);
    found_.rows.push_back(std::move(row));
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
  const std::string since = hours_ago(console, 30 * 24);
  const Statement select =
      "select ID from (select ID, servertime from " + rule->table + " where " + rule->column + "='" +
      value(entry) + "' order by ID desc limit 1000) as newest where servertime>='" + value(since) + "'";
  if (!select.fault().empty()) return {};
  const auto count = client.count_value(select);
  return count ? std::optional(static_cast<std::uint64_t>(*count)) : std::nullopt;
}

}  // namespace zrl
