#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

// A thin layer over the database engine: one open file, and prepared statements on it. Every failure is a
// zrl::Error with the engine's result code and message, a zrl::EngineFailure where not the statement is at
// fault. An object and its statements belong to one thread.
namespace zrl::sqlite {

class Query;

class Engine {
 public:
  enum class Synchronous { normal, full };

  struct Options {
    std::chrono::milliseconds busy_timeout{5000};
    bool create = true;
    Synchronous synchronous = Synchronous::normal;
  };

  // An empty database in memory.
  Engine();
  // Opens the file, in write-ahead mode if it can be written. The message of a failure names the
  // path.
  Engine(const std::filesystem::path& path, const Options& options);
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  ~Engine();

  const std::filesystem::path& path() const { return path_; }
  sqlite3* handle() const { return handle_; }
  bool read_only() const;
  // Whether the file stores texts in UTF-8, so that they can be read without a conversion.
  bool stores_utf8() const { return stores_utf8_; }
  // Whether the file under this path is no longer the one that is open.
  bool moved() const;
  std::int64_t total_changes() const;

  // Runs the statements of a text, ignoring what they return.
  void run(const char* sql);
  std::int64_t number(const char* select);

  // A transaction of the caller. It begins when the first statement in it is about to run, so that a
  // transaction which only reads does not lock out writers. An EngineFailure rolls it back, also one of its
  // beginning; writes then raise that failure again until commit(), which raises it too, or roll_back().
  void request_transaction();
  void commit();
  void roll_back();
  bool has_transaction() const { return transaction_ != Transaction::none; }

  enum class Use { read, write };
  // To be called before statements run on behalf of the caller.
  void enter(Use use);
  bool in_transaction() const { return sqlite3_get_autocommit(handle_) == 0; }

  // Makes all commits so far survive a power cut. Free of cost if there were none since the last call.
  void settle();

  // Raises the engine's last error.
  [[noreturn]] void fail() { fail(sqlite3_errcode(handle_), sqlite3_errmsg(handle_)); }
  [[noreturn]] void fail(int code, const std::string& message);

 private:
  enum class Transaction : std::uint8_t { none, requested, begun, failed };

  void configure(const Options& options);
  void use_write_ahead_log(const Options& options);
  [[noreturn]] void fail_to_open(int code) const;
  static int committed(void* self, sqlite3* handle, const char* name, int pages);

  std::filesystem::path path_;
  sqlite3* handle_ = nullptr;
  bool stores_utf8_ = true;
  bool unsettled_ = false;
  Transaction transaction_ = Transaction::none;
  int failure_ = 0;  // of the transaction
  std::string problem_;
};

// A prepared statement. Texts that are bound must live until reset().
class Query {
 public:
  enum class Life { once, kept };

  Query() = default;
  // The text must be one statement; more is an error.
  Query(Engine& engine, std::string_view sql, Life life = Life::once);
  Query(Query&& other) noexcept;
  Query& operator=(Query&& other) noexcept;
  ~Query();

  // Parameters count from 1, columns from 0.
  Query& bind(int parameter, std::string_view text);
  Query& bind(int parameter, std::int64_t number);
  Query& bind_bytes(int parameter, std::string_view bytes);

  // True if there is a row.
  bool step();
  void reset() { sqlite3_reset(handle_); }
  // Steps to the end and resets; the number of rows that were changed.
  std::int64_t run();

  int columns() const { return sqlite3_column_count(handle_); }
  std::string_view name(int column) const { return sqlite3_column_name(handle_, column); }
  bool is_null(int column) const { return sqlite3_column_type(handle_, column) == SQLITE_NULL; }
  std::int64_t number(int column) const { return sqlite3_column_int64(handle_, column); }
  // A text or a blob as its bytes, a number as text, a null as the empty text. Valid until the
  // next step or reset.
  std::string_view text(int column) const;

 private:
  void check(int code) const;

  Engine* engine_ = nullptr;
  sqlite3_stmt* handle_ = nullptr;
};

// All or nothing: what is written during its life is undone unless commit() is called. Nests in a transaction
// that is already open.
class Atomic {
 public:
  explicit Atomic(Engine& engine);
  Atomic(const Atomic&) = delete;
  Atomic& operator=(const Atomic&) = delete;
  ~Atomic();

  void commit();

 private:
  Engine& engine_;
  bool nested_;
  bool done_ = false;
};

// Makes several reads see the same state of the database, unless an open transaction does so already.
class Snapshot {
 public:
  explicit Snapshot(Engine& engine);
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;
  ~Snapshot();

 private:
  Engine& engine_;
  bool own_;
};

// A table or column name as statement text: quoted, unless it is written in brackets already.
std::string quoted_name(std::string_view name);

}  // namespace zrl::sqlite
