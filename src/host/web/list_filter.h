#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "core/controls.h"
#include "core/text/string_list.h"

namespace zrl::web {

// The indexes of the rows that contain `filter`, without regard to the case of ASCII letters. One pass over
// the list's memory, without an allocation for each row.
std::vector<std::uint32_t> matching_rows(const StringList& rows, std::string_view filter);

// Keeps the newest matches of a form's lists, so that paging through them costs nothing. Its
// controls must outlive it.
class ListFilter {
 public:
  // Valid until the next call. `filter` must not be empty.
  const std::vector<std::uint32_t>& matches(const ItemsControl& list, std::string_view filter);

 private:
  struct Kept {
    const ItemsControl* list;
    Revision revision;
    std::string filter;
    std::vector<std::uint32_t> rows;
  };

  static constexpr std::size_t max_kept = 2;

  std::deque<Kept> kept_;  // the newest in front
};

}  // namespace zrl::web
