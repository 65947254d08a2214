#include "core/contracts/log_tables.h"

namespace zrl {

Statement select_log_rows(const LogTable& log) {
  Statement select("select ID, servertime, ");
  select.append(log.has_status ? Literal("status") : Literal("2 as status"));
  select.append(", substr(IPNumber,1,4096) as IPNumber, ");
  select.append(log.has_sender ? Literal("substr(mailfrom,1,4096) as mailfrom") : Literal("'' as mailfrom"));
  select.append(", ");
  select.append(log.has_recipient ? Literal("substr(mailto,1,4096) as mailto") : Literal("'' as mailto"));
  if (log.reason.empty()) {
    select.append(", '' as reason from ");
  } else {
    select.append(", substr(").append(log.reason).append(",1,4096) as reason from ");
  }
  select.append(log.table);
  return select;
}

Statement select_log_keys(const LogTable& log) {
  return "select ID, servertime from " + log.table;
}

LogRow log_row(RecordSet& rows) {
  return {.id = rows.number("ID"),
          .time = rows.text("servertime"),
          .verdict = verdict_of(rows.number("status")),
          .address = rows.text("IPNumber"),
          .sender = rows.text("mailfrom"),
          .recipient = rows.text("mailto"),
          .reason = rows.text("reason")};
}

}  // namespace zrl
