#include "host/web/entry_removal.h"

#include <algorithm>

namespace zrl::web {

StringList entries_at(ListFilter& filter, const ItemsControl& list, const ListView& view,
                      const std::vector<BrowserMessage::Range>& ranges) {
  StringList entries;
  const std::vector<std::uint32_t>* rows = view.is_whole() ? nullptr : &filter.rows(list, view);
  const std::uint64_t length = rows == nullptr ? list.items().size() : rows->size();
  for (const auto& [first, last] : ranges) {
    for (std::uint64_t i = first; i <= last && i < length; ++i) {
      entries.push_back(list.items()[rows == nullptr ? i : (*rows)[i]]);
    }
  }
  return entries;
}

void remove_entries(ListBox& list, const StringList& entries,
                    const std::function<bool(std::size_t done)>& proceeds) {
  Button* const button = list.acts().remove;
  if (button == nullptr) throw Refused(list.name() + " has no button that removes its entries");
  // From the last to the first: what precedes an entry is in its place still, and the search short.
  std::size_t place = list.items().size();
  for (std::size_t done = 0; done < entries.size() && proceeds(done); ++done) {
    const std::string_view wanted = entries[entries.size() - 1 - done];
    const StringList& items = list.items();
    place = std::min(place, items.size());
    while (place > 0 && items[place - 1] != wanted) --place;
    if (place == 0) {
      place = items.find(wanted) + 1;  // a view may be in another order than the list
      if (place > items.size()) continue;
    }
    list.user_choose(static_cast<std::int64_t>(--place));
    button->user_click();
  }
}

}  // namespace zrl::web
