#include "host/web/list_filter.h"

#include <algorithm>
#include <utility>

#include "core/text/folded_search.h"
#include "core/text/text.h"

namespace zrl::web {

std::vector<std::uint32_t> matching_rows(const StringList& rows, std::string_view filter) {
  std::vector<std::uint32_t> found;
  if (rows.empty()) return found;
  const std::string_view last_row = rows[rows.size() - 1];
  const char* const begin = rows[0].data();
  const std::string_view bytes(begin, static_cast<std::size_t>(last_row.data() + last_row.size() - begin));
  const FoldedSearch search(filter);
  std::size_t row = 0;
  for (std::size_t at = search.find(bytes, 0); at != bytes.npos;) {
    const auto end_of_row = [&] {
      return static_cast<std::size_t>(rows[row].data() - begin) + rows[row].size();
    };
    while (end_of_row() <= at) ++row;
    const std::size_t end = end_of_row();
    if (at + search.length() <= end) {
      found.push_back(static_cast<std::uint32_t>(row));
      at = search.find(bytes, end);
    } else {
      at = search.find(bytes, at + 1);  // it reaches into the next row
    }
  }
  return found;
}

std::optional<std::uint64_t> row_with(const StringList& rows, std::string_view text) {
  text = trim(text);
  for (std::size_t i = rows.size(); i > 0; --i) {
    const std::string_view row = trim(rows[i - 1]);
    if (equals_ignoring_case(row, text)) return i - 1;
  }
  return {};
}

const std::vector<std::uint32_t>& ListFilter::rows(const ItemsControl& list, const ListView& view) {
  const Revision revision = list.revision(Property::items);
  const auto found = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& kept) {
    return kept.list == &list && kept.revision == revision && kept.filter == view.filter &&
           kept.order == view.order;
  });
  if (found != kept_.end()) {
    std::rotate(kept_.begin(), found, found + 1);
    return kept_.front().rows;
  }
  std::erase_if(kept_, [&](const Kept& kept) { return kept.list == &list && kept.revision != revision; });
  std::vector<std::uint32_t> computed = compute(list, view);
  if (kept_.size() == max_kept) kept_.pop_back();
  kept_.push_front({&list, revision, std::string(view.filter), view.order, std::move(computed)});
  return kept_.front().rows;
}

std::vector<std::uint32_t> ListFilter::compute(const ItemsControl& list, const ListView& view) {
  if (view.filter.empty()) return sorted_rows(list.items(), view.order);
  std::vector<std::uint32_t> matches = matching_rows(list.items(), view.filter);
  if (view.order == ListOrder::added) return matches;
  std::vector<bool> matching(list.items().size());
  for (const std::uint32_t row : matches) matching[row] = true;
  matches.clear();
  for (const std::uint32_t row : rows(list, {{}, view.order})) {
    if (matching[row]) matches.push_back(row);
  }
  return matches;
}

std::optional<std::uint64_t> ListFilter::position(const ItemsControl& list, const ListView& view,
                                                  std::uint64_t index) {
  if (index >= list.items().size()) return {};
  if (view.is_whole()) return index;
  const std::vector<std::uint32_t>& shown = rows(list, view);
  const auto found = std::find(shown.begin(), shown.end(), index);
  if (found == shown.end()) return {};
  return static_cast<std::uint64_t>(found - shown.begin());
}

}  // namespace zrl::web
