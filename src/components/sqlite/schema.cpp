#include "components/sqlite/schema.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "components/sqlite/column_case.h"
#include "components/sqlite/large_cache.h"
#include "core/contracts/database.h"

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
  std::string kind;  // "table", "index" or "trigger"
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

bool has_column(Engine& engine, const std::string& table, std::string_view name) {
  Query present(engine, "SELECT 1 FROM pragma_table_info(?1) WHERE name=?2 COLLATE NOCASE");
  return present.bind(1, table).bind(2, name).step();
}

void add_missing_columns(Engine& engine, Engine& model, const std::string& table) {
  Query wanted(model, "SELECT name, type, dflt_value FROM pragma_table_info(?1)");
  wanted.bind(1, table);
  while (wanted.step()) {
    const std::string name(wanted.text(0));
    if (has_column(engine, table, name)) continue;
    std::string sql = "ALTER TABLE " + quoted_name(table) + " ADD COLUMN " + quoted_name(name) + " ";
    sql += wanted.text(1);
    if (!wanted.is_null(2)) sql.append(" DEFAULT ").append(wanted.text(2));
    engine.run(sql.c_str());
  }
}

bool has_all(Engine& engine, Engine& model, const std::vector<Object>& objects) {
  for (const Object& wanted : objects) {
    const std::optional<std::string> present = kind_of(engine, wanted.name);
    if (!present && (wanted.kind == "table" || kind_of(engine, wanted.table) == "table")) return false;
    if (wanted.kind != "table" || present != "table") continue;
    Query missing(model, "SELECT name FROM pragma_table_info(?1)");
    missing.bind(1, wanted.name);
    while (missing.step()) {
      if (!has_column(engine, wanted.name, missing.text(0))) return false;
    }
  }
  return true;
}

bool lacks(Engine& engine, const Object& wanted) {
  return !kind_of(engine, wanted.name) && kind_of(engine, wanted.table) == "table";
}

// Missing tables and columns, and whatever belongs to a table that is new.
void add_tables(Engine& engine, Engine& model, const std::vector<Object>& objects) {
  Atomic atomic(engine);
  std::set<std::string, std::less<>> made;
  for (const Object& wanted : objects) {
    const std::optional<std::string> present = kind_of(engine, wanted.name);
    if (wanted.kind == "table") {
      if (!present) engine.run(wanted.sql.c_str());
      if (!present) made.insert(wanted.table);
      if (present == "table") add_missing_columns(engine, model, wanted.name);
    } else if (!present && made.contains(wanted.table)) {
      engine.run(wanted.sql.c_str());
    }
  }
  atomic.commit();
}

// Indexes of earlier versions that others have taken the place of. Each costs every insertion its time.
constexpr const char* superseded[] = {"iplog_IPNumber",      "predatalog_IPNumber", "predatalog_mailfrom",
                                      "subjectlog_IPNumber", "subjectlog_mailfrom", "subjectlog_keyword",
                                      "bodylog_IPNumber",    "bodylog_mailfrom",    "bodylog_keyword",
                                      "avlog_IPNumber",      "avlog_mailfrom"};

void drop_superseded(Engine& engine) {
  for (const char* index : superseded) {
    if (kind_of(engine, index) != "index") continue;
    try {
      engine.run(("DROP INDEX IF EXISTS " + quoted_name(index)).c_str());
    } catch (const EngineFailure&) {  // it does no harm, and the next opening with other tables drops it
      return;
    }
  }
}

// Indexes and triggers of tables that were there already, which may be large: each in a transaction of its
// own. False if something is left to the next opening.
bool add_indexes(Engine& engine, const std::vector<Object>& objects, const SchemaReport& report) {
  std::vector<const Object*> missing;
  for (const Object& wanted : objects) {
    if (wanted.kind != "table" && lacks(engine, wanted)) missing.push_back(&wanted);
  }
  if (missing.empty()) return true;
  const LargeCache cache(engine);
  for (std::size_t i = 0; i < missing.size(); ++i) {
    const Object& wanted = *missing[i];
    report.progress(wanted.name, i, missing.size());
    try {
      Atomic atomic(engine);
      if (lacks(engine, wanted)) create_index(engine, wanted.sql);
      atomic.commit();
    } catch (const EngineFailure& failure) {
      // Whoever keeps the file locked may be a console that does the same.
      if (failure.number() == SQLITE_BUSY && !lacks(engine, wanted)) continue;
      report.failure(wanted.name, failure.what());
      return false;
    }
  }
  report.progress(missing.back()->name, missing.size(), missing.size());
  return true;
}

// The tables with columns that compare by case and should not. That of the scripts is made by its page.
std::vector<TableColumns> tables_to_bring_over(Engine& engine, Engine& model,
                                               const std::vector<Object>& objects) {
  std::vector<TableColumns> wanted{{"scriptengine", {"scriptname"}}};
  for (const Object& object : objects) {
    if (object.kind != "table") continue;
    TableColumns& table = wanted.emplace_back(TableColumns{object.name, {}});
    Query columns(model, "SELECT name FROM pragma_table_info(?1)");
    columns.bind(1, object.name);
    while (columns.step()) {
      const std::string name(columns.text(0));
      const char* collation = nullptr;
      sqlite3_table_column_metadata(model.handle(), "main", object.name.c_str(), name.c_str(), nullptr,
                                    &collation, nullptr, nullptr, nullptr);
      if (collation != nullptr && std::string_view(collation) == "NOCASE") table.columns.push_back(name);
    }
  }
  std::erase_if(wanted, [&](const TableColumns& table) { return comparing_by_case(engine, table).empty(); });
  return wanted;
}

// False if something is left to the next opening.
bool bring_over(Engine& engine, const std::vector<TableColumns>& tables, const SchemaReport& report) {
  if (tables.empty()) return true;
  const LargeCache cache(engine);
  for (std::size_t i = 0; i < tables.size(); ++i) {
    report.progress(tables[i].table, i, tables.size());
    try {
      ignore_case(engine, tables[i]);
    } catch (const EngineFailure& failure) {
      // Whoever keeps the file locked may be a console that does the same.
      const bool left = failure.number() != SQLITE_BUSY || !comparing_by_case(engine, tables[i]).empty();
      if (left) report.failure(tables[i].table, failure.what());
      if (left) return false;
    } catch (const Error& error) {
      report.failure(tables[i].table, error.what());  // the next opening could do no better
    }
  }
  report.progress(tables.back().table, tables.size(), tables.size());
  return true;
}

}  // namespace

std::string_view schema_text() {
  return {zrl_schema_begin, static_cast<std::size_t>(zrl_schema_end - zrl_schema_begin) - 1};
}

std::int32_t schema_stamp() {
  static const auto stamp = static_cast<std::int32_t>(checksum(schema_text()) >> 1);
  return stamp;
}

void ensure_schema(Engine& engine, SchemaCheck check, const SchemaReport& report) {
  if (engine.read_only()) return;
  if (check == SchemaCheck::quick && engine.number("PRAGMA user_version") == schema_stamp()) return;

  Engine model;
  model.run(zrl_schema_begin);
  const std::vector<Object> objects = objects_of(model);
  if (!has_all(engine, model, objects)) add_tables(engine, model, objects);
  // Before the indexes, which would be made anew.
  if (!bring_over(engine, tables_to_bring_over(engine, model, objects), report)) return;
  if (!add_indexes(engine, objects, report)) return;
  drop_superseded(engine);
  if (engine.number("PRAGMA user_version") == schema_stamp()) return;
  try {
    engine.run(("PRAGMA user_version=" + std::to_string(schema_stamp())).c_str());
  } catch (const EngineFailure& failure) {
    report.failure("user_version", failure.what());  // the next opening compares everything again
  }
}

}  // namespace zrl::sqlite
