#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/console.h"
#include "core/database_client.h"
#include "pages/traffic/subject.h"

namespace zrl {

// What the logs know of an IP number or of a sender's address: of the newest rows, as many as `most_rows` a
// log.
struct SubjectLog {
  static constexpr std::size_t most_rows = 5'000;
  static constexpr std::size_t most_shown = 100;

  struct Row {
    std::string log;           // its table
    std::int64_t key = 0;      // `ID` in it
    std::string time;          // as stored, "2026-11-21 22:10:00"
    std::string_view kind;     // "connection", "header", "subject", "body" or "attachment"
    std::string_view verdict;  // "allowed", "rejected" or "neutral"
    std::string address;
    std::string sender;
    std::string recipient;
    std::string reason;
  };
  // Of a period; rows of all logs together.
  struct Counts {
    std::uint64_t rejected = 0;
    std::uint64_t allowed = 0;
    std::uint64_t neutral = 0;
  };
  enum Period : std::size_t { day, week, month };

  std::vector<Row> rows;  // newest first, at most `most_shown`
  std::array<Counts, 3> counts;
  std::string first_seen;  // times, as stored; empty if there is no row
  std::string last_seen;
  bool complete = true;  // false if there are more rows than were read, or a log could not be read
};

// Reads by the index of the column; other kinds of subjects are in no such column, and find nothing. The
// clock is that of the console, and so is the local time in which logs are kept.
SubjectLog log_of(DatabaseClient& client, Console& console, const Subject& subject);

// How many of the newest rows that an entry of the list decided are at most 30 days old; nothing where the
// logs do not tell by which entry a row came about, and where they cannot be read. Of rows beyond the newest
// thousand it knows nothing.
std::optional<std::uint64_t> hits_of(DatabaseClient& client, Console& console, const KnownList& list,
                                     std::string_view entry);

}  // namespace zrl
