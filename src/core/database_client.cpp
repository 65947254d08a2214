#include "core/database_client.h"

#include "core/text/error.h"
#include "core/text/secrets.h"
#include "core/text/text.h"
#include "core/text/utf8.h"

namespace zrl {

namespace {

std::string words(std::initializer_list<std::string_view> parts) {
  std::string result;
  for (const std::string_view part : parts) {
    if (!result.empty()) result += ' ';
    result += part;
  }
  return result;
}

std::string assignment(std::string_view operation, std::string_view key, std::string_view value) {
  std::string result = words({operation, key});
  return result.append("=").append(value);
}

}  // namespace

bool DatabaseClient::connect_database(std::string_view box_title) {
  const std::string provider = console_.settings().regread(console_.settings().data_provider_path());
  console_.writes().commit();
  const std::string text = words({"open_database", without_secrets(provider)});
  const Outcome opened = attempt_read(Kind::component, text, [&] {
    database = console_.components().create<Database>();
    conn = database->open_database(provider);
  });
  if (!opened) {
    const std::string problem = std::to_string(opened.number) + ": " + opened.problem;
    show_error("Connection to database could not be etablished: \r\n" + problem, box_title);
  }
  return opened;
}

void DatabaseClient::drop_database() {
  console_.writes().commit();
  own_transaction_ = false;
  loaded_.clear();
  database.reset();
  conn.reset();
}

bool DatabaseClient::execute(const Statement& statement, Failure failure) {
  const std::string public_text = statement.has_secrets() ? statement.public_text() : std::string();
  return attempt_write(
      Kind::sql, statement.text(), [&] { connection_or_throw().execute(statement); }, public_text, failure);
}

bool DatabaseClient::read_rows(std::string_view text, const std::function<void()>& action) {
  return attempt_read(Kind::sql, text, action);
}

Outcome DatabaseClient::write_row(std::string_view text, const std::function<void()>& action) {
  return attempt_write(Kind::sql, text, action);
}

Outcome DatabaseClient::delete_row(std::string_view text, const Statement& select) {
  return attempt_write(Kind::sql, text, [&] {
    const auto rows = connection_or_throw().open(select, Connection::Access::updatable);
    if (rows->at_end()) throw Error(error_number::subscript_out_of_range, "it was deleted meanwhile");
    rows->delete_current();
  });
}

bool DatabaseClient::begin_transaction() {
  console_.writes().commit();
  const bool begun = read_rows("begin transaction", [this] { connection_or_throw().begin_transaction(); });
  own_transaction_ = own_transaction_ || begun;
  return begun;
}

bool DatabaseClient::commit(std::string_view text, Step step) {
  if (conn && step == Step::write) console_.wrote_to(conn);
  own_transaction_ = false;
  return console_.attempt(Kind::sql, text, step, [this] { connection_or_throw().commit(); });
}

bool DatabaseClient::roll_back() {
  own_transaction_ = false;
  return read_rows("roll back", [this] { connection_or_throw().roll_back(); });
}

std::optional<OptionValue> DatabaseClient::read_option(std::string_view key) {
  std::optional<OptionValue> result;
  attempt_read(Kind::option, words({"read_option", key}),
               [&] { result = component_or_throw().read_option(key, conn); });
  if (result) loaded(key, result->text);
  return result;
}

std::optional<OptionValue> DatabaseClient::get_option(std::string_view key) {
  std::optional<OptionValue> result;
  attempt_read(Kind::option, words({"get_option", key}),
               [&] { result = component_or_throw().get_option(key, conn); });
  if (result) loaded(key, result->text);
  return result;
}

std::optional<std::int16_t> DatabaseClient::read_number(std::string_view key) {
  std::optional<std::int16_t> result;
  attempt_read(Kind::option, words({"read_option", key}), [&] {
    const OptionValue stored = component_or_throw().read_option(key, conn);
    loaded(key, stored.text);
    result = stored.to_int16();
  });
  return result;
}

std::optional<std::string> DatabaseClient::read_string(std::string_view key) {
  std::optional<std::string> result;
  attempt_read(Kind::option, words({"read_string", key}),
               [&] { result = component_or_throw().read_string(key, conn); });
  if (result) loaded(key, *result);
  return result;
}

void DatabaseClient::loaded(std::string_view key, std::string_view text) {
  loaded_.insert_or_assign(std::string(key), std::string(text));
}

// Unless the transaction is dropped: then the value of before is stored again.
void DatabaseClient::now_stored(std::string_view key, std::string_view text) {
  const auto held = loaded_.find(key);
  std::optional<std::string> before;
  if (held != loaded_.end()) before = held->second;
  loaded(key, text);
  console_.writes().if_dropped(this, [this, key = std::string(key), before] {
    if (before) {
      loaded(key, *before);
    } else {
      loaded_.erase(key);
    }
  });
}

// Whoever asked commits what was written, so the value is compared once more after the answer, with the lock
// that the write needs.
bool DatabaseClient::may_replace(std::string_view key, std::string_view text) {
  if (!conn || !console_.host().guards_newer_values()) return true;
  const std::string wanted(trim(text));
  for (auto held = loaded_.find(key); held != loaded_.end(); held = loaded_.find(key)) {
    std::string stored;
    const bool read = attempt_read(Kind::option, words({"read_option", key}), [&] {
      if (!own_transaction_) console_.writes().join(conn);
      stored = component_or_throw().read_to_change(key, conn);
    });
    if (!read || stored.empty() || stored == held->second || trim(stored) == wanted) return true;
    const bool unchanged = trim(held->second) == wanted;
    if (unchanged) return give_way(key, stored);
    switch (ask_about_newer(name_of_option(key), stored)) {
      case Answer::overwrite:
        loaded(key, stored);
        break;
      case Answer::keep_theirs:
        return give_way(key, stored);
      case Answer::cancel:
        return failed(Kind::option, assignment("not stored", key, text),
                      "somebody else has stored another value meanwhile", Step::write);
    }
  }
  return true;
}

bool DatabaseClient::give_way(std::string_view key, std::string_view newer) {
  loaded(key, newer);
  show_newer(key);
  return false;
}

DatabaseClient::Answer DatabaseClient::ask_about_newer(std::string_view what, std::string_view newer) {
  constexpr std::size_t longest_shown = 2000;
  Localisation& localisation = console_.localisation();
  std::string text = localisation.translate(
      "Something else has been stored meanwhile, by somebody else or in another tab. Overwrite it with what "
      "you have "
      "typed?");
  text.append("\r\n\r\n").append(what).append(":\r\n").append(beginning_of(newer, longest_shown));
  if (newer.size() > longest_shown) text += " ...";
  const BoxReply reply = console_.host().message_box({.title = localisation.translate("Changed meanwhile"),
                                                      .text = std::move(text),
                                                      .style = BoxStyle::question,
                                                      .act = localisation.translate("Overwrite"),
                                                      .other = localisation.translate("Keep the other")});
  if (reply == BoxReply::cancel) return Answer::cancel;
  return reply == BoxReply::ok ? Answer::overwrite : Answer::keep_theirs;
}

std::string DatabaseClient::change_mark(const ListTable& list) {
  std::string mark;
  if (!conn) return mark;
  console_.writes().commit();
  attempt_read(Kind::component, words({"change_mark", list.table.text()}),
               [&] { mark = component_or_throw().change_mark(list, conn); });
  return mark;
}

bool DatabaseClient::set_option(std::string_view key, std::int32_t value) {
  const bool stored = attempt_write(Kind::option, assignment("set_option", key, std::to_string(value)),
                                    [&] { component_or_throw().set_option(key, value, conn); });
  if (!conn) return stored;
  if (stored) {
    now_stored(key, std::to_string(value));
    console_.writes().if_dropped(this, [this, held = std::string(key)] { not_stored(held); });
  } else {
    not_stored(key);
  }
  return stored;
}

bool DatabaseClient::store_number(std::string_view key, std::string_view text, const NumberType& type) {
  const std::optional<std::int64_t> number = to_number(text);
  if (number && *number >= type.min && *number <= type.max) {
    if (!may_replace(key, text)) return true;
    return set_option(key, static_cast<std::int32_t>(*number));
  }
  return failed(Kind::option, assignment("set_option", key, text),
                "Type mismatch: not a " + std::to_string(type.bits) + "-bit integer", Step::write);
}

bool DatabaseClient::set_string(std::string_view key, std::string_view text) {
  if (!may_replace(key, text)) return true;
  const bool stored = attempt_write(Kind::option, assignment("set_string", key, text),
                                    [&] { component_or_throw().set_string(key, text, conn); });
  if (stored) now_stored(key, text);
  return stored;
}

std::optional<StringList> DatabaseClient::rows(Literal table, Literal column, const Statement& condition) {
  std::optional<StringList> result;
  console_.writes().commit();
  attempt_read(Kind::component, words({"get_db_array", table.text(), column.text()}), [&] {
    result = component_or_throw().get_db_array(conn, table, column, condition);
    if (!result->empty()) result->pop_back();
  });
  return result;
}

std::optional<StringList> DatabaseClient::ordered_rows(Literal table, Literal column,
                                                       const Statement& condition, Literal order,
                                                       Failure failure) {
  std::optional<StringList> result;
  console_.writes().commit();
  attempt_read(
      Kind::component, words({"get_db_array_ordered", table.text(), column.text()}),
      [&] { result = component_or_throw().get_db_array_ordered(conn, table, column, condition, order); },
      failure);
  return result;
}

std::optional<std::int64_t> DatabaseClient::count_value(const Statement& select) {
  std::optional<std::int64_t> result;
  attempt_read(Kind::component, words({"count_value", select.text()}),
               [&] { result = component_or_throw().count_value(select, conn); });
  return result;
}

std::unique_ptr<RecordSet> DatabaseClient::open(const Statement& select, Connection::Access access) {
  std::unique_ptr<RecordSet> result;
  if (access == Connection::Access::read_only) console_.writes().commit();
  attempt_read(Kind::sql, select.text(), [&] { result = connection_or_throw().open(select, access); });
  return result;
}

bool DatabaseClient::list_operation(std::string_view name, ListOperation operation, std::string_view entry) {
  return attempt_write(Kind::component, words({name, entry}),
                       [&] { (component_or_throw().*operation)(entry, conn); });
}

std::optional<ListFileResult> DatabaseClient::import_file(const ListTable& list, std::string_view path) {
  std::optional<ListFileResult> result;
  component_step(words({"import", list.column.text(), list.table.text(), path}),
                 [&] { result = component_or_throw().import_(list, path); });
  return result;
}

std::optional<ListFileResult> DatabaseClient::delete_file(const ListTable& list, std::string_view path) {
  std::optional<ListFileResult> result;
  component_step(words({"delete", list.column.text(), list.table.text(), path}),
                 [&] { result = component_or_throw().delete_(list, path); });
  return result;
}

bool DatabaseClient::export_file(const ListTable& list, std::string_view path, bool overwrite) {
  return component_step(words({"export", list.column.text(), list.table.text(), path}), [&] {
    const bool done = component_or_throw().export_(list.column, list.table, {}, path, overwrite);
    if (!done) throw Error(error_number::invalid_call, "there is a file of this name already");
  });
}

bool DatabaseClient::adad() {
  return component_step("adad", [&] { component_or_throw().adad(); });
}

bool DatabaseClient::lcase_table(const ListTable& list) {
  return component_step(words({"lcase_table", list.table.text(), list.column.text()}),
                        [&] { component_or_throw().lcase_table(list.table, list.column); });
}

bool DatabaseClient::prep_mdb() {
  return component_step("prep_mdb", [&] { component_or_throw().prep_mdb(conn); });
}

bool DatabaseClient::create_table(Literal table, Literal columns) {
  return attempt_write(Kind::component, words({"CreateTable", table.text(), columns.text()}),
                       [&] { component_or_throw().CreateTable(conn, table, columns); });
}

Outcome DatabaseClient::component_step(std::string_view text, const std::function<void()>& call) {
  console_.writes().commit();
  if (conn) console_.wrote_to(conn);
  return console_.attempt(Kind::component, text, Step::write, call);
}

Database& DatabaseClient::component_or_throw() const {
  if (!database) throw Error(error_number::object_not_set, "no database component");
  return *database;
}

Connection& DatabaseClient::connection_or_throw() const {
  if (!conn) throw Error(error_number::object_not_set, "no connection to the database");
  return *conn;
}

Outcome DatabaseClient::attempt_read(Kind kind, std::string_view text, const std::function<void()>& action,
                                     Failure failure) {
  return console_.attempt(kind, text, Step::read, action, {}, failure);
}

Outcome DatabaseClient::attempt_write(Kind kind, std::string_view text, const std::function<void()>& action,
                                      std::string_view public_text, Failure failure) {
  if (!own_transaction_) return console_.attempt_write(conn, kind, text, action, public_text, failure);
  if (conn) console_.wrote_to(conn);
  return console_.attempt(kind, text, Step::write, action, public_text, failure);
}

}  // namespace zrl
