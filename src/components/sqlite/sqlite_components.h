#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/database.h"
#include "core/contracts/host.h"
#include "core/contracts/registry.h"

// The database access component and the registry, on SQLite files in the console's folder.
namespace zrl {

struct SqliteOptions {
  // How long an operation waits for another process that is writing, before it fails.
  std::chrono::milliseconds busy_timeout{5000};
};

// The addresses of the users that a directory server knows. Raises zrl::Error.
using DirectoryReader = std::function<StringList(std::string_view server)>;

// A database access component. `folder` is where relative paths of connection strings lie;
// `provider` tells the connection string for the operations that open a connection of their own,
// each time one is about to start; `report`, if given, is called now and then while a list file is
// imported, deleted or exported; `directory` is what `adad` asks, which fails without it.
//
// The component, its connections and their record sets belong to one thread.
std::shared_ptr<Database> make_sqlite_database(const std::filesystem::path& folder,
                                               std::function<std::string()> provider,
                                               std::function<void(const Progress&)> report = {},
                                               SqliteOptions options = {}, DirectoryReader directory = {});

// The settings in "registry.db". Any number of processes may use the file at the same time; each
// operation is atomic and survives a power cut. The file is opened when it is first needed, made
// when something is first written, and opened again after it was replaced or deleted.
class RegistryStore {
 public:
  struct Value {
    std::string path;
    std::string kind;  // "REG_SZ" or "REG_DWORD"
    std::string text;  // a double word in decimal
  };

  virtual ~RegistryStore() = default;

  // A handle on this store, which it keeps alive. Cheap: made anew for every operation.
  virtual std::shared_ptr<Registry> registry() = 0;

  virtual std::optional<Value> find(std::string_view path) = 0;
  // All values, in the order of their paths.
  virtual std::vector<Value> list() = 0;
};

std::shared_ptr<RegistryStore> make_registry_store(const std::filesystem::path& folder,
                                                   SqliteOptions options = {});

}  // namespace zrl
