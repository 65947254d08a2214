#include "host/web/audit.h"

#include <array>
#include <ctime>

#include "core/text/printable.h"
#include "core/text/utf8.h"

namespace zrl::web {

namespace {

constexpr std::size_t longest_text = 64 << 10;
constexpr std::size_t block = 256 << 10;

std::string field(std::string_view text) {
  const bool cut = text.size() > longest_text;
  return printable(beginning_of(text, longest_text)) + (cut ? " [cut]" : "");
}

}  // namespace

std::string audit_time_text(std::int64_t seconds_since_1970) {
  const auto time = static_cast<std::time_t>(seconds_since_1970);
  std::tm parts{};
  ::gmtime_r(&time, &parts);
  std::array<char, 32> text{};
  return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

std::uint64_t AuditLog::append(const ActivityRecord& record, std::uint64_t from, std::string_view page) {
  std::string lines;
  if (from < record.first()) {
    const std::string lost = std::to_string(record.first() - from) + " entries are not recorded\n";
    lines += begin_line(std::time(nullptr), page) + "-\t-\t" + lost;
    from = record.first();
  }
  for (; from < record.total(); ++from) {
    const ActivityRecord::Entry entry = record[from];
    if (!entry.write || entry.routine) continue;
    lines += begin_line(entry.time, page);
    lines.append(name_of(entry.kind)).append("\t").append(entry.ok ? "ok" : "failed").append("\t");
    lines += field(entry.public_text);
    if (!entry.ok) lines += "\t" + field(entry.error);
    lines += '\n';
    if (lines.size() > block) {
      write(lines);
      lines.clear();
    }
  }
  if (!lines.empty()) write(lines);
  return from;
}

void AuditLog::note(std::string_view page, std::string_view kind, std::string_view text,
                    std::string_view error) {
  std::string line = begin_line(std::time(nullptr), page);
  line.append(kind).append(error.empty() ? "\tok\t" : "\tfailed\t") += field(text);
  if (!error.empty()) line += "\t" + field(error);
  write(line + "\n");
}

std::string AuditLog::begin_line(std::int64_t time, std::string_view page) const {
  return audit_time_text(time) + "\t" + field(account_) + "\t" + field(page) + "\t";
}

}  // namespace zrl::web
