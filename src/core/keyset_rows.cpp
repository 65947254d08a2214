#include "core/keyset_rows.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace zrl {

namespace {

// Rows that are passed over on the way to a position, at a time.
constexpr std::uint64_t stride = 5000;
// What looks for new rows gives up beyond that many and begins anew.
constexpr std::uint64_t most_new = 200;
// Farther away, nobody is led to a row.
constexpr std::uint64_t farthest = 20'000;
// Where the end is not known, so many rows beyond those that were read.
constexpr std::uint64_t look_ahead = 1000;
// What is counted by finding it is counted for so long.
constexpr std::chrono::milliseconds counting_time{250};
using Clock = std::chrono::steady_clock;

}  // namespace

KeysetRows::KeysetRows(Table& table) : table_(table) {
  table.set_source(*this);
}

bool KeysetRows::precedes(const Place& one, const Place& other) const {
  const Place& first = descending_ ? one : other;
  const Place& second = descending_ ? other : one;
  if (first.order != second.order) return first.order > second.order;
  if (first.rank != second.rank) return first.rank < second.rank;
  return first.id > second.id;
}

void KeysetRows::start(const TableView& view) {
  set_problem({});
  known_.clear();
  count_ = {};
  counted_ = false;
  stopped_ = false;
  descending_ = view.descending || view.column == TableView::unsorted;
  refused_ = !begin(view);
}

RowCount KeysetRows::count() {
  if (refused_) return {};
  if (counted_) return count_;
  if (const auto counted = tally()) {
    count_ = *counted;
  } else {
    count_ = count_by_finding();
  }
  counted_ = true;
  return count_;
}

RowCount KeysetRows::count_by_finding() {
  const auto deadline = Clock::now() + counting_time;
  Known here = known_.empty() ? Known() : known_.back();
  Found found = Found::full;
  while (found == Found::full && here.position <= most_counted && Clock::now() < deadline) {
    found = advance(here, stride, nullptr);
  }
  if (here.position > most_counted) return {most_counted, false};
  return {here.position, found == Found::end};
}

KeysetRows::Known KeysetRows::nearest(std::uint64_t position) const {
  Known best;
  for (const Known& known : known_) {
    if (known.position <= position) best = known;
  }
  return best;
}

void KeysetRows::read(std::uint64_t first, std::uint64_t count, TableRows& rows) {
  if (refused_) return;
  Known here = nearest(first);
  Found found = Found::full;
  while (here.position < first && found == Found::full) {
    found = advance(here, std::min(first - here.position, stride), nullptr);
  }
  if (found == Found::full && count > 0) found = advance(here, count, &rows);
  if (found != Found::full || !counted_ || count_.exact || here.position < count_.rows) return;
  found = advance(here, look_ahead, nullptr);
  count_.rows = std::max(count_.rows, here.position);
}

KeysetRows::Found KeysetRows::advance(Known& from, std::uint64_t limit, TableRows* rows) {
  std::vector<Place> places;
  std::optional<Place> examined = from.place;
  const Found found = find(from.place, limit, places, rows, examined);
  const Known reached{from.position + places.size(), std::move(examined)};
  if (reached.place) correct(from, places, reached);
  stopped_ = found == Found::stopped;
  if (found == Found::end) found_end(reached.position);
  if (found == Found::stopped && counted_ && !count_.exact)
    count_.rows = std::max(count_.rows, reached.position);
  from = reached;
  return found;
}

void KeysetRows::correct(const Known& from, const std::vector<Place>& places, const Known& reached) {
  const auto passed = [&](const Known& known) {
    return (!from.place || precedes(*from.place, *known.place)) && !precedes(*reached.place, *known.place);
  };
  const auto true_position = [&](const Known& known) {
    const auto behind = std::ranges::partition_point(
        places, [&](const Place& place) { return !precedes(*known.place, place); });
    return from.position + static_cast<std::uint64_t>(behind - places.begin());
  };
  std::int64_t shift = 0;
  bool lost = false;
  for (Known& known : known_) {
    if (passed(known)) {
      const std::uint64_t position = true_position(known);
      shift = static_cast<std::int64_t>(position) - static_cast<std::int64_t>(known.position);
      known.position = position;
    } else if (precedes(*reached.place, *known.place)) {
      known.position += static_cast<std::uint64_t>(shift);
      lost = lost || known.position < reached.position;
    }
  }
  // So many rows have come that nobody knows how far away the others are.
  if (lost) std::erase_if(known_, [&](const Known& known) { return precedes(*reached.place, *known.place); });
  know(reached);
  if (!from.place && !places.empty()) know({0, before(places.front())});
  if (lost) {
    counted_ = false;
  } else if (counted_) {
    count_.rows += static_cast<std::uint64_t>(shift);
  }
  if (lost || shift != 0) table_.rows_changed();
}

void KeysetRows::know(const Known& reached) {
  const auto after = std::ranges::partition_point(
      known_, [&](const Known& known) { return !precedes(*reached.place, *known.place); });
  if (after == known_.begin() || *std::prev(after)->place != *reached.place) known_.insert(after, reached);
}

// Nothing that is there stands between it and the row. So the view begins where it began, whatever comes
// before it later, until somebody looks for that.
KeysetRows::Place KeysetRows::before(Place place) const {
  using Limits = std::numeric_limits<std::int64_t>;
  if (descending_ && place.id < Limits::max()) ++place.id;
  if (!descending_ && place.id > Limits::min()) --place.id;
  return place;
}

void KeysetRows::found_end(std::uint64_t position) {
  const RowCount all{position, true};
  if (counted_ && count_ != all) table_.rows_changed();
  count_ = all;
  counted_ = true;
}

void KeysetRows::follow() {
  if (refused_) return;
  if (known_.empty()) return table_.reload();
  Known top;
  advance(top, most_new, nullptr);
}

bool KeysetRows::read_on() {
  if (!stopped_ || refused_ || known_.empty()) return false;
  Known here = known_.back();
  const std::uint64_t before = here.position;
  const Found found = advance(here, look_ahead, nullptr);
  if (here.position != before && found != Found::end) table_.rows_changed();
  return found != Found::end;
}

std::optional<std::uint64_t> KeysetRows::position_of(std::string_view key) {
  if (refused_) return {};
  const std::optional<Place> wanted = place_of(key);
  if (!wanted) return {};
  Known here;
  for (const Known& known : known_) {
    if (precedes(*known.place, *wanted)) here = known;
  }
  if (!here.place && !known_.empty()) return {};  // it has come since
  for (std::uint64_t passed = 0; passed < farthest; passed += stride) {
    const std::uint64_t base = here.position;
    std::vector<Place> places;
    std::optional<Place> examined = here.place;
    const Found found = find(here.place, stride, places, nullptr, examined);
    const auto at = std::ranges::find(places, *wanted);
    if (at != places.end()) return base + static_cast<std::uint64_t>(at - places.begin());
    if (found != Found::full || places.empty()) return {};
    here = {base + places.size(), examined};
  }
  return {};
}

}  // namespace zrl
