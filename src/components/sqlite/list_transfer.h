#pragma once

#include <cstdint>
#include <filesystem>

#include "components/sqlite/sqlite_connection.h"
#include "core/contracts/console_services.h"
#include "core/contracts/database.h"
#include "core/contracts/statement.h"
#include "core/text/string_list.h"

// Whole lists to and from files. Each function is one transaction, all or nothing, and raises zrl::Error if
// it fails; files of the console's own raise EACCES. Progress is reported to the console, whose host may run
// events from there.
namespace zrl::sqlite {

// A list, and where progress is reported. The references must outlive the transfer.
struct ListTransfer {
  Session& session;
  ListTable list;
  ConsoleServices& console;
  // How many entries of a file are kept in memory at a time, 16 to 32 bytes each; a longer file is read in
  // several passes.
  std::uint64_t entries_a_pass = std::uint64_t{2} << 20;
};

// Adds the entries that the list lacks, each once, in the order of the file. Entries that differ by case
// alone are the same.
ListFileResult import_list(const ListTransfer& transfer, const std::filesystem::path& path);

// The same with entries in memory; blank ones are left out.
void add_entries(const ListTransfer& transfer, const StringList& entries);

// Removes every row that equals an entry of the file.
ListFileResult delete_list(const ListTransfer& transfer, const std::filesystem::path& path);

// Writes the list's entries, one a line, in the order of their insertion; empty ones are left out,
// line breaks inside a text become blanks. The file appears complete or not at all. False if it
// exists and must not be replaced.
bool export_list(const ListTransfer& transfer, const Statement& condition, const std::filesystem::path& path,
                 bool overwrite);

// Raises EACCES if the file is the console's own.
void require_foreign_file(const ConsoleServices& console, const std::filesystem::path& path);

}  // namespace zrl::sqlite
