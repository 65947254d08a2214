#include "components/sqlite/schema.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/text/error.h"

// The file, put between these marks by the assembler, with a zero byte at its end.
extern "C" {
extern const char zrl_schema_begin[];
extern const char zrl_schema_end[];
}

namespace zrl::sqlite {

namespace {

// FNV-1a.
constexpr std::uint32_t checksum(std::string_view text) {
  std::uint32_t sum = 2166136261U;
  for (const char c : text) sum = (sum ^ static_cast<unsigned char>(c)) * 16777619U;
  return sum;
}

struct Object {
  std::string kind;  // "table" or "index"
  std::string name;
  std::string table;
  std::string sql;
};

// The statements of the text, split by the engine itself, which knows where a statement ends.
std::vector<Object> objects_of(Engine& model) {
  std::vector<Object> result;
  Query query(
      model,
      "SELECT type, name, tbl_name, sql FROM sqlite_schema WHERE name NOT LIKE 'sqlite%' ORDER BY rowid");
  while (query.step()) {
    result.push_back({std::string(query.text(0)), std::string(query.text(1)), std::string(query.text(2)),
                      std::string(query.text(3))});
  }
  return result;
}

std::optional<std::string> kind_of(Engine& engine, std::string_view name) {
  Query query(engine, "SELECT type FROM sqlite_schema WHERE name=?1 COLLATE NOCASE");
  query.bind(1, name);
  if (!query.step()) return std::nullopt;
  return std::string(query.text(0));
}

void add_missing_columns(Engine& engine, Engine& model, const std::string& table) {
  Query wanted(model, "SELECT name, type, dflt_value FROM pragma_table_info(?1)");
  wanted.bind(1, table);
  while (wanted.step()) {
    Query present(engine, "SELECT 1 FROM pragma_table_info(?1) WHERE name=?2 COLLATE NOCASE");
    const std::string name(wanted.text(0));
    if (present.bind(1, table).bind(2, name).step()) continue;
    std::string sql = "ALTER TABLE " + quoted_name(table) + " ADD COLUMN " + quoted_name(name) + " ";
    sql += wanted.text(1);
    if (!wanted.is_null(2)) sql.append(" DEFAULT ").append(wanted.text(2));
    engine.run(sql.c_str());
  }
}

// A table that was made by hand may have duplicates; they are kept, and the index is not unique then.
void create_index(Engine& engine, std::string sql) {
  try {
    engine.run(sql.c_str());
  } catch (const Error& error) {
    constexpr std::string_view unique = "UNIQUE ";
    const std::size_t found = sql.find(unique);
    if (error.number() != SQLITE_CONSTRAINT || found == sql.npos) throw;
    engine.run(sql.erase(found, unique.size()).c_str());
  }
}

}  // namespace

std::string_view schema_text() {
  return {zrl_schema_begin, static_cast<std::size_t>(zrl_schema_end - zrl_schema_begin) - 1};
}

std::int32_t schema_stamp() {
  static const auto stamp = static_cast<std::int32_t>(checksum(schema_text()) >> 1);
  return stamp;
}

void ensure_schema(Engine& engine, SchemaCheck check) {
  const auto up_to_date = [&] {
    return check == SchemaCheck::quick && engine.number("PRAGMA user_version") == schema_stamp();
  };
  if (engine.read_only() || up_to_date()) return;

  Engine model;
  model.run(zrl_schema_begin);
  Atomic atomic(engine);
  if (up_to_date()) return;  // another process was faster
  for (const Object& wanted : objects_of(model)) {
    const std::optional<std::string> present = kind_of(engine, wanted.name);
    if (wanted.kind == "table") {
      if (!present) engine.run(wanted.sql.c_str());
      if (present == "table") add_missing_columns(engine, model, wanted.name);
    } else if (!present && kind_of(engine, wanted.table) == "table") {
      create_index(engine, wanted.sql);
    }
  }
  if (engine.number("PRAGMA user_version") != schema_stamp()) {
    engine.run(("PRAGMA user_version=" + std::to_string(schema_stamp())).c_str());
  }
  atomic.commit();
}

}  // namespace zrl::sqlite
