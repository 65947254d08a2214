#pragma once

#include <cstdint>
#include <string_view>

#include "components/sqlite/sqlite_engine.h"

namespace zrl::sqlite {

// The tables and indexes of the database as one text of statements: the file schema.sql.
std::string_view schema_text();
// A checksum of that text, which a database bears as its user_version once it has all of it. So nobody has to
// count versions; consoles of different texts at the same database look closely each time they follow one
// another, and take nothing away.
std::int32_t schema_stamp();

enum class SchemaCheck { quick, thorough };

// Creates what is missing of tables, columns and indexes, and leaves alone what is there. The
// quick check looks at the database's stamp only and returns at once if it is that of the text.
void ensure_schema(Engine& engine, SchemaCheck check);

}  // namespace zrl::sqlite
