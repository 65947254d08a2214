#include "components/sqlite/sqlite_engine.h"

#include <thread>
#include <utility>

#include "core/contracts/database.h"
#include "core/text/error.h"

namespace zrl::sqlite {

namespace {

namespace fs = std::filesystem;

constexpr int checkpoint_pages = 2000;

// The file may come from anywhere, so limits apply to what its schema and its rows can cause.
constexpr std::pair<int, int> limits[] = {
    {SQLITE_LIMIT_LENGTH, 256 << 20},
    {SQLITE_LIMIT_SQL_LENGTH, 1 << 20},
    {SQLITE_LIMIT_COLUMN, 500},
    {SQLITE_LIMIT_EXPR_DEPTH, 200},
    {SQLITE_LIMIT_COMPOUND_SELECT, 50},
    {SQLITE_LIMIT_VDBE_OP, 250000},
    {SQLITE_LIMIT_FUNCTION_ARG, 32},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1000},
    {SQLITE_LIMIT_TRIGGER_DEPTH, 20},
};

constexpr std::pair<int, int> switches[] = {
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_DQS_DML, 0},
    {SQLITE_DBCONFIG_DQS_DDL, 0},
    {SQLITE_DBCONFIG_ENABLE_FKEY, 0},
    {SQLITE_DBCONFIG_WRITABLE_SCHEMA, 0},
    {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
};

// Of the primary result codes, those that a statement cannot be blamed for.
bool is_engine_failure(int code) {
  switch (code) {
    case SQLITE_ABORT:
    case SQLITE_BUSY:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_IOERR:
    case SQLITE_CORRUPT:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PROTOCOL:
    case SQLITE_NOTADB:
      return true;
    default:
      return false;
  }
}

// Says plainly what the engine would only call "unable to open database file".
void check_place(const fs::path& path, bool create) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  if (fs::is_directory(status)) {
    throw EngineFailure(SQLITE_CANTOPEN, path.string() + ": the database is a folder, not a file");
  }
  if (fs::exists(status)) {
    if (!fs::is_regular_file(status))
      throw EngineFailure(SQLITE_CANTOPEN, path.string() + ": not a regular file");
    return;
  }
  if (!fs::is_directory(path.parent_path(), ignored)) {
    throw EngineFailure(SQLITE_CANTOPEN, path.string() + ": the folder of the database does not exist");
  }
  if (!create) throw EngineFailure(SQLITE_CANTOPEN, path.string() + ": the database file does not exist");
}

}  // namespace

Engine::Engine() {
  const int code =
      sqlite3_open_v2(":memory:", &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code == SQLITE_OK) return;
  sqlite3_close(handle_);
  throw EngineFailure(code & 0xff, sqlite3_errstr(code));
}

Engine::Engine(const fs::path& path, const Options& options) : path_(path) {
  check_place(path, options.create);
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | (options.create ? SQLITE_OPEN_CREATE : 0);
  const int code = sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr);
  try {
    if (code != SQLITE_OK) fail_to_open(code);
    configure(options);
  } catch (...) {
    sqlite3_close(handle_);
    throw;
  }
}

Engine::~Engine() {
  sqlite3_close_v2(handle_);
}

void Engine::configure(const Options& options) {
  sqlite3_extended_result_codes(handle_, 1);
  sqlite3_busy_timeout(handle_, static_cast<int>(options.busy_timeout.count()));
  for (const auto& [limit, value] : limits) sqlite3_limit(handle_, limit, value);
  for (const auto& [option, value] : switches) {
    sqlite3_db_config(handle_, option, value, static_cast<int*>(nullptr));
  }
  try {
    run("PRAGMA mmap_size=1073741824; PRAGMA journal_size_limit=67108864");
    if (!read_only()) use_write_ahead_log(options);
    Query encoding(*this, "PRAGMA encoding");
    stores_utf8_ = encoding.step() && encoding.text(0) == "UTF-8";
  } catch (const Error& error) {
    throw EngineFailure(error.number(), path_.string() + ": " + error.what());
  }
}

// Changing to the write-ahead mode is the only operation that does not wait for other processes by itself.
void Engine::use_write_ahead_log(const Options& options) {
  const auto until = std::chrono::steady_clock::now() + options.busy_timeout;
  bool write_ahead = false;
  while (true) {
    try {
      Query mode(*this, "PRAGMA journal_mode=WAL");
      write_ahead = mode.step() && mode.text(0) == "wal";
      break;
    } catch (const Error& error) {
      if (error.number() != SQLITE_BUSY || std::chrono::steady_clock::now() >= until) throw;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
  // Without the log every commit must be durable by itself, since settle() has nothing to sync.
  const bool normal = write_ahead && options.synchronous == Synchronous::normal;
  run(normal ? "PRAGMA synchronous=NORMAL" : "PRAGMA synchronous=FULL");
  sqlite3_wal_hook(handle_, committed, this);
}

bool Engine::read_only() const {
  return sqlite3_db_readonly(handle_, "main") == 1;
}

bool Engine::moved() const {
  int result = 0;
  sqlite3_file_control(handle_, "main", SQLITE_FCNTL_HAS_MOVED, &result);
  return result != 0;
}

std::int64_t Engine::total_changes() const {
  return sqlite3_total_changes64(handle_);
}

void Engine::run(const char* sql) {
  if (sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

std::int64_t Engine::number(const char* select) {
  Query query(*this, select);
  return query.step() ? query.number(0) : 0;
}

void Engine::request_transaction() {
  if (transaction_ != Transaction::none) throw Error(SQLITE_ERROR, "a transaction is open already");
  transaction_ = Transaction::requested;
}

void Engine::commit() {
  const Transaction was = std::exchange(transaction_, Transaction::none);
  if (was == Transaction::none) throw Error(SQLITE_ERROR, "no transaction is open");
  if (was == Transaction::failed) throw EngineFailure(failure_, problem_);
  if (was == Transaction::requested) return;
  try {
    // What goes into a file without a name is lost.
    if (moved()) fail(SQLITE_IOERR, path_.string() + ": the database file was replaced or deleted meanwhile");
    run("COMMIT");
  } catch (const Error&) {
    if (in_transaction()) sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

void Engine::roll_back() {
  const Transaction was = std::exchange(transaction_, Transaction::none);
  if (was == Transaction::none) throw Error(SQLITE_ERROR, "no transaction is open");
  if (in_transaction()) run("ROLLBACK");
}

void Engine::enter(Use use) {
  if (transaction_ == Transaction::requested) {
    run(use == Use::write ? "BEGIN IMMEDIATE" : "BEGIN");
    transaction_ = Transaction::begun;
  } else if (transaction_ == Transaction::failed && use == Use::write) {
    throw EngineFailure(failure_, "not run: " + problem_);
  }
}

void Engine::settle() {
  if (!std::exchange(unsettled_, false)) return;
  sqlite3_file* log = nullptr;
  sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (log == nullptr || log->pMethods == nullptr) return;
  if (log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) != SQLITE_OK) {
    unsettled_ = true;
    throw EngineFailure(SQLITE_IOERR, path_.string() + ": the database could not be written to the disk");
  }
}

int Engine::committed(void* self, sqlite3* handle, const char* name, int pages) {
  static_cast<Engine*>(self)->unsettled_ = true;
  if (pages >= checkpoint_pages)
    sqlite3_wal_checkpoint_v2(handle, name, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
  return SQLITE_OK;
}

void Engine::fail(int code, const std::string& message) {
  code &= 0xff;
  const bool open = transaction_ == Transaction::requested || transaction_ == Transaction::begun;
  if (!is_engine_failure(code) && (transaction_ != Transaction::begun || in_transaction())) {
    throw Error(code, message);
  }
  if (open) {
    if (in_transaction()) sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
    transaction_ = Transaction::failed;
    failure_ = code;
    problem_ = message;
  }
  throw EngineFailure(code, message);
}

void Engine::fail_to_open(int code) const {
  const char* message = handle_ == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(handle_);
  throw EngineFailure(code & 0xff, path_.string() + ": " + message);
}

Query::Query(Engine& engine, std::string_view sql, Life life) : engine_(&engine) {
  const unsigned flags = life == Life::kept ? SQLITE_PREPARE_PERSISTENT : 0;
  const char* tail = nullptr;
  check(
      sqlite3_prepare_v3(engine.handle(), sql.data(), static_cast<int>(sql.size()), flags, &handle_, &tail));
  const std::string_view rest = sql.substr(static_cast<std::size_t>(tail - sql.data()));
  if (handle_ == nullptr || rest.find_first_not_of(" \t\r\n;") != rest.npos) {
    sqlite3_finalize(handle_);
    throw Error(SQLITE_ERROR, handle_ == nullptr ? "the statement is empty" : "more than one statement");
  }
}

Query::Query(Query&& other) noexcept
    : engine_(other.engine_), handle_(std::exchange(other.handle_, nullptr)) {}

Query& Query::operator=(Query&& other) noexcept {
  std::swap(engine_, other.engine_);
  std::swap(handle_, other.handle_);
  return *this;
}

Query::~Query() {
  sqlite3_finalize(handle_);
}

// An empty view may have a null pointer, which would bind a null.
Query& Query::bind(int parameter, std::string_view text) {
  check(sqlite3_bind_text64(handle_, parameter, text.empty() ? "" : text.data(), text.size(), SQLITE_STATIC,
                            SQLITE_UTF8));
  return *this;
}

Query& Query::bind(int parameter, std::int64_t number) {
  check(sqlite3_bind_int64(handle_, parameter, number));
  return *this;
}

Query& Query::bind_bytes(int parameter, std::string_view bytes) {
  check(sqlite3_bind_blob64(handle_, parameter, bytes.empty() ? "" : bytes.data(), bytes.size(),
                            SQLITE_STATIC));
  return *this;
}

bool Query::step() {
  const int code = sqlite3_step(handle_);
  if (code == SQLITE_ROW) return true;
  if (code == SQLITE_DONE) return false;
  const std::string message = sqlite3_errmsg(engine_->handle());
  sqlite3_reset(handle_);
  engine_->fail(code, message);
}

std::int64_t Query::run() {
  while (step()) {
  }
  sqlite3_reset(handle_);
  return sqlite3_changes64(engine_->handle());
}

// The blob function avoids the copy that a terminating zero byte would need.
std::string_view Query::text(int column) const {
  const bool as_it_is = engine_->stores_utf8() || sqlite3_column_type(handle_, column) == SQLITE_BLOB;
  const void* bytes = as_it_is ? sqlite3_column_blob(handle_, column) : sqlite3_column_text(handle_, column);
  const int length = sqlite3_column_bytes(handle_, column);
  if (bytes == nullptr || length == 0) return {};
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

void Query::check(int code) const {
  if (code != SQLITE_OK) engine_->fail();
}

Atomic::Atomic(Engine& engine) : engine_(engine) {
  engine.enter(Engine::Use::write);
  nested_ = engine.in_transaction();
  engine.run(nested_ ? "SAVEPOINT zrl_atomic" : "BEGIN IMMEDIATE");
}

Atomic::~Atomic() {
  if (done_ || !engine_.in_transaction()) return;
  const char* sql = nested_ ? "ROLLBACK TO zrl_atomic; RELEASE zrl_atomic" : "ROLLBACK";
  sqlite3_exec(engine_.handle(), sql, nullptr, nullptr, nullptr);
}

void Atomic::commit() {
  engine_.run(nested_ ? "RELEASE zrl_atomic" : "COMMIT");
  done_ = true;
}

Snapshot::Snapshot(Engine& engine) : engine_(engine), own_(!engine.in_transaction()) {
  if (own_) engine.run("BEGIN");
}

Snapshot::~Snapshot() {
  if (own_) sqlite3_exec(engine_.handle(), "COMMIT", nullptr, nullptr, nullptr);
}

std::string quoted_name(std::string_view name) {
  if (name.starts_with('[')) return std::string(name);
  std::string result = "\"";
  for (const char c : name) {
    if (c == '"') result += '"';
    result += c;
  }
  return result += '"';
}

}  // namespace zrl::sqlite
