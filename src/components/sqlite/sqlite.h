#pragma once

#include <chrono>
#include <memory>

#include "core/contracts/console_services.h"
#include "core/contracts/database.h"
#include "core/contracts/registry.h"

// The database access component and the registry, on SQLite files in the console's folder.
namespace zrl::sqlite {

struct Options {
  // How long an operation waits for another process that is writing, before it fails.
  std::chrono::milliseconds busy_timeout{5000};
};

// A database access component. Relative paths of connection strings lie in the console's folder. The
// operations that open a connection of their own ask for the console's connection string each time; they
// report their progress now and then while a list file is imported, deleted or exported. `adad` asks the
// console's component DirectoryUsers.
//
// The component, its connections and their record sets belong to one thread.
std::shared_ptr<Database> make(ConsoleServices& console, Options options = {});

// The settings in "registry.db". Any number of processes may use the file at the same time; each
// operation is atomic and survives a power cut. The file is opened when it is first needed, made
// when something is first written, and opened again after it was replaced or deleted.
//
// Each registry has a file handle of its own, so a console keeps one.
std::shared_ptr<Registry> make_registry(ConsoleServices& console, Options options = {});

}  // namespace zrl::sqlite
