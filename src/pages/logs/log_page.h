#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "core/page.h"
#include "core/text/string_list.h"

namespace zrl {

// The column `status` of `iplog` and `predatalog`.
enum class IpStatus : std::uint8_t { neutral = 0, white = 1, black = 2 };

// A page that shows a log and acts on what it finds there: on addresses, senders and domains. The
// pages differ in the order of their steps, on purpose; here are the single steps. The lists are
// written directly, and no reload flag is raised.
class LogPage : public Page {
 public:
  using Page::Page;

 protected:
  // "UPDATE iplog set status=2 where IPNumber='...'"
  void set_status(Literal table, IpStatus status, std::string_view address);
  // The operation of the component that belongs to the status: onto one of the two address lists, or
  // off both.
  void list_address(IpStatus status, std::string_view address);
  // Deletes from each table, in this order, the rows with the value in the column.
  void delete_rows(std::initializer_list<Literal> tables, Literal column, std::string_view value);

  // The domain lists. The text is trimmed for each statement; a blank one does nothing.
  void blacklist_domain(std::string_view domain);
  void whitelist_domain(std::string_view domain);
  void unlist_domain(std::string_view domain);

  // Opens a connection to port 25.
  void connect_by_telnet(const std::string& target);

  // The rows of a log that is read as a whole: the texts of a column are one list, and all four lists
  // are of the same length. A log that cannot be read is empty.
  struct LogRows {
    StringList what;  // the keyword or the reason
    StringList addresses;
    StringList senders;
    StringList recipients;

    std::size_t size() const { return what.size(); }
    // One line a row: "what, address, sender, recipient".
    StringList lines() const;
  };
  enum class Texts : std::uint8_t { as_stored, trimmed_lower_case };
  LogRows read_log(Literal select, Literal what, Texts texts);

  // Called for each of many values that an action works on: shows the progress and lets events run.
  void keep_alive(std::string_view value, std::size_t done, std::size_t total);

  // Shows a count in a label; it stays as it was if counting failed.
  void show_count(Label& label, Literal select);

  // Chooses an item without running its click; an index that is not there chooses nothing.
  static void select(ListBox& box, std::int64_t index);
  static void select_last(ListBox& box) { select(box, static_cast<std::int64_t>(box.items().size()) - 1); }
};

}  // namespace zrl
