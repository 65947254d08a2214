#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

#include "core/contracts/database.h"

// The logs that the proxy writes, and how their rows are read wherever more than one of them is asked. The
// tables and their content are described in docs/operating.md; pages of a single log have statements of their
// own.
namespace zrl {

// What became of a connection or mail that is in a log. The numbers are those of the column `status`.
enum class LogVerdict : std::uint8_t { neutral = 0, allowed = 1, rejected = 2 };
inline constexpr std::size_t verdict_count = 3;

// Other numbers, which other programs may have stored, are neutral.
constexpr LogVerdict verdict_of(std::int64_t status) {
  return status == 1 || status == 2 ? static_cast<LogVerdict>(status) : LogVerdict::neutral;
}

// "neutral", "allowed", "rejected": for machines.
constexpr std::string_view name_of(LogVerdict verdict) {
  constexpr std::string_view names[verdict_count] = {"neutral", "allowed", "rejected"};
  return names[static_cast<std::size_t>(verdict)];
}

// Every log has the columns ID (ascending as rows come in), servertime and IPNumber. All texts are literals.
struct LogTable {
  std::string_view kind;  // of its messages, for machines; no two begin with the same letter
  Literal table;
  Literal reason;              // its column of the reason or keyword; empty if it has none
  bool has_status = false;     // the rows of logs without the column `status` are rejected mails
  bool has_sender = false;     // mailfrom
  bool has_recipient = false;  // mailto
};

// In the order in which people see them.
inline constexpr LogTable log_tables[] = {
    {.kind = "connection", .table = "iplog", .reason = "", .has_status = true},
    {.kind = "header", .table = "predatalog", .reason = "reason", .has_status = true, .has_sender = true},
    {.kind = "subject",
     .table = "subjectlog",
     .reason = "keyword",
     .has_sender = true,
     .has_recipient = true},
    {.kind = "body", .table = "bodylog", .reason = "keyword", .has_sender = true, .has_recipient = true},
    {.kind = "attachment", .table = "avlog", .reason = "reason", .has_sender = true, .has_recipient = true},
};
inline constexpr std::size_t log_count = std::size(log_tables);

// A row of any log. What its log has no column for is empty. The views are valid as long as those of the
// record set.
struct LogRow {
  std::int64_t id = 0;
  std::string_view time;  // "2026-11-21 22:10:00"; empty if none is stored
  LogVerdict verdict = LogVerdict::neutral;
  std::string_view address;
  std::string_view sender;
  std::string_view recipient;
  std::string_view reason;
};

// "select ... from table" of what log_row() reads; conditions, order and limit may follow. Strangers decide
// how long the texts are, so each is cut to 4,096 characters.
Statement select_log_rows(const LogTable& log);

// The same of `ID` and `servertime` alone, which an index has.
Statement select_log_keys(const LogTable& log);

// The current row of a set that select_log_rows() has opened. Raises what reading the set raises.
LogRow log_row(RecordSet& rows);

}  // namespace zrl
