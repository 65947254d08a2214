#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "core/activity.h"

namespace zrl::web {

// Appends to a file what was written, by which account and on which page: one line an entry (UTF-8), its
// fields separated by tabs, control characters escaped, so that no text can forge a line. Several sessions
// and processes may append to the same file. A file that cannot be written stops no action.
class AuditLog {
 public:
  AuditLog(std::filesystem::path file, std::string account)
      : file_(std::move(file)), account_(std::move(account)) {}

  // Appends the entries of the record from number `from` on that are writes, whether they worked
  // or not. Returns the number of the entry that comes next.
  std::uint64_t append(const ActivityRecord& record, std::uint64_t from, std::string_view page);

  // Appends a line about something else that was done. `error` is empty if it worked.
  void note(std::string_view page, std::string_view kind, std::string_view text, std::string_view error = {});

 private:
  std::string begin_line(std::int64_t time, std::string_view page) const;
  void write(std::string_view lines);

  std::filesystem::path file_;
  std::string account_;
  bool line_is_torn_ = false;  // the disk was full in the middle of a line
};

}  // namespace zrl::web
