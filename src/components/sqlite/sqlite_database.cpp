#include "components/sqlite/sqlite_database.h"

#include <utility>

#include "components/sqlite/schema.h"
#include "core/contracts/directory.h"
#include "core/text/error.h"
#include "core/text/paths.h"
#include "core/text/secrets.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

Session& session_of(const ConnectionHandle& conn, Engine::Use use) {
  if (!conn) throw Error(error_number::object_not_set, "no connection to the database");
  auto* connection = dynamic_cast<SqliteConnection*>(conn.get());
  if (connection == nullptr) {
    throw Error(error_number::type_mismatch, "the connection belongs to another database component");
  }
  return connection->session(use);
}

std::string read_value(std::string_view key, const ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::read);
  const Loan query = session.statements.prepare("SELECT value FROM konf WHERE ID=?1");
  query->bind(1, key);
  return query->step() ? std::string(query->text(0)) : std::string();
}

void write_value(std::string_view key, std::string_view text, const ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  Atomic atomic(session.engine);
  const Loan change = session.statements.prepare("UPDATE konf SET value=?2 WHERE ID=?1");
  if (change->bind(1, key).bind(2, text).run() == 0) {
    const Loan addition = session.statements.prepare("INSERT INTO konf (ID, value) VALUES (?1, ?2)");
    addition->bind(1, key).bind(2, text).run();
  }
  atomic.commit();
}

void add_to_counter(std::string_view key, std::int64_t number, const ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  Atomic atomic(session.engine);
  const Loan change =
      session.statements.prepare("UPDATE konf SET value=CAST(value AS INTEGER)+?2 WHERE ID=?1");
  if (change->bind(1, key).bind(2, number).run() == 0) {
    const Loan addition = session.statements.prepare("INSERT INTO konf (ID, value) VALUES (?1, ?2)");
    addition->bind(1, key).bind(2, number).run();
  }
  atomic.commit();
}

// The rows of one column, straight into the list.
StringList collect(Loan rows) {
  StringList result;
  while (rows->step()) result.push_back(rows->text(0));
  return result;
}

std::string selection(Literal table, Literal column, const Statement& condition) {
  std::string select = "SELECT " + quoted_name(column.text()) + " FROM " + quoted_name(table.text());
  if (!condition.empty()) select += " WHERE " + condition.skeleton();
  return select;
}

void remove(Session& session, Literal table, Literal column, std::string_view entry) {
  const std::string name = quoted_name(column.text());
  const Loan deletion =
      session.statements.prepare("DELETE FROM " + quoted_name(table.text()) + " WHERE " + name + "=?1");
  deletion->bind(1, entry).run();
}

// An entry that exists keeps its first row; further rows with it are deleted.
void add_once(Session& session, Literal table, Literal column, std::string_view entry) {
  const std::string list = quoted_name(table.text());
  const std::string name = quoted_name(column.text());
  const std::string first = "(SELECT min(rowid) FROM " + list + " WHERE " + name + "=?1)";
  const Loan purge =
      session.statements.prepare("DELETE FROM " + list + " WHERE " + name + "=?1 AND rowid>" + first);
  purge->bind(1, entry).run();
  const Loan addition =
      session.statements.prepare("INSERT INTO " + list + " (" + name + ") SELECT ?1 WHERE NOT EXISTS" +
                                 " (SELECT 1 FROM " + list + " WHERE " + name + "=?1)");
  addition->bind(1, entry).run();
}

// An empty entry would match everything, or nothing.
void require_entry(std::string_view entry) {
  if (trim(entry).empty()) {
    throw Error(error_number::invalid_property_value, "nothing is stored: the entry is empty");
  }
}

void move_entry(Literal from, Literal to, Literal column, std::string_view entry,
                const ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  require_entry(entry);
  Atomic atomic(session.engine);
  remove(session, from, column, entry);
  add_once(session, to, column, entry);
  atomic.commit();
}

void add_word(Literal table, std::string_view word, const ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  require_entry(word);
  Atomic atomic(session.engine);
  add_once(session, table, "entry", word);
  atomic.commit();
}

// Keys compare as entries do. A text key comes from a page's column definitions, which have no collation.
std::string keys_ignoring_case(std::string_view columns) {
  constexpr std::string_view key = "primary key";
  std::string result(columns);
  const std::size_t found = lower(columns).find(key);
  if (found == std::string::npos || lower(columns).find("collate") != std::string::npos) return result;
  const std::size_t end = found + key.size();
  if (trim(columns.substr(end)).starts_with('(')) return result;
  return result.insert(end, " COLLATE NOCASE");
}

}  // namespace

SqliteDatabase::SqliteDatabase(ConsoleServices& console, Options options)
    : console_(console), folder_(std::filesystem::absolute(console.folder())), options_(options) {}

std::shared_ptr<Database> make(ConsoleServices& console, Options options) {
  return std::make_shared<SqliteDatabase>(console, options);
}

ConnectionHandle SqliteDatabase::open_database(std::string_view provider) {
  return std::make_shared<SqliteConnection>(path_of(provider), options_, console_);
}

OptionValue SqliteDatabase::read_option(std::string_view key, ConnectionHandle& conn) {
  return {read_value(key, conn)};
}

OptionValue SqliteDatabase::get_option(std::string_view key, ConnectionHandle& conn) {
  return {read_value(key, conn)};
}

void SqliteDatabase::set_option(std::string_view key, std::int32_t value, ConnectionHandle& conn) {
  write_value(key, std::to_string(value), conn);
}

std::string SqliteDatabase::read_string(std::string_view key, ConnectionHandle& conn) {
  return read_value(key, conn);
}

std::string SqliteDatabase::read_to_change(std::string_view key, ConnectionHandle& conn) {
  session_of(conn, Engine::Use::write);
  return read_value(key, conn);
}

void SqliteDatabase::set_string(std::string_view key, std::string_view text, ConnectionHandle& conn) {
  write_value(key, text, conn);
}

// The number of rows, the newest key and the newest row: rows get ascending keys, so whatever is added or
// removed changes one of the three.
std::string SqliteDatabase::change_mark(const ListTable& list, ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::read);
  const std::int64_t version = session.engine.number("PRAGMA data_version");
  const std::int64_t changes = session.engine.total_changes();
  if (version != session.marks_version || changes != session.marks_changes) session.marks.clear();
  session.marks_version = version;
  session.marks_changes = changes;
  const std::string table = quoted_name(list.table.text());
  std::string& mark = session.marks[table];
  if (!mark.empty()) return mark;
  const Loan count = session.statements.prepare("SELECT count(*) FROM " + table);
  const std::int64_t rows = count->step() ? count->number(0) : 0;
  const Loan newest = session.statements.prepare("SELECT rowid, " + quoted_name(list.column.text()) +
                                                 " FROM " + table + " ORDER BY rowid DESC LIMIT 1");
  mark = std::to_string(rows);
  if (newest->step())
    mark.append(" ").append(std::to_string(newest->number(0))).append(" ").append(newest->text(1));
  return mark;
}

StringList SqliteDatabase::get_db_array(ConnectionHandle& conn, Literal table, Literal column,
                                        const Statement& condition) {
  Session& session = session_of(conn, Engine::Use::read);
  const std::string select = selection(table, column, condition) + " ORDER BY rowid";
  StringList result = collect(session.statements.prepare(select, condition));
  result.push_back({});
  return result;
}

StringList SqliteDatabase::get_db_array_ordered(ConnectionHandle& conn, Literal table, Literal column,
                                                const Statement& condition, Literal order) {
  Session& session = session_of(conn, Engine::Use::read);
  const std::string by = quoted_name(order.text());
  std::string select = selection(table, column, condition);
  if (equals_ignoring_case(column.text(), "reason")) {
    select += " GROUP BY " + quoted_name(column.text()) + " ORDER BY max(" + by + "), max(rowid)";
  } else {
    select += " ORDER BY " + by + ", rowid";
  }
  return collect(session.statements.prepare(select, condition));
}

std::int64_t SqliteDatabase::count_value(const Statement& select, ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::read);
  const Loan query = session.statements.prepare("SELECT count(*) FROM (" + select.skeleton() + ")", select);
  return query->step() ? query->number(0) : 0;
}

void SqliteDatabase::add_to_blackhost(std::string_view address, ConnectionHandle& conn) {
  move_entry("Whitehost", "Blackhost", "IPNumber", address, conn);
}

void SqliteDatabase::add_to_whitehost(std::string_view address, ConnectionHandle& conn) {
  move_entry("Blackhost", "Whitehost", "IPNumber", address, conn);
}

void SqliteDatabase::add_to_blackdomain(std::string_view domain, ConnectionHandle& conn) {
  move_entry("whitelist", "blacklist", "entry", domain, conn);
}

void SqliteDatabase::add_to_whitedomain(std::string_view domain, ConnectionHandle& conn) {
  move_entry("blacklist", "whitelist", "entry", domain, conn);
}

void SqliteDatabase::add_to_swords(std::string_view word, ConnectionHandle& conn) {
  add_word("swords", word, conn);
}

void SqliteDatabase::add_to_words(std::string_view word, ConnectionHandle& conn) {
  add_word("words", word, conn);
}

void SqliteDatabase::remove_from_iplist(std::string_view address, ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  Atomic atomic(session.engine);
  remove(session, "Blackhost", "IPNumber", address);
  remove(session, "Whitehost", "IPNumber", address);
  atomic.commit();
}

void SqliteDatabase::CreateTable(ConnectionHandle& conn, Literal table, Literal columns) {
  Session& session = session_of(conn, Engine::Use::write);
  std::string sql = "CREATE TABLE IF NOT EXISTS " + quoted_name(table.text());
  sql.append(" (").append(keys_ignoring_case(columns.text())).append(")");
  Query(session.engine, sql).run();
}

void SqliteDatabase::prep_mdb(ConnectionHandle& conn) {
  Session& session = session_of(conn, Engine::Use::write);
  ensure_schema(session.engine, SchemaCheck::thorough, report_to(console_));
  session.engine.run("PRAGMA analysis_limit=1000; ANALYZE");
}

void SqliteDatabase::addbytes(std::int64_t number, ConnectionHandle& conn) {
  add_to_counter("addbytes", number, conn);
}

void SqliteDatabase::addconnections(std::int64_t number, ConnectionHandle& conn) {
  add_to_counter("addconnections", number, conn);
}

void SqliteDatabase::adddropps(std::int64_t number, ConnectionHandle& conn) {
  add_to_counter("adddropps", number, conn);
}

ListFileResult SqliteDatabase::import_(const ListTable& list, std::string_view path) {
  ListFileResult result;
  with_own([&](Session& session) { result = import_list({session, list, console_}, path); });
  return result;
}

ListFileResult SqliteDatabase::delete_(const ListTable& list, std::string_view path) {
  ListFileResult result;
  with_own([&](Session& session) { result = delete_list({session, list, console_}, path); });
  return result;
}

bool SqliteDatabase::export_(Literal column, Literal table, const Statement& condition, std::string_view path,
                             bool overwrite) {
  bool written = false;
  with_own([&](Session& session) {
    written = export_list({session, {table.text(), table, column}, console_}, condition, path, overwrite);
  });
  return written;
}

void SqliteDatabase::lcase_table(Literal table, Literal column) {
  const std::string list = quoted_name(table.text());
  const std::string name = quoted_name(column.text());
  with_own([&](Session& session) {
    Query(session.engine, "UPDATE " + list + " SET " + name + "=lower(" + name + ") WHERE " + name +
                              " COLLATE BINARY<>lower(" + name + ")")
        .run();
  });
}

StringList SqliteDatabase::read_disclaimer(std::string_view rule) {
  StringList result;
  with_own([&](Session& session) {
    const Loan query = session.statements.prepare("SELECT plain, html FROM disclaimer WHERE rule=?1");
    query->bind(1, rule);
    const bool found = query->step();
    for (int column = 0; column < 2; ++column) result.push_back(found ? query->text(column) : "");
  });
  return result;
}

void SqliteDatabase::adad() {
  const auto directory = console_.components().create<DirectoryUsers>();
  std::string server;
  with_own([&](Session& session) {
    const Loan query = session.statements.prepare("SELECT value FROM konf WHERE ID='ldapserver'");
    if (query->step()) server = trim(query->text(0));
  });
  if (server.empty()) {
    throw Error(error_number::invalid_property_value, "no directory server is named (the option ldapserver)");
  }
  // Nothing is locked while the server is asked.
  const StringList users = directory->addresses(server);
  with_own([&](Session& session) { add_entries({session, list::local_users, console_}, users); });
}

std::filesystem::path SqliteDatabase::path_of(std::string_view provider) const {
  constexpr std::string_view scheme = "sqlite:";
  const std::string_view text = trim(provider);
  if (text.empty()) throw Error(SQLITE_CANTOPEN, "no connection string for the database");
  if (!equals_ignoring_case(text.substr(0, scheme.size()), scheme)) {
    throw Error(SQLITE_CANTOPEN, "not a connection string of this database: " + without_secrets(text));
  }
  const std::string_view path = text.substr(scheme.size());
  if (path.empty() || path.find('\0') != path.npos) {
    throw Error(SQLITE_CANTOPEN, "the connection string names no database file: " + without_secrets(text));
  }
  return folder_ / to_file_path(path);
}

void SqliteDatabase::with_own(const std::function<void(Session&)>& action) {
  // Reporting progress may run events that call this again.
  if (own_is_busy_) throw Error(SQLITE_BUSY, "another list is being transferred");
  std::string provider = console_.data_provider();
  if (!own_ || provider != own_provider_) {
    own_ = std::make_unique<SqliteConnection>(path_of(provider), options_, console_);
    own_provider_ = std::move(provider);
  }
  struct Busy {
    explicit Busy(bool& flag) : flag_(flag) { flag_ = true; }
    ~Busy() { flag_ = false; }
    bool& flag_;
  } const busy(own_is_busy_);
  action(own_->session(Engine::Use::read));
  own_->settle();
}

}  // namespace zrl::sqlite
