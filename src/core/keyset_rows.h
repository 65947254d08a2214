#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/table.h"

namespace zrl {

// The rows of tables that may have millions of them, read by where they stand in an order, never by how many
// come before them. What it costs to read a window at a position is to go there from the nearest place that
// is known: each window leaves one, so reading on costs the window.
//
// Other programs write meanwhile. A known place is a place in the order and stays right; its position does
// not. When reading passes known places, it finds what was added or deleted before them, corrects their
// positions and calls Table::rows_changed(). So windows that follow each other repeat and skip nothing, and
// as many rows as were deleted come later than they did.
class KeysetRows : public RowSource {
 public:
  void start(const TableView& view) final;
  RowCount count() final;
  void read(std::uint64_t first, std::uint64_t count, TableRows& rows) final;
  bool read_on() final;
  std::optional<std::uint64_t> position_of(std::string_view key) final;

  // Looks for rows that have come before all others. The table's hosts are told if there are any.
  void follow();

 protected:
  // Where a row stands: falling, greater texts come first, of the same text smaller ranks (of its table), of
  // the same rank greater ids. Rising is the same from the end.
  struct Place {
    std::string order;
    std::uint32_t rank = 0;
    std::int64_t id = 0;

    bool operator==(const Place&) const = default;
  };

  // Becomes the table's source.
  explicit KeysetRows(Table& table);

  // The view is another one. False if the filter is not understood, which has become the problem(); any other
  // problem leaves the rows that can be shown. Reads nothing.
  virtual bool begin(const TableView& view) = 0;
  // Finds the next rows behind a place (none: from the first on), at most `limit`: appends their places, and
  // with `rows` the rows. `end`: there are no more. `stopped`: it took too long; `examined` is then up to
  // where all rows have been looked at, else it is the last place found.
  enum class Found : std::uint8_t { full, end, stopped };
  virtual Found find(const std::optional<Place>& behind, std::uint64_t limit, std::vector<Place>& places,
                     TableRows* rows, std::optional<Place>& examined) = 0;
  // How many rows there are, exactly up to most_counted; nothing if only finding them tells.
  virtual std::optional<RowCount> tally() = 0;
  // Where the row with the key stands, nothing if it is not in the view.
  virtual std::optional<Place> place_of(std::string_view key) = 0;

  bool descending() const { return descending_; }
  void set_descending(bool descending) { descending_ = descending; }
  // Whether `one` stands before `other` in the view.
  bool precedes(const Place& one, const Place& other) const;

 private:
  // `position` rows stand at this place or before it.
  struct Known {
    std::uint64_t position = 0;
    std::optional<Place> place;  // none: before the first row
  };

  RowCount count_by_finding();
  Known nearest(std::uint64_t position) const;
  // Finds rows behind a known place, and knows their end then.
  Found advance(Known& from, std::uint64_t limit, TableRows* rows);
  void correct(const Known& from, const std::vector<Place>& places, const Known& reached);
  void know(const Known& reached);
  Place before(Place place) const;
  void found_end(std::uint64_t position);

  Table& table_;
  std::vector<Known> known_;  // by position and place
  RowCount count_;
  bool counted_ = false;
  bool stopped_ = false;
  bool refused_ = false;
  bool descending_ = true;
};

}  // namespace zrl
