#include <map>

#include "core/text/list_entry.h"
#include "core/text/text.h"
#include "pages/installed.h"
#include "pages/traffic/list_search.h"

// Finding every entry that touches a text, with a million entries in each list that is asked by its index,
// and a hundred thousand keywords, beside the bare statements.
namespace zrl::bench {

namespace {

constexpr int entries = 1'000'000;
constexpr int keywords = 100'000;
constexpr std::string_view subjects[] = {"198.18.77.5", "mail.sub.host4711.example", "bob@host4711.example"};

struct Client final : DatabaseClient {
  using DatabaseClient::DatabaseClient;
};

Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    std::string sql;
    const auto fill = [&](std::string_view table, std::string_view column, int count, std::string_view text) {
      sql.append("DELETE FROM ")
          .append(table)
          .append(";INSERT INTO ")
          .append(table)
          .append(" (")
          .append(column);
      sql.append(") ").append(numbers(count, "SELECT " + std::string(text) + " FROM n")).append(";");
    };
    for (const char* table : {"blacklist", "whitelist"})
      fill(table, "entry", entries, "'host' || i || '.example'");
    for (const char* table : {"blackmail", "whitemail"})
      fill(table, "entry", entries, "'u' || i || '@x.example'");
    for (const char* table : {"Blackhost", "Whitehost"})
      fill(table, "IPNumber", entries,
           "(i % 223 + 1) || '.' || (i / 65536) || '.' || (i / 256 % 256) || '.' || i % 256");
    for (const char* table : {"blacksub", "whitesub"})
      fill(table, "subnet", entries,
           "(i % 223 + 1) || '.' || (i / 65536) || '.' || (i / 256 % 256) || '.' || i % 256 || '/' || (8 + i "
           "% 24)");
    fill("words", "entry", keywords, "'cheap thing number ' || i");
    made.fill(sql);
    return true;
  }();
  require(filled, "no entries");
  return made;
}

Client& client() {
  static Client made(installed().console);
  static const bool connected = made.connect_database();
  require(connected, "no connection");
  return made;
}

void search() {
  for (const std::string_view subject : subjects)
    require(search_lists(client(), installed().console, subject_of(subject)).complete, "not complete");
}

// The same statements, and the words compared in a plain loop.
class BareSearch {
 public:
  explicit BareSearch(Bare& bare) {
    for (const KnownList& list : known_lists()) {
      const std::string select =
          "SELECT " + std::string(list.table.column.text()) + " FROM " + std::string(list.table.table.text());
      const bool by_words = list.matches.has(Match::word);
      const std::string condition =
          by_words ? " WHERE entry<>'' ORDER BY rowid"
                   : " WHERE " + std::string(list.table.column.text()) + "=?1 ORDER BY rowid";
      statements_.emplace(list.table.name, std::make_unique<Prepared>(bare, select + condition));
    }
  }

  void run() {
    for (const std::string_view typed : subjects) {
      const Subject subject = subject_of(typed);
      for (const KnownList& list : known_lists()) {
        Prepared& statement = *statements_.at(list.table.name);
        if (list.matches.has(Match::word)) {
          find(statement.read(), lower(subject.text));
        } else {
          for (const Candidate& one : candidates(subject, list)) statement.run(one.entry);
        }
      }
    }
  }

 private:
  static void find(const Arena& words, const std::string& text) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < words.count(); ++i)
      found += text.find(keyword_text(words[i])) != std::string::npos ? 1 : 0;
    require(found == 0, "a word that is not there");
  }

  std::map<std::string_view, std::unique_ptr<Prepared>> statements_;
};

}  // namespace

void add_lookup(Suite& suite) {
  suite.add(Measure{"look-up of three texts, in 0.3 s (1 M entries, 100,000 keywords)", 1.0,
                    [] { return quickest([] { return seconds_of(search); }); }, [] { return 0.3; }});
  suite.add(Comparison{"look-up, against its bare statements", 1.3, [] { return seconds_of(search); },
                       [] {
                         static const std::unique_ptr<Bare> bare = installed().bare();
                         static BareSearch made(*bare);
                         return seconds_of([] { made.run(); });
                       }});
}

}  // namespace zrl::bench
