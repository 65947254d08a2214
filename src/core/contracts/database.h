#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/list_tables.h"
#include "core/contracts/statement.h"
#include "core/text/error.h"
#include "core/text/string_list.h"

// The contract with the database access component. Every operation raises zrl::Error on failure, its
// number being the engine's result code or one of error_number, and then leaves the table as it was. Texts
// are UTF-8. Component, connections and record sets belong to the console's thread. Other processes may
// use the database at the same time; an operation waits a few seconds for one that is writing, then fails.
//
// Entries, addresses and the other texts that lists and logs are searched for compare without regard to the
// case of A to Z, everywhere: in statements, in duplicates, in imports and deletions. They are stored as they
// come. Only the keys of options differ by case.
namespace zrl {

// Raised instead of a plain Error where the engine has failed and not the statement: a full disk, an I/O
// error, a lock that was not released, a lost file.
class EngineFailure : public Error {
 public:
  using Error::Error;
};

// A result that spans rows, read-only or updatable. The keys of its rows are read when it is
// opened; a row's columns are read when they are asked for, so that a set over large messages
// costs little until one is looked at. Rows that others insert later are not in it; rows that others
// delete meanwhile read as null. The caller owns the set, and may keep it longer than the connection's
// handle. The case of column names is ignored.
class RecordSet {
 public:
  virtual ~RecordSet() = default;

  virtual std::int64_t count() const = 0;

  // The current row; the first one after opening. Moving to or beyond the end makes at_end() true;
  // reading or writing there raises error 9. Moving back stops at the first row. Moving drops changes
  // that were not written.
  virtual bool at_end() const = 0;
  virtual void move_first() = 0;
  virtual void move_next() = 0;
  virtual void move(std::int64_t rows) = 0;  // forward if positive, back if negative

  // A column of the current row. An unknown name raises error 9. text() and bytes() of a null are empty,
  // its number() is 0. text() returns what is stored, which other programs may have written as ill-formed
  // UTF-8. number() reads the number at the start of a text, 0 if there is none. A view is valid until the
  // set moves, is changed or is destroyed.
  virtual bool is_null(std::string_view column) = 0;
  virtual std::string_view text(std::string_view column) = 0;
  virtual std::string_view bytes(std::string_view column) = 0;
  virtual std::int64_t number(std::string_view column) = 0;

  // Changes to the current row are visible in this set at once, and written together by update(), which
  // raises an error if the row has been deleted. Sets that were not opened as updatable raise error 438.
  virtual void set_text(std::string_view column, std::string_view text) = 0;
  virtual void set_bytes(std::string_view column, std::string_view bytes) = 0;
  virtual void set_number(std::string_view column, std::int64_t number) = 0;
  virtual void update() = 0;

  // Deletes the current row by its key. The set stays at this position, and at_end() is true until it is
  // moved. Needs an updatable set.
  virtual void delete_current() = 0;
};

// An open connection. Each statement is a transaction of its own unless one was begun.
class Connection {
 public:
  enum class Access { read_only, updatable };

  virtual ~Connection() = default;

  // Runs one statement that returns no rows. A statement with a fault() raises an error before it reaches the
  // engine.
  virtual void execute(const Statement& statement) = 0;

  // Opens a static set over a SELECT; never null. Updatable sets need the form "SELECT * from TABLE ...",
  // followed by nothing but a condition and an order. Without an order, rows come as they were inserted.
  virtual std::unique_ptr<RecordSet> open(const Statement& select, Access access) = 0;

  // Transactions do not nest: beginning a second one raises an error, and so does ending one that was not
  // begun. The lock is taken by the first statement, not by begin_transaction(). A statement that fails by
  // itself leaves the transaction as it was. An EngineFailure rolls it back at once: further writes fail,
  // reads see what was committed before, and commit() fails with the same error. A failed commit() rolls back
  // and ends the transaction. What was not committed when the connection is dropped is lost.
  virtual void begin_transaction() = 0;
  virtual void commit() = 0;
  virtual void roll_back() = 0;

  // Makes what was committed so far survive a power cut. The framework calls it once at the end of each user
  // action, because a sync per statement would make an action of many statements slow.
  virtual void settle() = 0;
};

// What pages keep in `conn`. Shared, because the console holds a weak reference to settle it, and because a
// component may return the same connection again.
using ConnectionHandle = std::shared_ptr<Connection>;

// The value of an option as it is stored, a text; empty if there is no such option, or if it is empty.
struct OptionValue {
  std::string text;

  bool empty() const { return text.empty(); }

  // As a 16-bit integer, the empty value being 0. Raises error 13 if it is not a whole number, or too large.
  std::int16_t to_int16() const;
};

// What the lines of a list file were. Blank lines count nowhere, and a line of a hosts file may have several
// entries.
struct ListFileResult {
  std::uint64_t entries = 0;  // those that the file repeats included
  std::uint64_t changed = 0;  // rows that were added or removed
  std::uint64_t comments = 0;
  std::uint64_t refused = 0;  // lines without an entry, such as "127.0.0.1 localhost"
};

// Reads the table `konf`, runs the list operations, and moves whole lists to and from files.
//
// Operations take the connection by reference and may replace it (a connection that was lost is
// opened again). An empty handle raises error 91, a connection of another component error 13.
//
// The result of get_db_array has one element more than there are rows: the last element is empty and
// never shown. get_db_array_ordered has no such element.
//
// Paths of list files are paths of the file system. One of the console's own
// (core/contracts/console_folder.h) raises EACCES, and an export over the database EEXIST. List files are
// UTF-8, one entry per line (LF or CRLF, optional byte-order mark); blank lines and surrounding blanks are
// dropped. A line whose first character is "#" is a comment. In the files of ListKind::domains, " #" begins a
// comment too, and lines of a hosts file ("0.0.0.0 name other.name") stand for their names, unless they only
// name the machine itself.
class Database {
 public:
  static constexpr std::string_view program_id = "dbfunctions.dba";

  virtual ~Database() = default;

  // `provider` is "sqlite:PATH"; a relative path is resolved against the console's folder. The file is made
  // if it is missing, tables and indexes that it lacks are added, and columns that compare by case but should
  // not are brought over, once, table by table; progress is reported, which lets events run. Never null.
  virtual ConnectionHandle open_database(std::string_view provider) = 0;

  // Options are the rows of `konf`, by their key; case matters. The two ways to read one differ only in
  // their names, which the activity record shows. Setting one adds it if it is missing.
  virtual OptionValue read_option(std::string_view key, ConnectionHandle& conn) = 0;
  virtual OptionValue get_option(std::string_view key, ConnectionHandle& conn) = 0;
  virtual void set_option(std::string_view key, std::int32_t value, ConnectionHandle& conn) = 0;
  virtual std::string read_string(std::string_view key, ConnectionHandle& conn) = 0;
  virtual void set_string(std::string_view key, std::string_view text, ConnectionHandle& conn) = 0;
  // The same value as read_string(), within the transaction that is going to change it: nobody else does
  // until that has ended.
  virtual std::string read_to_change(std::string_view key, ConnectionHandle& conn) {
    return read_string(key, conn);
  }

  // The column's values in the order of the rows' insertion. The condition is what follows "where"; the
  // empty one means all rows.
  virtual StringList get_db_array(ConnectionHandle& conn, Literal table, Literal column,
                                  const Statement& condition) = 0;

  // A short text that is another one once the rows of the list have been changed, by whomever, found without
  // reading them: two marks that are equal mean that a list box that shows the rows need not be filled anew.
  // Fit for asking every few seconds. Empty if the component cannot tell.
  virtual std::string change_mark(const ListTable& list, ConnectionHandle& conn) {
    (void)list;
    (void)conn;
    return {};
  }

  // One element per row, ascending by the column `order`; of the column `reason`, each value once, at the
  // place of its last row.
  virtual StringList get_db_array_ordered(ConnectionHandle& conn, Literal table, Literal column,
                                          const Statement& condition, Literal order) = 0;

  // The number of rows that the SELECT finds.
  virtual std::int64_t count_value(const Statement& select, ConnectionHandle& conn) = 0;

  // Removes the entry from the opposite list and makes sure that it is in its own exactly once; an entry that
  // is there keeps its position. Atomic. A blank entry raises error 380, and nothing changes.
  virtual void add_to_blackhost(std::string_view address, ConnectionHandle& conn) = 0;
  virtual void add_to_whitehost(std::string_view address, ConnectionHandle& conn) = 0;
  virtual void add_to_blackdomain(std::string_view domain, ConnectionHandle& conn) = 0;
  virtual void add_to_whitedomain(std::string_view domain, ConnectionHandle& conn) = 0;
  // Make sure that the word is in its list exactly once. A blank word raises error 380: it would match every
  // mail.
  virtual void add_to_swords(std::string_view word, ConnectionHandle& conn) = 0;
  virtual void add_to_words(std::string_view word, ConnectionHandle& conn) = 0;
  // Removes the address from both address lists. Atomic.
  virtual void remove_from_iplist(std::string_view address, ConnectionHandle& conn) = 0;

  // Creates the table with the given column definitions; an existing table is left alone.
  virtual void CreateTable(ConnectionHandle& conn, Literal table, Literal columns) = 0;

  // Creates what is missing of tables and indexes and refreshes the engine's statistics.
  virtual void prep_mdb(ConnectionHandle& conn) = 0;

  // Counters: add `number` to the option with the operation's name, which is made if it is missing. Atomic,
  // so several processes may count.
  virtual void addbytes(std::int64_t number, ConnectionHandle& conn) = 0;
  virtual void addconnections(std::int64_t number, ConnectionHandle& conn) = 0;
  virtual void adddropps(std::int64_t number, ConnectionHandle& conn) = 0;

  // The operations below use the component's own connection, opened when first needed with the
  // connection string of the registry (`dataprovider`), and are durable when they return. Those on files
  // may report progress, which lets events run; one that is started from such an event raises an error.
  // (The names with an underscore at the end are reserved words of C++ without it.)

  // Adds the entries of the file that the list lacks. One transaction: all or nothing.
  virtual ListFileResult import_(const ListTable& list, std::string_view path) = 0;
  // Removes all entries that are in the file. One transaction.
  virtual ListFileResult delete_(const ListTable& list, std::string_view path) = 0;
  // Writes the list to a file, in the order of insertion; the empty `condition` means all rows. An existing
  // file is replaced, as a whole, only with `overwrite`; without it the result is false.
  virtual bool export_(Literal column, Literal table, const Statement& condition, std::string_view path,
                       bool overwrite) = 0;

  // Lower-cases (A to Z) every value of the column, as it is stored.
  virtual void lcase_table(Literal table, Literal column) = 0;

  // The plain and the HTML text of a disclaimer rule, in this order; always two elements, empty if there is
  // no such rule.
  virtual StringList read_disclaimer(std::string_view rule) = 0;

  // Adds the users of the directory server named by the option `ldapserver` to `localmail`. Asks the
  // component DirectoryUsers; nothing is locked while it answers. Entries of former users stay.
  virtual void adad() = 0;
};

}  // namespace zrl
