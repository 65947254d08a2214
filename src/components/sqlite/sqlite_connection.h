#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "components/sqlite/schema.h"
#include "components/sqlite/sqlite.h"
#include "components/sqlite/sqlite_engine.h"
#include "components/sqlite/statement_cache.h"
#include "core/contracts/database.h"

namespace zrl::sqlite {

// An open file with its compiled statements. Record sets share it with their connection.
struct Session {
  Session(const std::filesystem::path& path, const Engine::Options& options)
      : engine(path, options), statements(engine) {}

  Engine engine;
  StatementCache statements;

  // The marks of lists (Database::change_mark()) by their tables, of this state of the database.
  std::map<std::string, std::string> marks;
  std::int64_t marks_version = -1;
  std::int64_t marks_changes = -1;
};

// What is reported while a database is opened or prepared, for the console.
SchemaReport report_to(ConsoleServices& console);

// A connection to one file. If the file has been replaced by another one, the next operation opens the new
// one; if it has been deleted, operations fail instead of writing to a file that nobody will read.
class SqliteConnection : public Connection {
 public:
  // Opens the file and completes its schema. Progress and failures of that go to the console.
  SqliteConnection(std::filesystem::path path, const Options& options, ConsoleServices& console);

  void execute(const Statement& statement) override;
  std::unique_ptr<RecordSet> open(const Statement& select, Access access) override;
  void begin_transaction() override;
  void commit() override;
  void roll_back() override;
  void settle() override;

  // The session, ready to run statements of this use.
  Session& session(Engine::Use use);
  const std::filesystem::path& path() const { return path_; }

 private:
  void follow_the_file();

  std::filesystem::path path_;
  Options options_;
  ConsoleServices& console_;
  std::shared_ptr<Session> session_;
};

}  // namespace zrl::sqlite
