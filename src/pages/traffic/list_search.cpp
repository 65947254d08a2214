#include "pages/traffic/list_search.h"

#include <algorithm>
#include <chrono>

#include "core/entry_notes.h"
#include "core/text/list_entry.h"
#include "core/text/text.h"

namespace zrl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds longest_for_expressions{2};
constexpr std::int64_t most_neighbours = 20'000;

class Search {
 public:
  Search(DatabaseClient& client, Console& console, const Subject& subject)
      : client_(client), console_(console), subject_(subject), words_(lower(subject.text)) {}

  ListFindings run() {
    if (subject_.kind == Subject::Kind::nothing) return {};
    for (const KnownList& list : known_lists()) {
      first_of_list_ = found_.entries.size();
      if (list.matches.has(Match::word)) {
        find_words(list);
      } else {
        find_candidates(list);
      }
      finish(list);
    }
    return std::move(found_);
  }

 private:
  // Stored with their quotes escaped where the list's page does so; without, no statement can hold them.
  void find_candidates(const KnownList& list) {
    for (const Candidate& candidate : candidates(subject_, list)) {
      const std::string entry = escape_quotes(candidate.entry);
      const Statement condition = list.table.column + "='" + value(entry) + "'";
      if (!condition.fault().empty()) continue;
      take(list, client_.rows(list.table, condition), [&](std::string_view) { return candidate.match; });
    }
    if (list.matches.has(Match::network)) find_neighbours(list);
  }

  // Networks whose address has bits beyond the prefix cannot be guessed. Those that begin like the subject
  // are read, as many of its parts being equal as it takes to keep them few.
  void find_neighbours(const KnownList& list) {
    if (subject_.kind != Subject::Kind::address && subject_.kind != Subject::Kind::network) return;
    std::size_t end = 0;
    for (int parts = 1; parts <= 3; ++parts) {
      end = subject_.text.find('.', end) + 1;
      const std::string from = subject_.text.substr(0, end);
      const std::string to = subject_.text.substr(0, end - 1) + "/";  // the character that follows the dot
      const Literal column = list.table.column;
      const Statement few = "select " + column + " from " + list.table.table + " where " + column + ">='" +
                            value(from) + "' and " + column + "<'" + value(to) + "' limit 20001";
      const auto count = client_.count_value(few);
      if (!count || *count > most_neighbours) continue;
      take(
          list,
          client_.rows(list.table, column + ">='" + value(from) + "' and " + column + "<'" + value(to) + "'"),
          [this](std::string_view entry) {
            return holds(entry, subject_) ? std::optional(Match::network) : std::nullopt;
          });
      return;
    }
  }

  void find_words(const KnownList& list) {
    const Clock::time_point deadline = Clock::now() + longest_for_expressions;
    take(list, client_.rows(list.table, Statement("entry<>''")),
         [&](std::string_view entry) -> std::optional<Match> {
           if (!is_regex_entry(entry)) {
             return words_.find(keyword_text(entry)) != words_.npos ? std::optional(Match::word)
                                                                    : std::nullopt;
           }
           if (Clock::now() > deadline) {
             found_.complete = false;
             return {};
           }
           const bool matches = !console_.regex_match(entry, subject_.text).empty();
           return matches ? std::optional(Match::expression) : std::nullopt;
         });
  }

  template <typename MatchOf>
  void take(const KnownList& list, const std::optional<StringList>& rows, const MatchOf& match_of) {
    if (!rows) found_.complete = false;
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
      const std::optional<Match> match = match_of((*rows)[i]);
      if (!match) continue;
      if (found_.entries.size() >= ListFindings::most_entries) {
        ++found_.left_out;
      } else if (!is_known((*rows)[i])) {
        found_.entries.push_back({.list = &list, .entry = std::string((*rows)[i]), .match = *match});
      }
    }
  }

  bool is_known(std::string_view entry) const {
    return std::any_of(found_.entries.begin() + static_cast<std::ptrdiff_t>(first_of_list_),
                       found_.entries.end(),
                       [&](const ListFinding& one) { return equals_ignoring_case(one.entry, entry); });
  }

  void finish(const KnownList& list) {
    if (first_of_list_ == found_.entries.size()) return;
    const ListSwitch* off = switched_off(client_, list);
    for (std::size_t i = first_of_list_; i < found_.entries.size(); ++i) {
      ListFinding& finding = found_.entries[i];
      finding.switched_off = off;
      const EntryNote note = note_of(client_, list.table, finding.entry);
      finding.comment = note.comment;
      finding.expires = note.expires;
    }
  }

  DatabaseClient& client_;
  Console& console_;
  const Subject& subject_;
  std::string words_;
  ListFindings found_;
  std::size_t first_of_list_ = 0;
};

}  // namespace

ListFindings search_lists(DatabaseClient& client, Console& console, const Subject& subject) {
  return Search(client, console, subject).run();
}

const ListSwitch* switched_off(DatabaseClient& client, const KnownList& list) {
  const ListSwitch* off = nullptr;
  for (const ListSwitch& one : list.switches) {
    const auto value = client.read_number(one.option);
    const bool is_on = !value || *value != 0;
    if (is_on && !list.all_switches) return nullptr;
    if (!is_on && off == nullptr) off = &one;
  }
  return off;
}

}  // namespace zrl
