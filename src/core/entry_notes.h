#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/list_tables.h"
#include "core/database_client.h"

// What people note of list entries: why one is there, and until when. The table is `entry_notes`, see the
// schema; who added an entry, and when, is not noted.
namespace zrl {

struct EntryNote {
  // In bytes; a longer comment is refused.
  static constexpr std::size_t longest_comment = 1000;

  std::string comment;  // one line, UTF-8
  std::string expires;  // the last day on which the entry holds, local date, "2027-01-31"; empty: for good

  bool empty() const { return comment.empty() && expires.empty(); }
};

// The last day that a person means by a date, "2027-01-31", or a number of days from today, "30d"; empty for
// a blank text. Nothing for anything else, for days before today and those after the year 9999. `today` is
// "20261121", as Console::time_stamp() begins.
std::optional<std::string> last_day(std::string_view typed, std::string_view today);
inline constexpr std::string_view not_a_last_day =
    "Not a day to come: enter a date such as 2027-01-31, or a number of days such as 30d";

// The note of an entry, as the entry is stored (the case of A to Z ignored); empty if there is none, or if it
// cannot be read, which is recorded.
EntryNote note_of(DatabaseClient& client, const ListTable& list, std::string_view entry);

// Stores the note in place of a former one; an empty note only removes that. False if a step failed:
// recorded, and the entry may be left without a note.
bool save_note(DatabaseClient& client, const ListTable& list, std::string_view entry, const EntryNote& note);

}  // namespace zrl
