#include "database/comparison.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>

#include "components/sqlite/sqlite.h"
#include "support/fake_services.h"
#include "support/temporary_folder.h"

namespace zrl::bench {

namespace {

void fail(sqlite3* handle, const char* what) {
  std::fprintf(stderr, "%s: %s\n", what, sqlite3_errmsg(handle));
  std::exit(1);
}

}  // namespace

Bare::Bare(const std::filesystem::path& path, Settings settings) {
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const bool ours = settings == Settings::of_the_component;
  if (sqlite3_open_v2(path.c_str(), &handle_, flags | (ours ? SQLITE_OPEN_NOMUTEX : 0), nullptr) !=
      SQLITE_OK) {
    fail(handle_, path.c_str());
  }
  if (ours) run("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA mmap_size=1073741824");
}

Bare::~Bare() {
  sqlite3_close(handle_);
}

void Bare::run(const std::string& sql) {
  if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail(handle_, sql.c_str());
}

sqlite3_stmt* Bare::prepare(const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
    fail(handle_, sql.c_str());
  return statement;
}

const std::filesystem::path& folder() {
  static const test::TemporaryFolder made;
  return made.path();
}

const std::filesystem::path& list_folder() {
  static const std::filesystem::path made = [] {
    std::filesystem::create_directory(folder() / "lists");
    return folder() / "lists";
  }();
  return made;
}

std::shared_ptr<Database> access_to(const std::string& provider) {
  struct Access {
    test::FakeServices console{folder()};
    std::shared_ptr<Database> database = sqlite::make(console);
  };
  const auto access = std::make_shared<Access>();
  access->console.settings["dataprovider"] = provider;
  return {access, access->database.get()};
}

std::vector<std::string> host_names(int count, unsigned seed) {
  std::vector<std::string> names;
  std::mt19937 source(seed);
  const auto random = [&] { return static_cast<unsigned>(source()); };
  for (int i = 0; i < count; ++i) {
    std::string name;
    const unsigned length = 4 + random() % 10;
    for (unsigned n = 0; n < length; ++n) name += static_cast<char>('a' + random() % 26);
    names.push_back(name + std::to_string(i) + "-" + std::to_string(seed) + ".example");
  }
  return names;
}

void write_lines(const std::filesystem::path& path, const std::vector<std::string>& lines) {
  std::ofstream file(path, std::ios::binary);
  for (const std::string& line : lines) file << line << '\n';
}

}  // namespace zrl::bench
