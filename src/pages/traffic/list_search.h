#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/database_client.h"
#include "core/list_catalogue.h"
#include "pages/traffic/subject.h"

namespace zrl {

// An entry of a list that touches what was looked up.
struct ListFinding {
  const KnownList* list;
  std::string entry;  // as it is stored
  Match match;
  // The switch that keeps the list from being effective; null if it is.
  const ListSwitch* switched_off = nullptr;
  std::string comment = {};
  std::string expires = {};  // a date, YYYY-MM-DD; empty: never

  // Whether the proxy is known to decide by this entry now.
  bool decides() const { return switched_off == nullptr && list->decides.has(match); }
};

struct ListFindings {
  // Of a list the closest first; lists in the order of known_lists(). Entries that are stored twice come
  // once.
  std::vector<ListFinding> entries;
  std::size_t left_out = 0;  // further ones beyond `most_entries`
  bool complete = true;      // false if a list could not be read, or its expressions took too long

  static constexpr std::size_t most_entries = 1000;
};

// Finds every entry of all lists that touches the subject. Reads the candidates by their index, of networks
// also the neighbourhood, as an entry may have bits beyond its prefix; of keywords the whole lists. Costs
// some milliseconds with a million entries a list, and about one for 5,000 keywords. Regular expressions may
// take two seconds together.
//
// Nothing is written. What cannot be read is recorded.
ListFindings search_lists(DatabaseClient& client, Console& console, const Subject& subject);

// The first switch that keeps the list from being effective; null if it is, or if that cannot be read.
const ListSwitch* switched_off(DatabaseClient& client, const KnownList& list);

}  // namespace zrl
