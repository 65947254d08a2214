#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/database.h"
#include "core/contracts/entry_search.h"
#include "core/contracts/registry.h"

// The database access component and the registry, on SQLite files in the console's folder.
namespace zrl::sqlite {

struct Options {
  // How long an operation waits for another process that is writing, before it fails.
  std::chrono::milliseconds busy_timeout{5000};
};

// A database access component. Connection strings are "sqlite:PATH"; a relative path is below the console's
// folder. Opening a file completes its tables and indexes from schema.sql, and makes the file if it is
// missing. Any number of processes may use a file at the same time.
//
// Operations without a connection argument open one of their own, by the console's connection string, which
// they read each time. While a list file is imported, deleted or exported, they report progress, and the
// host may run events from that report; another of these operations called from there raises zrl::Error
// (busy). `adad` asks the console's component DirectoryUsers, and fails without it.
//
// Connections share their file with their record sets, and both may outlive the component. All of them belong
// to the console's thread; the component must not outlive the console.
std::shared_ptr<Database> make(ConsoleServices& console, Options options = {});

// The search for entries, over a connection of its own that the console's database component opens.
std::shared_ptr<EntrySearch> make_entry_search(ConsoleServices& console);

// The registry values, in the file "registry.db" of the console's folder. Any number of processes may use the
// file at the same time; each operation is atomic, and on the disk when it returns. The file is opened on
// first use, made by the first write, and opened again after it was replaced or deleted. A file that does not
// exist reads as empty.
//
// Each registry keeps a file handle, so a console makes one and shares it. It belongs to the console's
// thread; it takes the folder's path from the console and may outlive it.
std::shared_ptr<Registry> make_registry(ConsoleServices& console, Options options = {});

}  // namespace zrl::sqlite
