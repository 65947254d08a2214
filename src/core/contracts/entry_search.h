#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/list_tables.h"

namespace zrl {

// Searches the lists for entries, as people look for them: by what an entry begins with or contains. It only
// reads, and never waits for a writer. One thread; the object keeps a connection of its own, which it opens
// with the console's connection string.
class EntrySearch {
 public:
  static constexpr std::string_view program_id = "mirvan.entrysearch";

  virtual ~EntrySearch() = default;

  // Which entries of its table a list has: all, or only those without or with an "@".
  enum class Entries : std::uint8_t { all, without_at, with_at };
  struct List {
    ListTable table;
    Entries entries = Entries::all;
  };

  // Where a search goes on: at a list, by its place among those that were given, and behind a row of it.
  struct Place {
    std::size_t list = 0;
    std::int64_t row = 0;
  };

  struct Hit {
    std::size_t list;  // its place among those that were given
    std::string entry;
  };

  struct Found {
    std::vector<Hit> hits;
    std::optional<Place> next;  // nothing: all has been searched, or there are as many hits as wanted
  };

  // At most `most` entries with this text, the case of A to Z ignored. Without a place, the search begins:
  // the entries that begin with the text come first, found by the indexes in a time that does not depend on
  // the lists' lengths, the exact ones before the others, a few of each list. Then the lists are read for
  // those that contain it, until `time` is over. With a place, that goes on there.
  // The empty text finds nothing. Raises zrl::Error if the database cannot be read.
  virtual Found find(std::span<const List> lists, std::string_view text, const std::optional<Place>& from,
                     std::size_t most, std::chrono::milliseconds time) = 0;
};

}  // namespace zrl
