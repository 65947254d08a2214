#pragma once

#include <string_view>

#include "components/sqlite/sqlite_engine.h"

namespace zrl::sqlite {

// The tables and indexes of the database as one text of statements. The table of the scripts is
// not among them; its page creates it.
std::string_view schema_text();

enum class SchemaCheck { quick, thorough };

// Creates what is missing of tables, columns and indexes, and leaves alone what is there. The
// quick check looks at the database's version number only and returns at once if it is up to date.
void ensure_schema(Engine& engine, SchemaCheck check);

}  // namespace zrl::sqlite
