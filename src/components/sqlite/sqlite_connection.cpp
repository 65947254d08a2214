#include "components/sqlite/sqlite_connection.h"

#include <utility>

#include "components/sqlite/schema.h"
#include "components/sqlite/sqlite_record_set.h"

namespace zrl::sqlite {

SchemaReport report_to(ConsoleServices& console) {
  return {[&console](std::string_view table, std::uint64_t done, std::uint64_t total) {
            console.show_progress({"bring up to date: " + std::string(table), done, total});
          },
          [&console](std::string_view table, std::string_view problem) {
            console.record_failure("bring up to date: " + std::string(table), problem);
          }};
}

namespace {

std::shared_ptr<Session> open_session(const std::filesystem::path& path, const Options& options,
                                      ConsoleServices& console, bool create) {
  Engine::Options engine_options;
  engine_options.busy_timeout = options.busy_timeout;
  engine_options.create = create;
  auto session = std::make_shared<Session>(path, engine_options);
  ensure_schema(session->engine, SchemaCheck::quick, report_to(console));
  return session;
}

}  // namespace

SqliteConnection::SqliteConnection(std::filesystem::path path, const Options& options,
                                   ConsoleServices& console)
    : path_(std::move(path)),
      options_(options),
      console_(console),
      session_(open_session(path_, options_, console_, true)) {}

void SqliteConnection::execute(const Statement& statement) {
  session(Engine::Use::write).statements.prepare(statement)->run();
}

std::unique_ptr<RecordSet> SqliteConnection::open(const Statement& select, Access access) {
  session(access == Access::updatable ? Engine::Use::write : Engine::Use::read);
  return std::make_unique<SqliteRecordSet>(session_, select, access);
}

void SqliteConnection::begin_transaction() {
  follow_the_file();
  session_->engine.request_transaction();
}

void SqliteConnection::commit() {
  session_->engine.commit();
}

void SqliteConnection::roll_back() {
  session_->engine.roll_back();
}

void SqliteConnection::settle() {
  session_->engine.settle();
}

Session& SqliteConnection::session(Engine::Use use) {
  follow_the_file();
  session_->engine.enter(use);
  return *session_;
}

void SqliteConnection::follow_the_file() {
  if (session_->engine.has_transaction() || !session_->engine.moved()) return;
  session_ = open_session(path_, options_, console_, false);
}

}  // namespace zrl::sqlite
