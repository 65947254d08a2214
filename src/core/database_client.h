#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/console.h"
#include "core/contracts/database.h"

namespace zrl {

// Whoever works on the database: it holds the component and the connection, and offers every
// operation as a step. Steps never throw and tell by their result whether they worked; each write
// and each failure is recorded.
class DatabaseClient {
 public:
  // Empty until connect_database() and after drop_database(). Hosts may read them.
  std::shared_ptr<Database> database;
  ConnectionHandle conn;

  explicit DatabaseClient(Console& console) : console_(console) {}
  DatabaseClient(const DatabaseClient&) = delete;
  DatabaseClient& operator=(const DatabaseClient&) = delete;

  // Creates the component and opens the connection; on failure shows the message box with this
  // title, and the caller goes on.
  bool connect_database(std::string_view box_title = "No Database Connection Possible");
  // Empties both handles, in the order of their declaration.
  void drop_database();

  // Statements.
  bool execute(const Statement& statement);
  bool execute(Literal statement) { return execute(Statement(statement)); }

  // Options. A missing option reads as empty; nothing is returned if the read failed.
  std::optional<OptionValue> read_option(std::string_view key);
  std::optional<OptionValue> get_option(std::string_view key);
  // As a 16-bit integer, a missing option being 0.
  std::optional<std::int16_t> read_number(std::string_view key);
  std::optional<std::string> read_string(std::string_view key);
  bool set_option(std::string_view key, std::int32_t value);
  bool set_string(std::string_view key, std::string_view text);

  // Lists. The last element, which the component's arrays carry beyond the rows, is already gone.
  std::optional<StringList> rows(Literal table, Literal column, const Statement& condition = {});
  std::optional<StringList> ordered_rows(Literal table, Literal column, const Statement& condition,
                                         Literal order);
  std::optional<std::int64_t> count_value(const Statement& select);
  std::unique_ptr<RecordSet> open(const Statement& select, Connection::Access access);
  // The same for statements and conditions that are one literal.
  std::optional<StringList> rows(Literal table, Literal column, Literal condition) {
    return rows(table, column, Statement(condition));
  }
  std::optional<StringList> ordered_rows(Literal table, Literal column, Literal condition, Literal order) {
    return ordered_rows(table, column, Statement(condition), order);
  }
  std::optional<std::int64_t> count_value(Literal select) { return count_value(Statement(select)); }
  std::unique_ptr<RecordSet> open(Literal select, Connection::Access access) {
    return open(Statement(select), access);
  }

  // List operations of the component.
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

  // Whole lists and files. True if the component worked and answered true.
  bool import_file(Literal column, Literal table, std::string_view path);
  bool delete_file(Literal column, Literal table, std::string_view path);
  bool export_file(Literal column, Literal table, std::string_view path, bool overwrite);

  bool adad();
  bool lcase_table(Literal table, Literal column);
  bool prep_mdb();
  bool create_table(Literal table, Literal columns);

  // A call on another component, recorded as a write under this text.
  bool component_step(std::string_view text, const std::function<void()>& call);
  // A new component, or null.
  template <typename Interface>
  std::shared_ptr<Interface> component(std::string_view program_id = Interface::program_id);

  // Sets "HKLM\SOFTWARE\<product key>\<flag>" to 1, which tells the proxy to read its lists again.
  bool raise_flag(std::string_view flag);

  // The message box with the critical icon.
  void show_error(std::string_view text, std::string_view title);

 protected:
  ~DatabaseClient() = default;

 private:
  Database& component_or_throw() const;
  bool answered_step(std::string_view text, const std::function<bool()>& call);
  bool attempt_read(ActivityRecord::Kind kind, std::string_view text, const std::function<void()>& action);
  bool attempt_write(ActivityRecord::Kind kind, std::string_view text, const std::function<void()>& action,
                     std::string_view public_text = {});

  Console& console_;
};

template <typename Interface>
std::shared_ptr<Interface> DatabaseClient::component(std::string_view program_id) {
  std::shared_ptr<Interface> made;
  attempt_read(ActivityRecord::Kind::component, "create " + std::string(program_id),
               [&] { made = console_.components().create<Interface>(program_id); });
  return made;
}

}  // namespace zrl
