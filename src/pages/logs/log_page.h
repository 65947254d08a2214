#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/page.h"
#include "core/text/string_list.h"

namespace zrl {

// The column `status` of `iplog` and `predatalog`.
enum class IpStatus : std::uint8_t { neutral = 0, white = 1, black = 2 };

// A page that shows a log and acts on the addresses, senders and domains in it. Here are the single steps;
// the pages run them in different orders, on purpose. The lists are written directly, and no reload flag is
// raised.
//
// Log texts come from strangers and may hold anything. They reach SQL as values only; a text that no
// statement can hold (an apostrophe, a zero byte) makes its step fail. No step throws: what fails is
// recorded.
class LogPage : public Page {
 public:
  using Page::Page;

 protected:
  // "UPDATE iplog set status=2 where IPNumber='...'": all rows of the address in this table.
  void set_status(Literal table, IpStatus status, std::string_view address);
  // Puts the address on the list that belongs to the status, which takes it off the other one; a neutral
  // address is taken off both.
  bool list_address(IpStatus status, std::string_view address);
  // Says to which list these went, or that they left both.
  void say_listed(IpStatus status, std::string_view address);
  void say_listed(IpStatus status, std::size_t listed, std::size_t addresses);

  // Deletes from each table, in this order, the rows with the value in the column.
  void delete_rows(std::initializer_list<Literal> tables, Literal column, std::string_view value);

  // Declares that the button deletes the rows which delete_rows() would: those with the text that `text`
  // yields when it is clicked.
  void deletes_rows(Button& button, std::vector<Literal> tables, Literal column,
                    std::function<std::string()> text);
  // How many rows they are together; nothing if one of the tables cannot be read.
  std::optional<std::uint64_t> count_rows(const std::vector<Literal>& tables, Literal column,
                                          std::string_view text);
  // The rows that the select yields.
  std::optional<std::uint64_t> count_rows(const Statement& select);

  // Move a domain onto one of the domain lists, or off both. The text is trimmed; a blank one does nothing. A
  // domain that is on the list already is inserted once more.
  void blacklist_domain(std::string_view domain);
  void whitelist_domain(std::string_view domain);
  void unlist_domain(std::string_view domain);

  // Starts the program telnet, connected to port 25 of the host; does not wait for it.
  void connect_by_telnet(const std::string& target);

  // Looks up the host name of the address that `address` yields, for the row chosen in `rows`, and puts it
  // into the field. A failed look-up leaves the field as it is. Events run meanwhile, and the answer belongs
  // to the row: if another row is chosen, or `address` yields another one, it is dropped.
  void show_host_name(const Held<DnsClient>& dns, const ListBox& rows,
                      const std::function<std::string()>& address, TextField& field);

  // The rows of a log that is read as a whole: one list a column, all of the same length. A log that cannot
  // be read, even in part, is empty.
  struct LogRows {
    StringList what;  // the keyword or the reason
    StringList addresses;
    StringList senders;
    StringList recipients;
    std::vector<std::int64_t> keys;  // of the rows in the table

    std::size_t size() const { return what.size(); }
    // One line a row: "what, address, sender, recipient".
    StringList lines() const;
  };
  enum class Texts : std::uint8_t { as_stored, trimmed_lower_case };
  // `what` is the column that fills LogRows::what; the select must yield it and ID, IPNumber, mailfrom,
  // mailto.
  LogRows read_log(Literal select, Literal what, Texts texts);

  // To be called for each of many values that an action works on: shows the progress and lets events run, in
  // which the page's controls may change. `total` may be 0 if it is not known.
  void keep_alive(std::string_view value, std::size_t done, std::size_t total);

  // Shows a count in a label; it stays as it was if counting failed.
  void show_count(Label& label, Literal select);

  // Selects an item without running its click. An index beyond the list changes nothing; -1 clears the
  // selection.
  static void select(ListBox& box, std::int64_t index);
  static void select_last(ListBox& box) { select(box, static_cast<std::int64_t>(box.items().size()) - 1); }
};

}  // namespace zrl
