#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/string_list.h"

namespace zrl {

// What the cells of a column are, by which hosts align, write and colour them. The cells themselves are texts
// whatever the kind, and hosts show what is not of the kind as it stands.
enum class ColumnKind : std::uint8_t {
  text,
  number,    // a whole number of 64 bits
  time,      // "2026-09-01 08:15:00" or its fourteen digits, in the local time of the machine
  address,   // an IP address or network, whose characters are best of one width
  verdict,   // "rejected", "allowed" or "neutral"
  word,      // an English word of the page's own, for machines; hosts translate it for people
  severity,  // "bad", "warning" or "unknown"
  check,     // 1 or 0: done or not
  page,      // the name of a page, for machines; hosts show people its title
};

// "text", "number" and so on, as hosts print it.
std::string_view name_of(ColumnKind kind);

// A column of a table. Its texts are literals and not copied.
struct Column {
  std::string_view name;     // for machines: unique in the table, lower case
  std::string_view caption;  // English; the page translates it when it is shown
  ColumnKind kind = ColumnKind::text;
  bool sorts = false;          // whether people may order the rows by it
  std::string_view page = {};  // the page that each cell opens, with its text as query; empty: none
  bool minor = false;          // left out first where there is no room
};

// Rows on their way from a source to a host, cell by cell, in arenas: there is no heap object a cell. Texts
// may hold any bytes. The limits are those of StringList; a longer cell than `longest_cell` is cut, between
// characters, because log texts may have a megabyte and nobody reads a table for them.
class TableRows {
 public:
  static constexpr std::size_t longest_cell = 4096;

  // A link that a cell is, whatever the column says. The views live until the rows are next changed.
  struct Link {
    std::string_view page;
    std::string_view query;
  };

  // Begins a row; its cells follow in the order of the columns. Cells that are left out are empty. The key
  // identifies the row in its table, outlives changes of order and filter, and has no comma.
  TableRows& row(std::string_view key);
  TableRows& cell(std::string_view text);
  TableRows& cell(std::int64_t number) { return cell(std::string_view(std::to_string(number))); }
  TableRows& cell(const std::string& text) { return cell(std::string_view(text)); }
  TableRows& cell(const char* text) { return cell(std::string_view(text)); }
  // Makes the cell that was added last a link; there must be one. A page opened without a query has an empty
  // one.
  TableRows& link(std::string_view page, std::string_view query);

  std::size_t size() const { return keys_.size(); }
  bool empty() const { return keys_.empty(); }
  // `row` must be below size(); a column without a cell is empty.
  std::string_view key(std::size_t row) const { return keys_[row]; }
  std::string_view cell_at(std::size_t row, std::size_t column) const;
  std::optional<Link> link_at(std::size_t row, std::size_t column) const;
  // Appends a row of other rows, with its links.
  void append(const TableRows& from, std::size_t row);

 private:
  StringList keys_;
  StringList cells_;
  std::vector<std::uint32_t> begins_;  // of each row, the index of its first cell
  std::vector<std::uint32_t> linked_;  // the indexes of linked cells, ascending
  StringList targets_;                 // their pages and queries, in turns
};

// How a table's rows are to be ordered and which of them are wanted.
struct TableView {
  static constexpr std::size_t unsorted = static_cast<std::size_t>(-1);

  std::size_t column = unsorted;  // the index of the column to order by; unsorted: the source's own order
  ColumnKind kind = ColumnKind::text;
  bool descending = false;
  std::string_view filter = {};  // what people have typed; empty: all rows. Valid during the call only.
};

// How many rows there are: exactly these, or more than these.
struct RowCount {
  std::uint64_t rows = 0;
  bool exact = true;

  bool operator==(const RowCount&) const = default;
};

// The rows of a table, from wherever they are. The page owns it; the table asks it, on the console's thread,
// within an event of the form, so steps may run and nothing that is raised reaches the host. A source reads
// and never writes.
//
// Positions count from 0 in the order of the view. A window costs the window, wherever it lies. Rows that
// other programs add or delete meanwhile must not make consecutive windows repeat or skip rows: what is added
// after start() belongs to the view only if the source says so by Table::rows_changed().
class RowSource {
 public:
  // Beyond that many rows nobody counts; a source may stop earlier where counting is expensive.
  static constexpr std::uint64_t most_counted = 100'000;

  virtual ~RowSource() = default;

  // The next calls are about the rows as they are now, in this order and with this filter. A filter that is
  // not understood is a problem(), and then there are no rows. Reads nothing yet, so it may be called before
  // the page is shown, and often.
  virtual void start(const TableView& view) = 0;
  // May grow while windows are read, until it is exact.
  virtual RowCount count() = 0;
  // Appends the rows from position `first` on, at most `count`. Fewer come at the end of the rows, after a
  // problem, and where the source bounds the work of one call; none only if there are none there.
  virtual void read(std::uint64_t first, std::uint64_t count, TableRows& rows) = 0;
  // Goes on with a search that read() has broken off because of the time, for a while; false if it is over. A
  // page whose source breaks searches off calls it in a timer.
  virtual bool read_on() { return false; }
  // Appends the row with the key; false if there is none, whatever the filter.
  virtual bool read_key(std::string_view key, TableRows& rows) = 0;
  // Where the row with the key is in the view; nothing if it is not, or that would cost too much.
  virtual std::optional<std::uint64_t> position_of(std::string_view key) = 0;

  // Why the rows cannot be shown as they were asked for, in the user's language; empty if they can.
  const std::string& problem() const { return problem_; }

 protected:
  RowSource() = default;
  RowSource(const RowSource&) = default;
  RowSource& operator=(const RowSource&) = default;

  void set_problem(std::string_view problem) { problem_ = problem; }

 private:
  std::string problem_;
};

}  // namespace zrl
