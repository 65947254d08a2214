#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "components/sqlite/list_transfer.h"
#include "components/sqlite/sqlite_connection.h"
#include "core/contracts/database.h"

namespace zrl::sqlite {

class SqliteDatabase : public Database {
 public:
  SqliteDatabase(ConsoleServices& console, Options options);

  ConnectionHandle open_database(std::string_view provider) override;

  OptionValue read_option(std::string_view key, ConnectionHandle& conn) override;
  OptionValue get_option(std::string_view key, ConnectionHandle& conn) override;
  void set_option(std::string_view key, std::int32_t value, ConnectionHandle& conn) override;
  std::string read_string(std::string_view key, ConnectionHandle& conn) override;
  void set_string(std::string_view key, std::string_view text, ConnectionHandle& conn) override;

  std::string read_to_change(std::string_view key, ConnectionHandle& conn) override;
  std::string change_mark(const ListTable& list, ConnectionHandle& conn) override;
  StringList get_db_array(ConnectionHandle& conn, Literal table, Literal column,
                          const Statement& condition) override;
  StringList get_db_array_ordered(ConnectionHandle& conn, Literal table, Literal column,
                                  const Statement& condition, Literal order) override;
  std::int64_t count_value(const Statement& select, ConnectionHandle& conn) override;

  void add_to_blackhost(std::string_view address, ConnectionHandle& conn) override;
  void add_to_whitehost(std::string_view address, ConnectionHandle& conn) override;
  void add_to_blackdomain(std::string_view domain, ConnectionHandle& conn) override;
  void add_to_whitedomain(std::string_view domain, ConnectionHandle& conn) override;
  void add_to_swords(std::string_view word, ConnectionHandle& conn) override;
  void add_to_words(std::string_view word, ConnectionHandle& conn) override;
  void remove_from_iplist(std::string_view address, ConnectionHandle& conn) override;

  void CreateTable(ConnectionHandle& conn, Literal table, Literal columns) override;
  void prep_mdb(ConnectionHandle& conn) override;
  void addbytes(std::int64_t number, ConnectionHandle& conn) override;
  void addconnections(std::int64_t number, ConnectionHandle& conn) override;
  void adddropps(std::int64_t number, ConnectionHandle& conn) override;

  ListFileResult import_(const ListTable& list, std::string_view path) override;
  ListFileResult delete_(const ListTable& list, std::string_view path) override;
  bool export_(Literal column, Literal table, const Statement& condition, std::string_view path,
               bool overwrite) override;
  void lcase_table(Literal table, Literal column) override;
  StringList read_disclaimer(std::string_view rule) override;
  void adad() override;

 private:
  std::filesystem::path path_of(std::string_view provider) const;
  // Runs the action on the component's own connection, and makes what it wrote durable.
  void with_own(const std::function<void(Session&)>& action);

  ConsoleServices& console_;
  std::filesystem::path folder_;
  Options options_;
  std::unique_ptr<SqliteConnection> own_;
  std::string own_provider_;
  bool own_is_busy_ = false;
};

}  // namespace zrl::sqlite
