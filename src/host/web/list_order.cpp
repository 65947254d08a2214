#include "host/web/list_order.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <span>
#include <utility>

namespace zrl::web {

namespace {

constexpr std::array<std::pair<std::string_view, ListOrder>, 3> orders = {
    {{"added", ListOrder::added}, {"text", ListOrder::text}, {"domain", ListOrder::domain_end}}};

constexpr std::size_t key_size = 8;
constexpr std::size_t deepest_in_domain = 256;
constexpr std::size_t fewest_for_counting = 2048;
constexpr unsigned char end_of_label = 1;  // before every character, so that a domain precedes its hosts

unsigned char folded(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return static_cast<unsigned char>(byte - 'A') < 26 ? byte | 0x20U : byte;
}

// Eight bytes of a row as a number that compares as they do. What lies beyond the end counts as 0.
class Key {
 public:
  bool full() const { return size_ == key_size; }
  void add(unsigned char byte) { value_ |= std::uint64_t{byte} << (8 * (key_size - ++size_)); }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0;
  std::size_t size_ = 0;
};

std::uint64_t key_of_text(std::string_view row, std::size_t at) {
  Key key;
  for (; at < row.size() && !key.full(); ++at) key.add(folded(row[at]));
  return key.value();
}

// The same of the row's labels from the last to the first, each followed by end_of_label.
std::uint64_t key_of_domain(std::string_view row, std::size_t at) {
  Key key;
  std::size_t end = row.size();
  bool before_at_sign = false;
  while (!key.full()) {
    std::size_t begin = before_at_sign ? 0 : end;
    while (begin > 0 && row[begin - 1] != '.' && row[begin - 1] != '@') --begin;
    const std::size_t length = end - begin;
    if (at <= length) {
      for (std::size_t i = begin + at; i < end && !key.full(); ++i) key.add(folded(row[i]));
      if (!key.full()) key.add(end_of_label);
      at = 0;
    } else {
      at -= length + 1;
    }
    if (begin == 0) break;
    before_at_sign = row[begin - 1] == '@';
    end = begin - 1;
  }
  return key.value();
}

// Sorts by eight bytes, then each group of equals by the next eight. Rows that begin alike, as those of one
// domain do, are passed over without being compared with each other.
class Sorting {
 public:
  Sorting(const StringList& rows, ListOrder order) : rows_(rows), order_(order), keyed_(rows.size()) {
    for (std::uint32_t i = 0; i < keyed_.size(); ++i) keyed_[i].row = i;
  }

  std::vector<std::uint32_t> run() {
    groups_.push_back({0, keyed_.size(), 0});
    while (!groups_.empty()) {
      const Group group = groups_.back();
      groups_.pop_back();
      sort(group);
    }
    std::vector<std::uint32_t> order;
    order.reserve(keyed_.size());
    for (const Keyed& keyed : keyed_) order.push_back(keyed.row);
    return order;
  }

 private:
  struct Keyed {
    std::uint64_t key;
    std::uint32_t row;
  };
  struct Group {
    std::size_t begin;
    std::size_t end;
    std::size_t depth;
  };

  void sort(const Group& group) {
    const std::span<Keyed> part(keyed_.begin() + static_cast<std::ptrdiff_t>(group.begin),
                                group.end - group.begin);
    bool alike = true;
    for (Keyed& keyed : part) {
      const std::string_view row = rows_[keyed.row];
      keyed.key = order_ == ListOrder::text ? key_of_text(row, group.depth) : key_of_domain(row, group.depth);
      alike = alike && keyed.key == part.front().key;
    }
    if (!alike) sort_by_key(part);
    const std::size_t depth = group.depth + key_size;
    if (order_ == ListOrder::domain_end && depth >= deepest_in_domain) return;
    for (std::size_t begin = 0; begin < part.size();) {
      std::size_t end = begin + 1;
      bool goes_on = goes_on_at(part[begin].row, depth);
      for (; end < part.size() && part[end].key == part[begin].key; ++end) {
        goes_on = goes_on || goes_on_at(part[end].row, depth);
      }
      if (end - begin > 1 && goes_on) groups_.push_back({group.begin + begin, group.begin + end, depth});
      begin = end;
    }
  }

  // Equal keys stay in their order, which is that of the rows.
  void sort_by_key(std::span<Keyed> part) {
    if (part.size() < fewest_for_counting) {
      std::sort(part.begin(), part.end(), [](const Keyed& a, const Keyed& b) {
        return a.key != b.key ? a.key < b.key : a.row < b.row;
      });
      return;
    }
    // Byte by byte from the last one; bytes in which all keys agree cost one look.
    spare_.resize(part.size());
    for (unsigned shift = 0; shift < 64; shift += 8) {
      const auto byte = [shift](const Keyed& keyed) { return keyed.key >> shift & 0xFFU; };
      std::array<std::size_t, 256> places{};
      for (const Keyed& keyed : part) ++places[byte(keyed)];
      if (places[byte(part.front())] == part.size()) continue;
      std::exclusive_scan(places.begin(), places.end(), places.begin(), std::size_t{0});
      for (const Keyed& keyed : part) spare_[places[byte(keyed)]++] = keyed;
      std::copy(spare_.begin(), spare_.begin() + static_cast<std::ptrdiff_t>(part.size()), part.begin());
    }
  }

  // By domain a row has one byte more than its text, the end of its last label.
  bool goes_on_at(std::uint32_t row, std::size_t depth) const { return rows_[row].size() + 1 > depth; }

  const StringList& rows_;
  ListOrder order_;
  std::vector<Keyed> keyed_;
  std::vector<Keyed> spare_;
  std::vector<Group> groups_;
};

}  // namespace

std::optional<ListOrder> list_order_of(std::string_view name) {
  for (const auto& [known, order] : orders) {
    if (known == name) return order;
  }
  return {};
}

std::string_view name_of(ListOrder order) {
  return orders[static_cast<std::size_t>(order)].first;
}

std::vector<std::uint32_t> sorted_rows(const StringList& rows, ListOrder order) {
  if (order != ListOrder::added) return Sorting(rows, order).run();
  std::vector<std::uint32_t> all(rows.size());
  std::iota(all.begin(), all.end(), 0U);
  return all;
}

}  // namespace zrl::web
