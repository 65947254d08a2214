#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "core/activity.h"
#include "host/web/audit_file.h"

namespace zrl::web {

// UTC, as 2026-01-31T12:00:00Z.
std::string audit_time_text(std::int64_t seconds_since_1970);

// Appends to a file what was written, by which account and on which page: one line an entry (UTF-8), its
// fields separated by tabs, control characters escaped, so that no text can forge a line. On one thread;
// others may append to the same file. A file that cannot be written stops no action by itself (see
// AuditFile).
class AuditLog {
 public:
  AuditLog(std::shared_ptr<AuditFile> file, std::string account)
      : file_(std::move(file)), account_(std::move(account)) {}

  // Appends the entries of the record from number `from` on that are writes, whether they worked
  // or not. Returns the number of the entry that comes next.
  std::uint64_t append(const ActivityRecord& record, std::uint64_t from, std::string_view page);

  // Appends a line about something else that was done. `error` is empty if it worked.
  void note(std::string_view page, std::string_view kind, std::string_view text, std::string_view error = {});

  // Whether lines have been lost since the last call.
  bool take_lost() { return std::exchange(lost_, false); }
  AuditFile& file() const { return *file_; }

 private:
  std::string begin_line(std::int64_t time, std::string_view page) const;
  void write(std::string_view lines) { lost_ = !file_->append(lines) || lost_; }

  const std::shared_ptr<AuditFile> file_;
  const std::string account_;
  bool lost_ = false;
};

}  // namespace zrl::web
