#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace zrl {

// What became of the steps of the console's actions: every write and every failed step, in order.
// Steps fail silently towards the page; this record is where an operator sees them.
class ActivityRecord {
 public:
  enum class Kind : std::uint8_t { sql, option, registry, component, program, file };

  struct Entry {
    Kind kind;
    bool ok;
    bool write;         // else a read that failed
    std::int64_t time;  // seconds since 1970, UTC
    std::string_view text;
    std::string_view error = {};        // empty if ok
    std::string_view public_text = {};  // `text` with its secrets hidden: for files and screens
  };

  // Keeps at most `limit` bytes of text; the oldest entries make room.
  explicit ActivityRecord(std::size_t limit = default_limit) : limit_(limit) {}

  // `public_text` is given where the text holds a secret.
  void succeeded(Kind kind, std::string_view text, std::int64_t time, std::string_view public_text = {});
  void failed(Kind kind, std::string_view text, std::string_view error, std::int64_t time, bool write,
              std::string_view public_text = {});

  // Entries are numbered from 0 since the record was made; numbers first() to total() - 1 are
  // still held.
  std::uint64_t first() const { return first_; }
  std::uint64_t total() const { return first_ + entries_.size(); }
  std::uint64_t failures() const { return failures_; }  // ever recorded

  // `number` from first() to total() - 1. The views are valid until the next entry is recorded.
  Entry operator[](std::uint64_t number) const;

  static constexpr std::size_t default_limit = std::size_t{64} << 20;

 private:
  struct Held {
    std::string bytes;  // text, then error, then the public text if it is another
    std::uint32_t text_length;
    std::uint32_t error_length;
    Kind kind;
    bool ok;
    bool write;
    std::int64_t time;
  };

  void keep(const Entry& entry);

  std::deque<Held> entries_;
  std::uint64_t first_ = 0;
  std::uint64_t failures_ = 0;
  std::size_t held_bytes_ = 0;
  std::size_t limit_;
};

// "sql", "option", ...
std::string_view name_of(ActivityRecord::Kind kind);

}  // namespace zrl
