#include "core/contracts/entry_search.h"

#include <algorithm>
#include <utility>

#include "components/sqlite/sqlite.h"
#include "components/sqlite/sqlite_connection.h"
#include "core/text/error.h"
#include "core/text/folded_search.h"
#include "core/text/text.h"

namespace zrl::sqlite {

namespace {

using Clock = std::chrono::steady_clock;

// Behind every text that goes on from where it is put.
constexpr std::string_view last_character = "\xF4\x8F\xBF\xBF";
// The clock is looked at once for so many rows.
constexpr std::size_t rows_a_look = 512;

std::string restriction(const EntrySearch::List& list) {
  if (list.entries == EntrySearch::Entries::all) return {};
  const std::string at = "instr(" + quoted_name(list.table.column.text()) + ",'@')";
  return " AND " + at + (list.entries == EntrySearch::Entries::with_at ? ">0" : "=0");
}

class Search {
 public:
  Search(Engine& engine, std::span<const EntrySearch::List> lists, std::string_view text, std::size_t most)
      : engine_(engine), lists_(lists), text_(text), most_(most), search_(text) {}

  // Round the lists, so that a long one does not crowd the others out.
  void find_beginnings(std::vector<EntrySearch::Hit>& hits) {
    std::vector<std::vector<std::string>> found;
    for (const EntrySearch::List& list : lists_) found.push_back(beginnings(list));
    for (std::size_t row = 0; row < most_; ++row) {
      for (std::size_t list = 0; list < found.size() && hits.size() < most_; ++list) {
        if (row < found[list].size()) hits.push_back({list, std::move(found[list][row])});
      }
    }
    std::ranges::stable_partition(
        hits, [this](const EntrySearch::Hit& hit) { return equals_ignoring_case(hit.entry, text_); });
  }

  // Entries that contain the text and do not begin with it.
  std::optional<EntrySearch::Place> find_inside(EntrySearch::Place place, Clock::time_point end,
                                                std::vector<EntrySearch::Hit>& hits) {
    for (; place.list < lists_.size(); place = {place.list + 1, 0}) {
      const EntrySearch::List& list = lists_[place.list];
      const std::string column = quoted_name(list.table.column.text());
      Query rows(engine_, "SELECT rowid," + column + " FROM " + quoted_name(list.table.table.text()) +
                              " WHERE rowid>?1" + restriction(list) + " ORDER BY rowid");
      rows.bind(1, place.row);
      for (std::size_t read = 1; rows.step(); ++read) {
        const std::string_view entry = rows.text(1);
        const std::size_t at = search_.find(entry, 0);
        if (at != entry.npos && at > 0) hits.push_back({place.list, std::string(entry)});
        if (hits.size() >= most_) return {};
        if (read % rows_a_look == 0 && Clock::now() >= end) {
          return EntrySearch::Place{place.list, rows.number(0)};
        }
      }
      if (Clock::now() >= end && place.list + 1 < lists_.size()) return EntrySearch::Place{place.list + 1, 0};
    }
    return {};
  }

 private:
  std::vector<std::string> beginnings(const EntrySearch::List& list) {
    const std::string column = quoted_name(list.table.column.text());
    const std::string behind = std::string(text_) + std::string(last_character);
    Query rows(engine_, "SELECT " + column + " FROM " + quoted_name(list.table.table.text()) + " WHERE " +
                            column + ">=?1 AND " + column + "<?2" + restriction(list) + " ORDER BY " +
                            column + " LIMIT ?3");
    rows.bind(1, text_).bind(2, behind).bind(3, static_cast<std::int64_t>(most_));
    std::vector<std::string> found;
    while (rows.step()) found.emplace_back(rows.text(0));
    return found;
  }

  Engine& engine_;
  std::span<const EntrySearch::List> lists_;
  std::string_view text_;
  std::size_t most_;
  FoldedSearch search_;
};

class SqliteEntrySearch : public EntrySearch {
 public:
  explicit SqliteEntrySearch(ConsoleServices& console) : console_(console) {}

  Found find(std::span<const List> lists, std::string_view text, const std::optional<Place>& from,
             std::size_t most, std::chrono::milliseconds time) override {
    Found found;
    if (text.empty() || text.find('\0') != text.npos || most == 0) return found;
    const Clock::time_point end = Clock::now() + time;
    Session& session = connection().session(Engine::Use::read);
    Search search(session.engine, lists, text, most);
    if (!from) search.find_beginnings(found.hits);
    if (found.hits.size() < most) found.next = search.find_inside(from.value_or(Place{}), end, found.hits);
    return found;
  }

 private:
  SqliteConnection& connection() {
    const std::string provider = console_.data_provider();
    if (!connection_ || provider != provider_) {
      connection_ = console_.components().create<Database>()->open_database(provider);
      provider_ = provider;
    }
    auto* connection = dynamic_cast<SqliteConnection*>(connection_.get());
    if (connection == nullptr) {
      throw Error(error_number::type_mismatch, "the connection belongs to another database component");
    }
    return *connection;
  }

  ConsoleServices& console_;
  ConnectionHandle connection_;
  std::string provider_;
};

}  // namespace

std::shared_ptr<EntrySearch> make_entry_search(ConsoleServices& console) {
  return std::make_shared<SqliteEntrySearch>(console);
}

}  // namespace zrl::sqlite
