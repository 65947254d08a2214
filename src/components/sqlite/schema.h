#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "components/sqlite/sqlite_engine.h"

namespace zrl::sqlite {

// The tables, indexes and triggers of the database as one text of statements: the file schema.sql.
std::string_view schema_text();
// A checksum of that text, which is the user_version of a database that has all of it. So no version has to
// be counted. When consoles with different texts open the same database in turn, each compares the whole
// schema again and adds what is missing; none removes anything, nor makes a column compare by case again.
std::int32_t schema_stamp();

enum class SchemaCheck { quick, thorough };

// What opening a database reports, outside all transactions: before each index that is made, and each table
// that is brought over, of a database that had rows before; and if one could not be.
struct SchemaReport {
  std::function<void(std::string_view what, std::uint64_t done, std::uint64_t total)> progress;
  std::function<void(std::string_view what, std::string_view problem)> failure;
};

// Creates missing tables and columns in one transaction, and what is missing of indexes and triggers each in
// one of its own. Changes nothing that exists but one thing: columns that compare by case and should not are
// made to ignore it, in a transaction a table. So other processes wait for one table or index at most, and
// the rest is done later if the process ends in between. If another process keeps the file locked, or the
// disk is full, that rest is left to the next opening. The quick check compares the database's stamp only and
// returns at once if it is current. A file that is open for reading only stays as it is. Raises zrl::Error.
void ensure_schema(Engine& engine, SchemaCheck check, const SchemaReport& report);

}  // namespace zrl::sqlite
