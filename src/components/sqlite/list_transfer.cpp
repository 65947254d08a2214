#include "components/sqlite/list_transfer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "components/sqlite/entry_set.h"
#include "components/sqlite/large_cache.h"
#include "components/sqlite/list_reader.h"
#include "core/contracts/console_folder.h"
#include "core/text/error.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

// Shorter files are processed line by line; for longer ones, sets and sorting pay off.
constexpr std::int64_t bulk_entries = 5000;
constexpr std::uint64_t most_entries = 0xFFFFFFFF;
constexpr std::uint64_t report_interval = 32768;

class Work {
 public:
  explicit Work(const ListTransfer& transfer)
      : engine_(transfer.session.engine),
        console_(transfer.console),
        entries_a_pass_(transfer.entries_a_pass),
        name_(transfer.list.table.text()),
        table_(quoted_name(transfer.list.table.text())),
        column_(quoted_name(transfer.list.column.text())) {}

  ListFileResult import(ListReader& reader);
  void add(const StringList& entries);
  ListFileResult remove(ListReader& reader);

 private:
  std::uint64_t import_singly(ListReader& reader);
  std::uint64_t import_in_bulk(ListReader& reader);
  std::uint64_t remove_singly(ListReader& reader);
  std::uint64_t remove_in_bulk(ListReader& reader);
  std::vector<bool> new_entries(ListReader& reader);
  void add(ListReader& reader, const std::vector<bool>& is_new);
  Query addition_of_missing();
  std::vector<std::int64_t> matching_rows(ListReader& reader);

  ListFileResult count(ListReader& reader);
  std::int64_t count_rows();
  template <typename Action>
  void each_entry(ListReader& reader, Action action);
  bool in_bulk() const { return entries_ > bulk_entries && entries_ * 8 > rows_; }
  std::vector<std::string> drop_indexes();
  void create_indexes(const std::vector<std::string>& statements);
  void tick(const char* what, std::uint64_t done, std::uint64_t total);

  std::uint64_t passes() const { return static_cast<std::uint64_t>(entries_) / entries_a_pass_ + 1; }

  Engine& engine_;
  ConsoleServices& console_;
  std::uint64_t entries_a_pass_;
  std::string name_;
  std::string table_;
  std::string column_;
  std::int64_t entries_ = 0;
  std::int64_t rows_ = 0;
};

// Goes through the entries again, with their numbers. They must be as many as before.
template <typename Action>
void Work::each_entry(ListReader& reader, Action action) {
  std::string_view entry;
  std::int64_t number = 0;
  reader.rewind();
  for (; reader.next(entry) && number < entries_; ++number) action(entry, static_cast<std::size_t>(number));
  if (number != entries_ || reader.next(entry)) throw Error(EAGAIN, "the list file is being written");
}

ListFileResult Work::import(ListReader& reader) {
  ListFileResult result = count(reader);
  result.changed = in_bulk() ? import_in_bulk(reader) : import_singly(reader);
  return result;
}

std::uint64_t Work::import_in_bulk(ListReader& reader) {
  const LargeCache cache(engine_);
  Atomic atomic(engine_);
  rows_ = count_rows();
  const std::vector<bool> is_new = new_entries(reader);
  const auto added = std::count(is_new.begin(), is_new.end(), true);
  if (added > 0) {
    std::vector<std::string> indexes;
    if (added * 4 > rows_) indexes = drop_indexes();
    add(reader, is_new);
    create_indexes(indexes);
  }
  atomic.commit();
  return static_cast<std::uint64_t>(added);
}

std::uint64_t Work::import_singly(ListReader& reader) {
  Atomic atomic(engine_);
  Query insert = addition_of_missing();
  std::uint64_t added = 0;
  each_entry(reader, [&](std::string_view entry, std::size_t) {
    added += static_cast<std::uint64_t>(insert.bind(1, entry).run());
  });
  atomic.commit();
  return added;
}

void Work::add(const StringList& entries) {
  Atomic atomic(engine_);
  Query insert = addition_of_missing();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (!trim(entries[i]).empty()) insert.bind(1, entries[i]).run();
    tick("import ", i, entries.size());
  }
  atomic.commit();
}

Query Work::addition_of_missing() {
  return {engine_, "INSERT INTO " + table_ + " (" + column_ + ") SELECT ?1 WHERE NOT EXISTS (SELECT 1 FROM " +
                       table_ + " WHERE " + column_ + "=?1)"};
}

// For each entry of the file, whether it is to be added: it is the first of its kind in the file, and the
// table lacks it. A file with too many entries is read several times, and each pass covers a part of them.
std::vector<bool> Work::new_entries(ListReader& reader) {
  std::vector<bool> result(static_cast<std::size_t>(entries_));
  EntryHasher hasher;
  const std::uint64_t parts = passes();
  EntrySet set(static_cast<std::size_t>(static_cast<std::uint64_t>(entries_) / parts * 5 / 4 + 1024));
  for (std::uint64_t part = 0; part < parts; ++part) {
    if (part != 0) set.clear();
    each_entry(reader, [&](std::string_view entry, std::size_t i) {
      const EntryHasher::Hash hash = hasher(entry);
      if (hash.low % parts == part && set.insert(hash, static_cast<std::uint32_t>(i))) result[i] = true;
    });
    Query rows(engine_, "SELECT " + column_ + " FROM " + table_);
    while (rows_ > 0 && rows.step()) {
      const EntryHasher::Hash hash = hasher(rows.text(0));
      if (hash.low % parts != part) continue;
      if (const std::optional<std::uint32_t> i = set.find(hash)) result[*i] = false;
    }
  }
  return result;
}

void Work::add(ListReader& reader, const std::vector<bool>& is_new) {
  Query insert(engine_, "INSERT INTO " + table_ + " (" + column_ + ") VALUES (?1)");
  each_entry(reader, [&](std::string_view entry, std::size_t i) {
    if (is_new[i]) insert.bind(1, entry).run();
    tick("import ", i, is_new.size());
  });
}

ListFileResult Work::remove(ListReader& reader) {
  ListFileResult result = count(reader);
  result.changed = in_bulk() ? remove_in_bulk(reader) : remove_singly(reader);
  return result;
}

std::uint64_t Work::remove_in_bulk(ListReader& reader) {
  const LargeCache cache(engine_);
  Atomic atomic(engine_);
  rows_ = count_rows();
  const std::vector<std::int64_t> keys = matching_rows(reader);
  if (static_cast<std::int64_t>(keys.size()) == rows_) {
    engine_.run(("DELETE FROM " + table_).c_str());
  } else if (!keys.empty()) {
    std::vector<std::string> indexes;
    if (static_cast<std::int64_t>(keys.size()) * 4 > rows_) indexes = drop_indexes();
    Query deletion(engine_, "DELETE FROM " + table_ + " WHERE rowid=?1");
    for (std::size_t i = 0; i < keys.size(); ++i) {
      deletion.bind(1, keys[i]).run();
      tick("delete ", i, keys.size());
    }
    create_indexes(indexes);
  }
  atomic.commit();
  return keys.size();
}

std::uint64_t Work::remove_singly(ListReader& reader) {
  Atomic atomic(engine_);
  Query deletion(engine_, "DELETE FROM " + table_ + " WHERE " + column_ + "=?1");
  std::uint64_t removed = 0;
  each_entry(reader, [&](std::string_view entry, std::size_t) {
    removed += static_cast<std::uint64_t>(deletion.bind(1, entry).run());
  });
  atomic.commit();
  return removed;
}

// The keys of the rows that the file names, ascending.
std::vector<std::int64_t> Work::matching_rows(ListReader& reader) {
  std::vector<std::int64_t> result;
  EntryHasher hasher;
  const std::uint64_t parts = passes();
  EntrySet set(static_cast<std::size_t>(static_cast<std::uint64_t>(entries_) / parts * 5 / 4 + 1024));
  for (std::uint64_t part = 0; part < parts; ++part) {
    if (part != 0) set.clear();
    each_entry(reader, [&](std::string_view entry, std::size_t) {
      const EntryHasher::Hash hash = hasher(entry);
      if (hash.low % parts == part) set.insert(hash, 0);
    });
    Query rows(engine_, "SELECT rowid, " + column_ + " FROM " + table_);
    while (rows.step()) {
      const EntryHasher::Hash hash = hasher(rows.text(1));
      if (hash.low % parts == part && set.find(hash)) result.push_back(rows.number(0));
    }
  }
  std::sort(result.begin(), result.end());
  return result;
}

// Goes through the whole file, so that a broken one is refused before anything is locked.
ListFileResult Work::count(ListReader& reader) {
  std::string_view entry;
  while (reader.next(entry)) ++entries_;
  if (static_cast<std::uint64_t>(entries_) >= most_entries)
    throw Error(EFBIG, "the list file has too many entries");
  if (entries_ > bulk_entries) rows_ = count_rows();
  return {static_cast<std::uint64_t>(entries_), 0, reader.comments(), reader.refused()};
}

std::int64_t Work::count_rows() {
  return engine_.number(("SELECT count(*) FROM " + table_).c_str());
}

// Filling or emptying a table is faster without its indexes, which are created again afterwards.
std::vector<std::string> Work::drop_indexes() {
  Query query(
      engine_,
      "SELECT name, sql FROM sqlite_schema WHERE type='index' AND tbl_name=?1 COLLATE NOCASE AND sql NOT NULL"
      " AND sql NOT LIKE '%UNIQUE%'");
  query.bind(1, name_);
  std::vector<std::string> names;
  std::vector<std::string> statements;
  while (query.step()) {
    names.emplace_back(query.text(0));
    statements.emplace_back(query.text(1));
  }
  query.reset();
  for (const std::string& name : names) engine_.run(("DROP INDEX " + quoted_name(name)).c_str());
  return statements;
}

void Work::create_indexes(const std::vector<std::string>& statements) {
  for (const std::string& statement : statements) engine_.run(statement.c_str());
}

void Work::tick(const char* what, std::uint64_t done, std::uint64_t total) {
  if (done % report_interval == 0) console_.show_progress({what + name_, done, total});
}

// The path was checked; others may have put a link to a file of the console's there since.
void require_foreign_file(const ConsoleServices& console, const std::filesystem::path& path,
                          const std::filesystem::path& opened) {
  if (!console_folder::is_own(console.folder(), opened)) return;
  throw Error(EACCES, path.string() + ": belongs to the console");
}

}  // namespace

ListFileResult import_list(const ListTransfer& transfer, const std::filesystem::path& path) {
  require_foreign_file(transfer.console, path);
  ListReader reader(path, transfer.list.kind);
  require_foreign_file(transfer.console, path, reader.opened());
  return Work(transfer).import(reader);
}

void add_entries(const ListTransfer& transfer, const StringList& entries) {
  Work(transfer).add(entries);
}

ListFileResult delete_list(const ListTransfer& transfer, const std::filesystem::path& path) {
  require_foreign_file(transfer.console, path);
  ListReader reader(path, transfer.list.kind);
  require_foreign_file(transfer.console, path, reader.opened());
  return Work(transfer).remove(reader);
}

void require_foreign_file(const ConsoleServices& console, const std::filesystem::path& path) {
  if (console_folder::is_own(console.folder(), path)) {
    throw Error(EACCES, path.string() + ": belongs to the console");
  }
}

}  // namespace zrl::sqlite
