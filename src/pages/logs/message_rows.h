#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/log_tables.h"
#include "core/database_client.h"
#include "core/keyset_rows.h"
#include "core/text/row_filter.h"

namespace zrl {

// A key of MessageRows, taken apart; null and 0 if it is none. Keys begin with the first letter of the log's
// kind: "h12" is row 12 of predatalog.
struct MessageKey {
  const LogTable* log = nullptr;
  std::int64_t id = 0;
};
MessageKey message_key(std::string_view key);

// The rows of all logs, the newest first, or the oldest; those of the same second in the order of log_tables.
// The columns of the table are time, verdict, kind, address, sender, recipient and reason. A log that cannot
// be read is left out, and told by problem().
class MessageRows : public KeysetRows {
 public:
  struct Choice {
    std::string since;  // times as the logs have them, both included; empty: no bound
    std::string until;
    int log = -1;       // an index of log_tables; -1: all
    int status = -1;    // 0 to 2; -1: any
    std::string fault;  // why the choice makes no sense, in the user's language; then there are no rows
  };

  // All three outlive it.
  MessageRows(Table& table, DatabaseClient& client, Console& console);

  // The rows that the next Table::reload() shows.
  void choose(Choice choice) { choice_ = std::move(choice); }

  bool read_key(std::string_view key, TableRows& rows) override;

  // All rows that the filter leaves, in their order, passed on in parts until `take` returns false. Events
  // may run in `take`: the rows are those of the filter at the beginning. False if a log could not be read.
  bool read_all(const std::function<bool(const TableRows&)>& take);
  // Rows of another choice and filter, the newest first; what the table shows stays as it is.
  TableRows rows_of(const Choice& choice, std::string_view filter, std::uint64_t limit);

  static constexpr std::string_view fields[] = {"from", "to", "ip", "reason"};

 protected:
  bool begin(const TableView& view) override;
  Found find(const std::optional<Place>& behind, std::uint64_t limit, std::vector<Place>& places,
             TableRows* rows, std::optional<Place>& examined) override;
  std::optional<RowCount> tally() override;
  std::optional<Place> place_of(std::string_view key) override;

 private:
  struct Stream;

  // The conditions of the filter; false if no row of the log can meet them.
  bool add_terms(const LogTable& log, Statement& where) const;
  bool may_have_rows(const Stream& stream) const;
  void add_condition(const Stream& stream, Statement& where) const;
  void add_behind(const Stream& stream, const Place& behind, Statement& where) const;
  std::vector<Stream> streams() const;
  bool fill(Stream& stream, std::uint64_t limit, bool cells);
  Statement page_of(const Stream& stream, std::uint64_t limit, bool cells) const;
  std::string told(const FilterFault& fault) const;
  void could_not_read(const LogTable& log);
  void add_row(const LogTable& log, RecordSet& set, TableRows& rows) const;

  // What is wanted, of the table or for the moment.
  struct Wanted {
    Choice choice = {};
    std::vector<FilterTerm> terms = {};
    bool scans = false;    // the filter has a term that no index knows
    bool gathers = false;  // it names a network: its rows are gathered and sorted
    bool descending = true;
    std::set<char> unreadable = {};
  };
  // Lets it take the place of what the table wants.
  class Instead;
  // Why the filter means nothing; empty if it does.
  std::string parse(std::string_view filter, Wanted& wanted) const;

  DatabaseClient& client_;
  Console& console_;
  Choice choice_;
  Wanted wanted_;
};

}  // namespace zrl
