#pragma once

#include <string>
#include <vector>

#include "components/sqlite/sqlite_engine.h"

// Columns that ignore the case of A to Z (the engine's collation NOCASE), which their table may have been
// made without.
namespace zrl::sqlite {

struct TableColumns {
  std::string table;
  std::vector<std::string> columns;
};

// Those of the columns that the table has, and that compare by case. A view has none.
std::vector<std::string> comparing_by_case(Engine& engine, const TableColumns& wanted);

// Makes the columns ignore case, in one transaction: all rows stay as and where they are, and only the
// indexes that depend on the columns are made anew. A unique index whose entries differ by case alone becomes
// one that is not unique, so that no row is lost. False if the table's definition does not allow it (a key
// with such entries, a table without row ids, a collation that was chosen by hand); it is then as it was.
// Raises zrl::Error.
bool ignore_case(Engine& engine, const TableColumns& wanted);

// Runs the statement, which creates an index. If it is to be unique and the table has duplicates, which then
// were made by another program, it is created without that.
void create_index(Engine& engine, std::string sql);

// The definition of a table (CREATE TABLE...) in which these columns ignore case; empty if one of them is
// missing or has a collation already, or if the table has no row ids.
std::string with_case_ignored(const std::string& definition, const std::vector<std::string>& columns);

}  // namespace zrl::sqlite
