#include <utility>

#include "components/sqlite/sqlite.h"
#include "components/sqlite/sqlite_engine.h"
#include "core/text/error.h"

namespace zrl::sqlite {

namespace {

constexpr std::string_view string_kind = "REG_SZ";
constexpr std::string_view dword_kind = "REG_DWORD";

// `value` has no type of its own: a REG_SZ is kept as text, a REG_DWORD as a number. The triggers note when a
// value has become another one, whichever program wrote it. They delete first, because a REPLACE in a trigger
// follows the conflict clause of the statement that fires it.
constexpr const char* registry_tables =
    "CREATE TABLE IF NOT EXISTS registry (path TEXT PRIMARY KEY COLLATE NOCASE, kind TEXT, value);"
    "CREATE TABLE IF NOT EXISTS registry_times (path TEXT PRIMARY KEY COLLATE NOCASE, changed INTEGER);"
    "CREATE TRIGGER IF NOT EXISTS registry_added AFTER INSERT ON registry BEGIN"
    "  DELETE FROM registry_times WHERE path=NEW.path;"
    "  INSERT INTO registry_times (path, changed) VALUES (NEW.path, strftime('%s', 'now'));"
    " END;"
    "CREATE TRIGGER IF NOT EXISTS registry_changed AFTER UPDATE OF value ON registry"
    " WHEN OLD.value IS NOT NEW.value BEGIN"
    "  DELETE FROM registry_times WHERE path=NEW.path;"
    "  INSERT INTO registry_times (path, changed) VALUES (NEW.path, strftime('%s', 'now'));"
    " END";

class SqliteRegistry : public Registry {
 public:
  SqliteRegistry(const std::filesystem::path& folder, Options options)
      : path_(std::filesystem::absolute(folder) / "registry.db"), options_(options) {}

  std::optional<std::string> regread(std::string_view path) override {
    if (!open_for_reading()) return std::nullopt;
    Query query(*engine_, "SELECT value FROM registry WHERE path=?1");
    query.bind(1, path);
    if (!query.step()) return std::nullopt;
    return std::string(query.text(0));
  }

  std::optional<std::int64_t> changed_at(std::string_view path) override {
    constexpr const char* has_times = "SELECT count(*) FROM sqlite_schema WHERE name='registry_times'";
    if (!open_for_reading() || engine_->number(has_times) == 0) return std::nullopt;
    Query query(*engine_, "SELECT changed FROM registry_times WHERE path=?1");
    query.bind(1, path);
    if (!query.step()) return std::nullopt;
    return query.number(0);
  }

  void write_string(std::string_view path, std::string_view text) override {
    Query query = upsert();
    query.bind(1, path).bind(2, string_kind).bind(3, text).run();
  }

  void write_dword(std::string_view path, std::uint32_t number) override {
    Query query = upsert();
    query.bind(1, path).bind(2, dword_kind).bind(3, std::int64_t{number}).run();
  }

  void delete_value(std::string_view path) override {
    if (!open_for_reading()) return;
    Query query(*engine_, "DELETE FROM registry WHERE path=?1");
    query.bind(1, path).run();
  }

 private:
  // Other processes may have deleted the file, or put another one in its place.
  void forget_moved_file() {
    if (engine_ && engine_->moved()) engine_.reset();
  }

  // False if nothing was written yet; then there is no file, and none is made.
  bool open_for_reading() {
    forget_moved_file();
    if (!engine_ && !std::filesystem::exists(path_)) return false;
    open();
    return has_table_ ||
           (has_table_ = engine_->number("SELECT count(*) FROM sqlite_schema WHERE name='registry'") > 0);
  }

  Query upsert() {
    forget_moved_file();
    open();
    if (!is_complete_) engine_->run(registry_tables);
    has_table_ = is_complete_ = true;
    return {*engine_,
            "INSERT INTO registry (path, kind, value) VALUES (?1, ?2, ?3)"
            " ON CONFLICT (path) DO UPDATE SET kind=excluded.kind, value=excluded.value"};
  }

  void open() {
    if (engine_) return;
    has_table_ = is_complete_ = false;
    Engine::Options options;
    options.busy_timeout = options_.busy_timeout;
    options.synchronous = Engine::Synchronous::full;
    engine_.emplace(path_, options);
  }

  std::filesystem::path path_;
  Options options_;
  std::optional<Engine> engine_;
  bool has_table_ = false;
  bool is_complete_ = false;  // its times are noted
};

}  // namespace

std::shared_ptr<Registry> make_registry(ConsoleServices& console, Options options) {
  return std::make_shared<SqliteRegistry>(console.folder(), options);
}

}  // namespace zrl::sqlite
