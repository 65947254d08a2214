#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/controls.h"
#include "core/text/string_list.h"
#include "host/web/list_order.h"

namespace zrl::web {

// The indexes of the rows that contain `filter`, without regard to the case of ASCII letters. One pass over
// the list's memory, without an allocation for each row.
std::vector<std::uint32_t> matching_rows(const StringList& rows, std::string_view filter);

// The last row that is this text, without regard to the case of ASCII letters and blanks around either.
std::optional<std::uint64_t> row_with(const StringList& rows, std::string_view text);

// What a browser shows of a list: the rows that contain the filter (empty: all), in this order.
struct ListView {
  std::string_view filter;
  ListOrder order = ListOrder::added;

  bool is_whole() const { return filter.empty() && order == ListOrder::added; }
};

// Keeps the newest views of a form's lists, so that paging through them costs nothing: each is computed once
// for a revision of its list. Its controls must outlive it.
class ListFilter {
 public:
  // The indexes of the view's rows, valid until the next call. The view must not be the whole list.
  const std::vector<std::uint32_t>& rows(const ItemsControl& list, const ListView& view);
  // Where the view has the row with this index; nothing if it lacks it.
  std::optional<std::uint64_t> position(const ItemsControl& list, const ListView& view, std::uint64_t index);

 private:
  struct Kept {
    const ItemsControl* list;
    Revision revision;
    std::string filter;
    ListOrder order;
    std::vector<std::uint32_t> rows;
  };

  // A filtered view in an order of its own needs that order, and the lists of a page are looked at in turns.
  static constexpr std::size_t max_kept = 4;

  std::vector<std::uint32_t> compute(const ItemsControl& list, const ListView& view);

  std::deque<Kept> kept_;  // the newest in front
};

}  // namespace zrl::web
