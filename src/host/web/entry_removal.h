#pragma once

#include <cstddef>
#include <functional>

#include "core/controls.h"
#include "core/text/string_list.h"
#include "host/web/list_filter.h"
#include "host/web/messages.h"

namespace zrl::web {

// The texts at these positions of a view, copied, because the list changes while they are removed. Positions
// beyond the view are left out.
StringList entries_at(ListFilter& filter, const ItemsControl& list, const ListView& view,
                      const std::vector<BrowserMessage::Range>& ranges);

// Takes entries off a list as the user would: chooses each, and clicks the button that the list declares for
// removal. An entry that is no longer there is passed over. `proceeds` is called before each one with the
// number of those that are done, and ends the removal by returning false; the list and its form must live as
// long as it returns true. Raises Refused as the acts of the user do, for which earlier entries stay removed,
// and if the list declares no such button.
void remove_entries(ListBox& list, const StringList& entries,
                    const std::function<bool(std::size_t done)>& proceeds);

}  // namespace zrl::web
