#include "components/sqlite/column_case.h"

#include <algorithm>
#include <utility>

#include "core/contracts/database.h"
#include "core/text/ascii.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

struct Token {
  std::string_view text;  // a name without its quotes
  std::size_t begin;
  std::size_t end;
  bool quoted;
};

bool is_name(char c) {
  return is_letter_or_digit(c) || c == '_' || c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

// Where the quoted name or text that begins here ends, with its quotes. Two quotes in a row belong to it.
std::size_t end_of_quotes(std::string_view sql, std::size_t begin) {
  const char closing = sql[begin] == '[' ? ']' : sql[begin];
  std::size_t i = begin + 1;
  while (i < sql.size()) {
    const bool closes = sql[i] == closing;
    ++i;
    if (!closes) continue;
    if (closing == ']' || i == sql.size() || sql[i] != closing) return i;
    ++i;
  }
  return i;
}

// The parts of a statement that mean something: names, numbers, quoted texts, and single other characters.
std::vector<Token> tokens_of(std::string_view sql) {
  std::vector<Token> result;
  std::size_t i = 0;
  const auto skip_past = [&](std::string_view end) {
    const std::size_t found = sql.find(end, i);
    i = found == sql.npos ? sql.size() : found + end.size();
  };
  while (i < sql.size()) {
    const std::size_t begin = i;
    const char c = sql[i++];
    if (sql.substr(begin, 2) == "--") {
      skip_past("\n");
    } else if (sql.substr(begin, 2) == "/*") {
      ++i;
      skip_past("*/");
    } else if (c == '\'' || c == '"' || c == '`' || c == '[') {
      i = end_of_quotes(sql, begin);
      result.push_back({sql.substr(begin + 1, i - begin - 2), begin, i, true});
    } else if (is_name(c)) {
      while (i < sql.size() && is_name(sql[i])) ++i;
      result.push_back({sql.substr(begin, i - begin), begin, i, false});
    } else if (std::string_view(" \t\r\n\f").find(c) == std::string_view::npos) {
      result.push_back({sql.substr(begin, 1), begin, i, false});
    }
  }
  return result;
}

bool is_word(const Token& token, std::string_view word) {
  return !token.quoted && equals_ignoring_case(token.text, word);
}

bool contains(const std::vector<std::string>& names, std::string_view name) {
  return std::ranges::any_of(names, [&](const std::string& one) { return equals_ignoring_case(one, name); });
}

struct Index {
  std::string name;
  std::string sql;  // empty if it belongs to a constraint of the table
};

// The indexes whose order or content depends on the columns.
std::vector<Index> indexes_on(Engine& engine, const TableColumns& wanted) {
  std::vector<Index> result;
  Query all(engine,
            "SELECT list.name, list.partial, ifnull(schema.sql, '') FROM pragma_index_list(?1) AS list "
            "JOIN sqlite_schema AS schema ON schema.type='index' AND schema.name=list.name");
  all.bind(1, wanted.table);
  while (all.step()) {
    const std::string name(all.text(0));
    bool depends = all.number(1) != 0;
    Query parts(engine, "SELECT name, cid FROM pragma_index_info(?1)");
    parts.bind(1, name);
    while (parts.step()) {
      constexpr std::int64_t expression = -2;
      depends = depends || parts.number(1) == expression || contains(wanted.columns, parts.text(0));
    }
    if (depends) result.push_back({name, std::string(all.text(2))});
  }
  return result;
}

std::string definition_of(Engine& engine, const std::string& table) {
  Query query(engine, "SELECT sql FROM sqlite_schema WHERE type='table' AND name=?1 COLLATE NOCASE");
  query.bind(1, table);
  return query.step() ? std::string(query.text(0)) : std::string();
}

// Names, types, defaults and keys of the columns that a definition yields.
std::string columns_of(const std::string& definition, const std::string& table) {
  Engine scratch;
  scratch.run(definition.c_str());
  Query query(scratch,
              "SELECT group_concat(name||char(1)||type||char(1)||\"notnull\"||char(1)||ifnull(dflt_value, '')"
              "||char(1)||pk||char(1)||hidden, char(2)) FROM pragma_table_xinfo(?1)");
  query.bind(1, table);
  return query.step() ? std::string(query.text(0)) : std::string();
}

// Whether the definition differs from the present one in nothing but these columns' case.
bool is_sound(const std::string& definition, const std::string& present, const TableColumns& wanted) {
  if (definition.empty()) return false;
  try {
    if (columns_of(definition, wanted.table) != columns_of(present, wanted.table)) return false;
    Engine scratch;
    scratch.run(definition.c_str());
    return comparing_by_case(scratch, wanted).empty();
  } catch (const Error&) {
    return false;
  }
}

// While it lives, the engine lets definitions be written.
class DefinitionsOpen {
 public:
  explicit DefinitionsOpen(Engine& engine) : engine_(engine) {
    set(SQLITE_DBCONFIG_DEFENSIVE, 0);
    set(SQLITE_DBCONFIG_WRITABLE_SCHEMA, 1);
  }
  DefinitionsOpen(const DefinitionsOpen&) = delete;
  DefinitionsOpen& operator=(const DefinitionsOpen&) = delete;
  ~DefinitionsOpen() {
    set(SQLITE_DBCONFIG_WRITABLE_SCHEMA, 0);
    set(SQLITE_DBCONFIG_DEFENSIVE, 1);
  }

 private:
  void set(int option, int value) {
    sqlite3_db_config(engine_.handle(), option, value, static_cast<int*>(nullptr));
  }

  Engine& engine_;
};

// The rows don't depend on the definition's collations, so the definition alone is written.
void write_definition(Engine& engine, const std::string& table, const std::string& definition) {
  const DefinitionsOpen open(engine);
  Query(engine, "UPDATE sqlite_schema SET sql=?1 WHERE type='table' AND name=?2 COLLATE NOCASE")
      .bind(1, definition)
      .bind(2, table)
      .run();
  // Makes all connections read the definitions again, this one by the second pragma.
  const std::int64_t version = engine.number("PRAGMA schema_version") + 1;
  engine.run(("PRAGMA schema_version=" + std::to_string(version) + "; PRAGMA writable_schema=RESET").c_str());
}

}  // namespace

std::vector<std::string> comparing_by_case(Engine& engine, const TableColumns& wanted) {
  std::vector<std::string> result;
  for (const std::string& column : wanted.columns) {
    const char* collation = nullptr;
    const int code =
        sqlite3_table_column_metadata(engine.handle(), "main", wanted.table.c_str(), column.c_str(), nullptr,
                                      &collation, nullptr, nullptr, nullptr);
    if (code == SQLITE_OK && equals_ignoring_case(collation, "BINARY")) result.push_back(column);
  }
  return result;
}

bool ignore_case(Engine& engine, const TableColumns& wanted) {
  Atomic atomic(engine);
  const TableColumns changed{wanted.table, comparing_by_case(engine, wanted)};
  if (changed.columns.empty()) return true;  // another process was faster
  const std::string present = definition_of(engine, changed.table);
  const std::string definition = with_case_ignored(present, changed.columns);
  if (!is_sound(definition, present, changed)) return false;
  const std::vector<Index> indexes = indexes_on(engine, changed);
  for (const Index& index : indexes) {
    if (!index.sql.empty()) engine.run(("DROP INDEX " + quoted_name(index.name)).c_str());
  }
  write_definition(engine, changed.table, definition);
  for (const Index& index : indexes) {
    if (!index.sql.empty()) {
      create_index(engine, index.sql);
      continue;
    }
    try {
      engine.run(("REINDEX " + quoted_name(index.name)).c_str());
    } catch (const Error& error) {
      if (error.number() == SQLITE_CONSTRAINT) return false;
      throw;
    }
  }
  atomic.commit();
  return true;
}

void create_index(Engine& engine, std::string sql) {
  try {
    engine.run(sql.c_str());
  } catch (const Error& error) {
    const std::vector<Token> tokens = tokens_of(sql);
    if (error.number() != SQLITE_CONSTRAINT || tokens.size() < 2 || !is_word(tokens[1], "unique")) throw;
    engine.run(sql.erase(tokens[1].begin, tokens[1].end - tokens[1].begin).c_str());
  }
}

std::string with_case_ignored(const std::string& definition, const std::vector<std::string>& columns) {
  const std::vector<Token> tokens = tokens_of(definition);
  std::vector<std::size_t> places;
  int depth = 0;
  bool wanted = false;
  bool first = false;  // in its column
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    const bool ends = depth == 1 && (is_word(token, ",") || is_word(token, ")"));
    if (ends && wanted) places.push_back(tokens[i - 1].end);
    if (ends) wanted = false;
    const bool opens = is_word(token, "(");
    if (opens) ++depth;
    if (is_word(token, ")")) --depth;
    if (depth == 0 && is_word(token, "without")) return {};  // the rows themselves are ordered by the key
    if ((opens || ends) && depth == 1) {
      first = true;
    } else if (depth == 1) {
      if (first) wanted = contains(columns, token.text);
      if (!first && wanted && is_word(token, "collate")) return {};
      first = false;
    }
  }
  if (places.size() != columns.size()) return {};
  std::string result = definition;
  for (; !places.empty(); places.pop_back()) result.insert(places.back(), " COLLATE NOCASE");
  return result;
}

}  // namespace zrl::sqlite
