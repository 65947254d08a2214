#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/console.h"
#include "core/contracts/entry_search.h"

namespace zrl::web {

// Finds entries of lists for the search of the browser, and where they are shown. Of the pages it needs only
// what they declare, so it makes each of them once, when it is first asked.
class EntryFinder {
 public:
  // Both must outlive it.
  EntryFinder(Console& console, std::span<const PageEntry> pages) : console_(console), pages_(pages) {}

  // The message `entries` (docs/protocol.md). Where the lists cannot be read it has no hits.
  std::string message(std::uint64_t request, std::string_view text,
                      const std::optional<EntrySearch::Place>& from);

 private:
  struct Shown {
    std::string_view page;
    std::string control;
    std::string frame;  // the title around the list, in the user's language
  };

  void learn();
  void learn(const PageEntry& entry);

  Console& console_;
  std::span<const PageEntry> pages_;
  std::vector<EntrySearch::List> lists_;
  std::vector<Shown> shown_;  // where each list is
  std::shared_ptr<EntrySearch> search_;
};

}  // namespace zrl::web
