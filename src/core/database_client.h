#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/contracts/database.h"
#include "core/contracts/list_tables.h"
#include "core/steps.h"

namespace zrl {

// The base of everything that works on the database: it holds the component and the connection, and offers
// every operation as a step (see Steps), which never throws. Unless said otherwise, the result is true, or
// not empty, if the step worked. Without a component or connection, a step fails with error 91.
//
// What an action writes is one transaction, see ActionWrites. It is committed before another connection or a
// file is used, and before a whole list or log is read, during which the proxy is not to wait. So a write
// that worked may still be undone when the action goes on or ends. The end of the user's action settles the
// connection, see Console::end_action().
//
// The contracts of the operations are those of core/contracts/database.h.
class DatabaseClient : public Steps {
 public:
  // Empty until connect_database() and after drop_database(). Hosts may read them.
  std::shared_ptr<Database> database;
  ConnectionHandle conn;

  using Steps::Steps;

  // Creates the component and opens the connection that the registry value `dataprovider` names. On failure
  // shows a message box with this title, during which events run; the caller goes on in any case.
  bool connect_database(std::string_view box_title = "No Database Connection Possible");
  // Empties both handles, in the order of their declaration.
  void drop_database();

  using Failure = Console::Failure;

  // Runs a statement. The record holds it as it ran, and without its secrets for what people see.
  bool execute(const Statement& statement, Failure failure = Failure::unexpected);
  bool execute(Literal statement, Failure failure = Failure::unexpected) {
    return execute(Statement(statement), failure);
  }

  // Runs `action`, which reads an open record set and may raise what the set raises; recorded under `text`
  // if it fails. What it read before that has taken effect.
  bool read_rows(std::string_view text, const std::function<void()>& action);
  // Runs `action`, which writes through an updatable set, as a part of the action's transaction.
  Outcome write_row(std::string_view text, const std::function<void()>& action);
  // Deletes the row that the SELECT finds first; the step fails if there is none. `text` is for the record.
  Outcome delete_row(std::string_view text, const Statement& select);

  // Transactions, for the few operations that need one of their own, apart from the action's, which
  // begin_transaction() commits. commit() is recorded under the text, as a read or a write. A failed step
  // within one does not roll back by itself.
  bool begin_transaction();
  bool commit(std::string_view text, Step step);
  bool roll_back();

  // Options. A missing option reads as the empty value; no value is returned if the read failed, in which
  // case a page leaves the control as it is.
  //
  // Two people may edit the same option. Where the host guards newer values (Host::guards_newer_values()),
  // set_string() and store_number() compare what is stored now with what was read last over this connection.
  // If somebody else has stored another value meanwhile, a text that is still as it was read is not written,
  // and one that was changed only if the person says so. A write that gives way counts as done, and the page
  // shows the newer value if the person wants that (show_newer()). Blanks around a text make no difference.
  // An option that this page has not read, or that is empty now, is written without a question.
  std::optional<OptionValue> read_option(std::string_view key);
  std::optional<OptionValue> get_option(std::string_view key);
  // As a 16-bit integer, a missing option being 0. One that is no such number is a failed read.
  std::optional<std::int16_t> read_number(std::string_view key);
  std::optional<std::string> read_string(std::string_view key);
  bool set_option(std::string_view key, std::int32_t value);
  bool set_string(std::string_view key, std::string_view text);
  // Stores the whole number that the user typed. A text that is not a whole number, or does not fit the type
  // (of 32 bits at most), makes the step fail, and nothing is stored.
  template <typename Integer>
  bool store_number(std::string_view key, std::string_view text) {
    using Limits = std::numeric_limits<Integer>;
    return store_number(key, text, {Limits::min(), Limits::max(), Limits::digits + 1});
  }

  // That comparison by itself, for an operation that deletes the option before it stores it: false if the
  // write has to give way. What is stored next under the key, by this page, is not asked about again.
  bool may_replace(std::string_view key, std::string_view text);

  // The question about a value that somebody else has stored meanwhile. `what` is what people call it,
  // `newer` what is stored now. It commits what was written.
  enum class Answer : std::uint8_t { overwrite, keep_theirs, cancel };
  Answer ask_about_newer(std::string_view what, std::string_view newer);

  // Lists, one element per row: the additional last element of the component's arrays has been removed.
  std::optional<StringList> rows(Literal table, Literal column, const Statement& condition = {});
  std::optional<StringList> rows(const ListTable& list, const Statement& condition = {}) {
    return rows(list.table, list.column, condition);
  }
  std::optional<StringList> ordered_rows(Literal table, Literal column, const Statement& condition,
                                         Literal order, Failure failure = Failure::unexpected);
  std::optional<std::int64_t> count_value(const Statement& select);
  // What an updatable set writes belongs into write_row(), or into a transaction of its own.
  std::unique_ptr<RecordSet> open(const Statement& select, Connection::Access access);
  // The set may outlive the connection's handle; null if the step failed. The overloads that follow are for
  // statements and conditions that are one literal.
  std::optional<StringList> rows(Literal table, Literal column, Literal condition) {
    return rows(table, column, Statement(condition));
  }
  std::optional<StringList> ordered_rows(Literal table, Literal column, Literal condition, Literal order,
                                         Failure failure = Failure::unexpected) {
    return ordered_rows(table, column, Statement(condition), order, failure);
  }
  std::optional<std::int64_t> count_value(Literal select) { return count_value(Statement(select)); }
  std::unique_ptr<RecordSet> open(Literal select, Connection::Access access) {
    return open(Statement(select), access);
  }

  // List operations of the component, each recorded as a write under its name and the entry. Entries are not
  // escaped here.
  using ListOperation = void (Database::*)(std::string_view, ConnectionHandle&);
  bool list_operation(std::string_view name, ListOperation operation, std::string_view entry);
  bool add_to_blackhost(std::string_view v) {
    return list_operation("add_to_blackhost", &Database::add_to_blackhost, v);
  }
  bool add_to_whitehost(std::string_view v) {
    return list_operation("add_to_whitehost", &Database::add_to_whitehost, v);
  }
  bool add_to_blackdomain(std::string_view v) {
    return list_operation("add_to_blackdomain", &Database::add_to_blackdomain, v);
  }
  bool add_to_whitedomain(std::string_view v) {
    return list_operation("add_to_whitedomain", &Database::add_to_whitedomain, v);
  }
  bool add_to_swords(std::string_view v) {
    return list_operation("add_to_swords", &Database::add_to_swords, v);
  }
  bool add_to_words(std::string_view v) { return list_operation("add_to_words", &Database::add_to_words, v); }
  bool remove_from_iplist(std::string_view v) {
    return list_operation("remove_from_iplist", &Database::remove_from_iplist, v);
  }

  // Whole lists and files, by paths of the file system. Nothing, or false, if the step failed; an export to
  // an existing file without `overwrite` is a failed step.
  std::optional<ListFileResult> import_file(const ListTable& list, std::string_view path);
  std::optional<ListFileResult> delete_file(const ListTable& list, std::string_view path);
  bool export_file(const ListTable& list, std::string_view path, bool overwrite);

  // May take as long as a directory server does; events run meanwhile.
  bool adad();
  bool lcase_table(const ListTable& list);
  bool prep_mdb();
  bool create_table(Literal table, Literal columns);

  // Any other call on a component, recorded as a write under this text. `call` may raise. What was written is
  // committed before.
  Outcome component_step(std::string_view text, const std::function<void()>& call);

 protected:
  ~DatabaseClient() { console_.writes().forget(this); }

  // The option that a step was to set is as it was: the step failed, or has been undone. There is a
  // connection. Pages show the stored value again.
  virtual void not_stored(std::string_view key) { (void)key; }
  // Somebody else has stored another value, which stays: pages show it.
  virtual void show_newer(std::string_view key) { (void)key; }
  // What people call the option, in their language.
  virtual std::string name_of_option(std::string_view key) { return std::string(key); }

  // See Database::change_mark(); empty also if the step failed.
  std::string change_mark(const ListTable& list);

 private:
  struct NumberType {
    std::int32_t min;
    std::int32_t max;
    int bits;
  };
  bool store_number(std::string_view key, std::string_view text, const NumberType& type);
  Database& component_or_throw() const;
  Connection& connection_or_throw() const;
  Outcome attempt_read(Kind kind, std::string_view text, const std::function<void()>& action,
                       Failure failure = Failure::unexpected);
  Outcome attempt_write(Kind kind, std::string_view text, const std::function<void()>& action,
                        std::string_view public_text = {}, Failure failure = Failure::unexpected);

  void loaded(std::string_view key, std::string_view text);
  void now_stored(std::string_view key, std::string_view text);
  bool give_way(std::string_view key, std::string_view newer);

  bool own_transaction_ = false;
  std::map<std::string, std::string, std::less<>> loaded_;  // options by their keys, as they were read last
};

}  // namespace zrl
