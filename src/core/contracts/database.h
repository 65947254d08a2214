#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/statement.h"
#include "core/text/string_list.h"

// The contract with the database access component. Every operation raises zrl::Error on failure
// and then leaves the table as it was; texts are UTF-8.
namespace zrl {

// A result that spans rows, read-only or updatable. The keys of its rows are read when it is
// opened; a row's columns are read when they are asked for, so that a set over large messages
// costs little until one is looked at. Rows that others delete meanwhile read as empty.
class RecordSet {
 public:
  virtual ~RecordSet() = default;

  virtual std::int64_t count() const = 0;

  // The current row; the first one after opening. Moving to or beyond the end makes at_end() true;
  // reading or writing there raises an error.
  virtual bool at_end() const = 0;
  virtual void move_first() = 0;
  virtual void move_next() = 0;
  virtual void move(std::int64_t rows) = 0;  // forward if positive, back if negative

  // A column of the current row. An unknown name raises an error. text() and bytes() of a null are
  // empty, its number() is 0. A view is valid until the set moves or is changed.
  virtual bool is_null(std::string_view column) = 0;
  virtual std::string_view text(std::string_view column) = 0;
  virtual std::string_view bytes(std::string_view column) = 0;
  virtual std::int64_t number(std::string_view column) = 0;

  // Changes to the current row are kept back until update() writes them. Sets that were not opened
  // as updatable raise an error.
  virtual void set_text(std::string_view column, std::string_view text) = 0;
  virtual void set_bytes(std::string_view column, std::string_view bytes) = 0;
  virtual void set_number(std::string_view column, std::int64_t number) = 0;
  virtual void update() = 0;

  // Deletes the current row by its key; the set stays on its place, which then reads as at_end()
  // until it is moved.
  virtual void delete_current() = 0;
};

// An open connection. Statements run one by one, each by itself, unless a transaction was begun.
class Connection {
 public:
  enum class Access { read_only, updatable };

  virtual ~Connection() = default;

  virtual void execute(const Statement& statement) = 0;

  // Opens a static set over a SELECT. Updatable sets need the form "SELECT * from TABLE ...".
  virtual std::unique_ptr<RecordSet> open(const Statement& select, Access access) = 0;

  virtual void begin_transaction() = 0;
  virtual void commit() = 0;
  virtual void roll_back() = 0;

  // Makes what was written so far survive a power cut. The framework calls it once at the end of
  // each user action.
  virtual void settle() = 0;
};

// What pages keep in `conn`: shared, because the component may hand the same connection out again.
using ConnectionHandle = std::shared_ptr<Connection>;

// The value of an option as it is stored; empty if there is no such option.
struct OptionValue {
  std::string text;

  bool empty() const { return text.empty(); }

  // As a 16-bit integer, the empty value being 0. Raises error 13 if it is no number, or too large.
  std::int16_t to_int16() const;
};

// Reads the table `konf`, runs the list operations, and moves whole lists to and from files.
//
// Operations take the connection by reference and may replace it (a connection that was lost is
// opened again). An empty handle raises error 91.
//
// An array result holds one element more than there are rows: the last element is empty and never
// shown. get_db_array_ordered has no such element.
//
// Paths of list files are paths of the file system. List files are UTF-8, one entry a line (LF or
// CRLF, optional byte-order mark); blank lines and surrounding blanks are dropped.
class Database {
 public:
  static constexpr std::string_view program_id = "dbfunctions.dba";

  virtual ~Database() = default;

  // "sqlite:PATH"; a relative path lies in the console's folder.
  virtual ConnectionHandle open_database(std::string_view provider) = 0;

  virtual OptionValue read_option(std::string_view key, ConnectionHandle& conn) = 0;
  virtual OptionValue get_option(std::string_view key, ConnectionHandle& conn) = 0;
  virtual void set_option(std::string_view key, std::int32_t value, ConnectionHandle& conn) = 0;
  virtual std::string read_string(std::string_view key, ConnectionHandle& conn) = 0;
  virtual void set_string(std::string_view key, std::string_view text, ConnectionHandle& conn) = 0;

  // The column's values in the order of the rows' insertion. The empty condition means all rows.
  virtual StringList get_db_array(ConnectionHandle& conn, Literal table, Literal column,
                                  const Statement& condition) = 0;

  // One element a row, ascending by `order`; of the column `reason` each value once, placed at its
  // latest row.
  virtual StringList get_db_array_ordered(ConnectionHandle& conn, Literal table, Literal column,
                                          const Statement& condition, Literal order) = 0;

  virtual std::int64_t count_value(const Statement& select, ConnectionHandle& conn) = 0;

  // The entry leaves the opposite list and stands once in its own.
  virtual void add_to_blackhost(std::string_view address, ConnectionHandle& conn) = 0;
  virtual void add_to_whitehost(std::string_view address, ConnectionHandle& conn) = 0;
  virtual void add_to_blackdomain(std::string_view domain, ConnectionHandle& conn) = 0;
  virtual void add_to_whitedomain(std::string_view domain, ConnectionHandle& conn) = 0;
  // The word stands once in its list; the empty word raises an error.
  virtual void add_to_swords(std::string_view word, ConnectionHandle& conn) = 0;
  virtual void add_to_words(std::string_view word, ConnectionHandle& conn) = 0;
  // The address leaves both address lists.
  virtual void remove_from_iplist(std::string_view address, ConnectionHandle& conn) = 0;

  // Creates the table with the given column definitions; an existing table is left alone.
  virtual void CreateTable(ConnectionHandle& conn, Literal table, Literal columns) = 0;

  // Creates what is missing of tables and indexes and refreshes the engine's statistics.
  virtual void prep_mdb(ConnectionHandle& conn) = 0;

  // Counters: adds `number` to the option of the operation's name.
  virtual void addbytes(std::int64_t number, ConnectionHandle& conn) = 0;
  virtual void addconnections(std::int64_t number, ConnectionHandle& conn) = 0;
  virtual void adddropps(std::int64_t number, ConnectionHandle& conn) = 0;

  // The operations below use a connection of the component's own, opened when first needed with
  // the provider of the settings store. (`import` and two others wear an underscore because the
  // language reserves their names.)

  // Adds the entries of the file that the table lacks. One transaction: all or nothing.
  virtual bool import_(Literal column, Literal table, std::string_view path) = 0;
  // Removes all entries that the file names. One transaction.
  virtual bool delete_(Literal column, Literal table, std::string_view path) = 0;
  // Writes the list to a file, in the order of insertion; `condition` is empty for all rows. An
  // existing file is replaced only with `overwrite`; without it the result is false.
  virtual bool export_(Literal column, Literal table, const Statement& condition, std::string_view path,
                       bool overwrite) = 0;

  // Lower-cases (A to Z) every value of the column.
  virtual void lcase_table(Literal table, Literal column) = 0;

  // The plain and the HTML text of a disclaimer rule, in this order.
  virtual StringList read_disclaimer(std::string_view rule) = 0;

  // Reads the users of the directory server named by the option `ldapserver` into `localmail`.
  virtual void adad() = 0;
};

}  // namespace zrl
