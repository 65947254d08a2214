#include <algorithm>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <istream>
#include <map>
#include <ostream>

#include <stdlib.h>
#include <unistd.h>

#include "core/entry_notes.h"
#include "core/list_catalogue.h"
#include "core/list_changes.h"
#include "core/text/letter_case.h"
#include "core/text/printable.h"
#include "core/text/text.h"
#include "core/text/utf8.h"
#include "host/command/commands.h"
#include "host/command/plain_console.h"

namespace zrl::command {

namespace {

namespace json = boost::json;

const KnownList& list_named(const std::string& name) {
  const KnownList* known = find_list(lower(name));
  if (known == nullptr)
    throw UsageError("there is no list \"" + printable(name) + "\"; \"zrlconsole list\" names them");
  return *known;
}

// The database of the folder, and the one action that the command is.
class ListSession {
 public:
  explicit ListSession(const std::filesystem::path& folder) : plain(folder), client(plain.console) {
    plain.prepare_folder();
    if (!client.connect_database()) throw std::runtime_error(last_failure());
    plain.console.begin_action();
  }
  ListSession(const ListSession&) = delete;
  ListSession& operator=(const ListSession&) = delete;
  ~ListSession() { plain.console.end_action(); }

  // Makes the changes so far last. Raises an error if they have been undone.
  void commit() {
    if (!plain.console.writes().commit()) throw std::runtime_error("nothing was changed: " + last_failure());
  }

  StringList entries(const KnownList& list) {
    auto rows = client.rows(list.table);
    if (!rows) throw std::runtime_error(last_failure());
    return std::move(*rows);
  }

  std::string last_failure() { return plain.last_failure(); }

  PlainConsole plain;
  struct Client final : DatabaseClient {
    using DatabaseClient::DatabaseClient;
  } client;
};

json::string text_json(std::string_view text) {
  return json::string(valid_utf8(text));
}

// All notes of a list, by entries in lower case.
using Notes = std::map<std::string, EntryNote, std::less<>>;

Notes notes_of(ListSession& session, const KnownList& list) {
  Notes notes;
  const auto rows = session.client.open(
      "SELECT * from entry_notes where list='" + value(list.table.name) + "'", Connection::Access::read_only);
  if (!rows) throw std::runtime_error(session.last_failure());
  session.client.read_rows("entry_notes", [&] {
    for (; !rows->at_end(); rows->move_next()) {
      notes[lower(rows->text("entry"))] = {std::string(rows->text("comment")),
                                           std::string(rows->text("expires"))};
    }
  });
  return notes;
}

}  // namespace

int run_list_names(const Arguments& arguments, std::ostream& out) {
  ListSession session(arguments.folder);
  json::array lists;
  for (const KnownList& list : known_lists()) {
    const auto count =
        session.client.count_value("select " + list.table.column + " from " + list.table.table);
    if (!count) throw std::runtime_error(session.last_failure());
    const std::string title = session.plain.console.localisation().translate(list.title);
    if (arguments.json) {
      lists.push_back({{"name", list.table.name}, {"title", title}, {"count", *count}});
    } else {
      out << std::left << std::setw(24) << list.table.name << std::right << std::setw(10) << *count << "  "
          << title << '\n';
    }
  }
  if (arguments.json) out << json::serialize(lists) << '\n';
  return success;
}

// Entries go out one by one: a list may have a million.
int run_list_show(const Arguments& arguments, std::ostream& out) {
  const KnownList& list = list_named(arguments.list.name);
  ListSession session(arguments.folder);
  const StringList entries = session.entries(list);
  const Notes notes = notes_of(session, list);
  const std::string wanted = lower_unicode(arguments.list.filter);
  std::uint64_t shown = 0;
  if (arguments.json) out << '[';
  for (std::size_t i = 0; i < entries.size() && shown < arguments.list.limit; ++i) {
    if (!wanted.empty() && lower_unicode(entries[i]).find(wanted) == std::string::npos) continue;
    const auto noted = notes.empty() ? notes.end() : notes.find(lower(entries[i]));
    const EntryNote note = noted == notes.end() ? EntryNote() : noted->second;
    if (arguments.json) {
      const json::object row{{"entry", text_json(entries[i])},
                             {"comment", text_json(note.comment)},
                             {"expires", text_json(note.expires)}};
      out << (shown == 0 ? "" : ",\n") << json::serialize(row);
    } else {
      out << printable(entries[i]);
      if (!note.expires.empty()) out << "  until " << printable(note.expires);
      if (!note.comment.empty()) out << "  # " << printable(note.comment);
      out << '\n';
    }
    ++shown;
  }
  if (arguments.json) out << "]\n";
  return success;
}

namespace {

// The outcome of a change, by what became of each entry.
struct Outcomes {
  void take(std::string_view given, const EntryChange& change) {
    const auto add = [&](json::array& list) { list.push_back(text_json(given)); };
    switch (change.state) {
      case EntryChange::State::added:
        return add(added);
      case EntryChange::State::already:
        return add(already);
      case EntryChange::State::removed:
        return add(removed);
      case EntryChange::State::missing:
        return add(missing);
      case EntryChange::State::refused:
        refused.push_back({{"entry", text_json(given)}, {"reason", text_json(change.reason)}});
    }
  }

  int status() const { return refused.empty() && missing.empty() ? success : failure; }

  json::array added, already, removed, missing, refused;
};

void print_entries(std::ostream& out, std::string_view what, const json::array& entries) {
  for (const json::value& entry : entries) out << what << ": " << printable(entry.as_string()) << '\n';
}

void print(std::ostream& out, const Outcomes& outcomes) {
  print_entries(out, "added", outcomes.added);
  print_entries(out, "already there", outcomes.already);
  print_entries(out, "removed", outcomes.removed);
  print_entries(out, "missing", outcomes.missing);
  for (const json::value& one : outcomes.refused) {
    out << "refused: " << printable(one.at("entry").as_string()) << ": "
        << printable(one.at("reason").as_string()) << '\n';
  }
}

using NamedOutcome = std::pair<std::string_view, const json::array&>;

// Prints what became of the entries, and returns the exit status. `told` are the members that the command's
// JSON has besides the refused entries, in their order.
int finish(const Arguments& arguments, const KnownList& list, const Outcomes& outcomes,
           std::initializer_list<NamedOutcome> told, std::ostream& out) {
  if (arguments.json) {
    json::object result{{"list", list.table.name}};
    for (const auto& [name, entries] : told) result[name] = entries;
    result["refused"] = outcomes.refused;
    result["change"] = nullptr;
    out << json::serialize(result) << '\n';
  } else {
    print(out, outcomes);
  }
  return outcomes.status();
}

EntryNote note_of_options(const ListOptions& options, const Console& console) {
  const auto day = last_day(options.expires, console.time_stamp());
  if (!day) throw UsageError("--expires: " + std::string(not_a_last_day));
  if (options.comment.size() > EntryNote::longest_comment)
    throw UsageError("--comment is longer than 1000 bytes");
  return {std::string(trim(options.comment)), *day};
}

}  // namespace

int run_list_add(const Arguments& arguments, std::ostream& out) {
  const KnownList& list = list_named(arguments.list.name);
  ListSession session(arguments.folder);
  const EntryNote note = note_of_options(arguments.list, session.plain.console);
  Outcomes outcomes;
  for (const std::string& entry : arguments.list.entries) {
    const EntryChange change = add_entry(session.client, session.plain.console, list.table, entry);
    outcomes.take(entry, change);
    const bool stale = change.state == EntryChange::State::added &&
                       !note_of(session.client, list.table, change.entry).empty();
    if (change.done() && (stale || !note.empty())) save_note(session.client, list.table, change.entry, note);
  }
  session.commit();
  return finish(arguments, list, outcomes, {{"added", outcomes.added}, {"already", outcomes.already}}, out);
}

int run_list_remove(const Arguments& arguments, std::ostream& out) {
  const KnownList& list = list_named(arguments.list.name);
  ListSession session(arguments.folder);
  Outcomes outcomes;
  for (const std::string& entry : arguments.list.entries) {
    const EntryChange change =
        remove_entry(session.client, session.plain.console, list.table, entry, IfMissing::leave);
    outcomes.take(entry, change);
    if (change.done() && !note_of(session.client, list.table, change.entry).empty())
      save_note(session.client, list.table, change.entry, {});
  }
  session.commit();
  return finish(arguments, list, outcomes, {{"removed", outcomes.removed}, {"missing", outcomes.missing}},
                out);
}

namespace {

// What comes from standard input lies in a file of its own while it is imported.
class SpooledInput {
 public:
  explicit SpooledInput(std::istream& in) {
    std::string path = (std::filesystem::temp_directory_path() / "list.XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) throw std::runtime_error("standard input cannot be stored in " + printable(path));
    close(descriptor);
    path_ = path;
    std::ofstream file(path_, std::ios::binary);
    if (in.peek() != std::istream::traits_type::eof()) file << in.rdbuf();
    file.close();
    if (!file) throw std::runtime_error("standard input cannot be stored in " + printable(path));
  }
  SpooledInput(const SpooledInput&) = delete;
  SpooledInput& operator=(const SpooledInput&) = delete;
  ~SpooledInput() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

int run_list_import(const Arguments& arguments, std::istream& in, std::ostream& out) {
  const KnownList& list = list_named(arguments.list.name);
  ListSession session(arguments.folder);
  std::optional<SpooledInput> spooled;
  if (arguments.list.file == "-") spooled.emplace(in);
  const std::filesystem::path path =
      spooled ? spooled->path() : std::filesystem::absolute(arguments.list.file);
  const auto result = session.client.import_file(list.table, path.string());
  for (const std::string_view flag : list.flags) session.client.raise_flag(flag);
  if (!result) throw std::runtime_error(session.last_failure());
  out << result->changed << " added, " << result->entries - result->changed << " already there, "
      << result->comments << " comments, " << result->refused << " lines refused\n";
  return result->refused == 0 ? success : failure;
}

int run_list_export(const Arguments& arguments, std::ostream& out) {
  const KnownList& list = list_named(arguments.list.name);
  ListSession session(arguments.folder);
  if (arguments.list.file != "-") {
    const std::filesystem::path path = std::filesystem::absolute(arguments.list.file);
    if (!session.client.export_file(list.table, path.string(), arguments.list.overwrite))
      throw std::runtime_error(session.last_failure());
    return success;
  }
  const StringList entries = session.entries(list);
  for (std::size_t i = 0; i < entries.size(); ++i) {
    std::string line(entries[i]);
    std::ranges::replace_if(line, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    out << line << '\n';
  }
  return success;
}

}  // namespace zrl::command
