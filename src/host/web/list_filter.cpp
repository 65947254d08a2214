#include "host/web/list_filter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/text/text.h"

namespace zrl::web {

namespace {

constexpr std::array<unsigned char, 256> make_folding() {
  std::array<unsigned char, 256> table{};
  for (unsigned i = 0; i < table.size(); ++i) {
    table[i] = static_cast<unsigned char>(i >= 'A' && i <= 'Z' ? i + ('a' - 'A') : i);
  }
  return table;
}

constexpr std::array<unsigned char, 256> folding = make_folding();

unsigned char folded(char c) {
  return folding[static_cast<unsigned char>(c)];
}

// Looks for a text at falling cost the longer it is: a window that does not match is left behind
// by as many bytes as its last byte allows.
class Search {
 public:
  explicit Search(std::string_view text) : text_(lower(text)) {
    skips_.fill(text_.size());
    for (std::size_t i = 0; i + 1 < text_.size(); ++i) skips_[folded(text_[i])] = text_.size() - 1 - i;
  }

  std::size_t length() const { return text_.size(); }

  // The place of the first match from `at` on, or npos.
  std::size_t find(std::string_view bytes, std::size_t at) const {
    const std::size_t last = text_.size() - 1;
    const auto wanted = static_cast<unsigned char>(text_[last]);
    while (at + last < bytes.size()) {
      const unsigned char found = folded(bytes[at + last]);
      if (found == wanted && matches(bytes.data() + at)) return at;
      at += skips_[found];
    }
    return std::string_view::npos;
  }

 private:
  bool matches(const char* bytes) const {
    for (std::size_t i = 0; i + 1 < text_.size(); ++i) {
      if (folded(bytes[i]) != static_cast<unsigned char>(text_[i])) return false;
    }
    return true;
  }

  std::string text_;
  std::array<std::size_t, 256> skips_;
};

}  // namespace

std::vector<std::uint32_t> matching_rows(const StringList& rows, std::string_view filter) {
  std::vector<std::uint32_t> found;
  if (rows.empty()) return found;
  const std::string_view last_row = rows[rows.size() - 1];
  const char* const begin = rows[0].data();
  const std::string_view bytes(begin, static_cast<std::size_t>(last_row.data() + last_row.size() - begin));
  const Search search(filter);
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
  const auto same = [](char a, char b) { return folded(a) == folded(b); };
  for (std::size_t i = rows.size(); i > 0; --i) {
    const std::string_view row = trim(rows[i - 1]);
    if (row.size() == text.size() && std::equal(row.begin(), row.end(), text.begin(), same)) return i - 1;
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
