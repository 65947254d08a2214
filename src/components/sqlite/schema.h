#pragma once

#include <cstdint>
#include <string_view>

#include "components/sqlite/sqlite_engine.h"

namespace zrl::sqlite {

// The tables and indexes of the database as one text of statements: the file schema.sql.
std::string_view schema_text();
// A checksum of that text, which is the user_version of a database that has all of it. So no version has to
// be counted. When consoles with different texts open the same database in turn, each compares the whole
// schema again and adds what is missing; none removes anything.
std::int32_t schema_stamp();

enum class SchemaCheck { quick, thorough };

// Creates missing tables, columns and indexes in one transaction, and changes nothing that exists. The quick
// check compares the database's stamp only and returns at once if it is current. A file that is open
// for reading only stays as it is. Raises zrl::Error.
void ensure_schema(Engine& engine, SchemaCheck check);

}  // namespace zrl::sqlite
