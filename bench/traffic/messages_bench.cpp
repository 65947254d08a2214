#include "pages/logs/messages_page.h"
#include "traffic/log_rows.h"

// A window of the page of messages on logs of ten million rows, after each change of what is shown. The bare
// side reads as many rows of each log that can have some, by a statement that an index answers.
namespace zrl::bench {

namespace {

constexpr std::uint64_t window = 100;
constexpr double longest_window = 50;  // milliseconds
constexpr double milliseconds = 1000;

constexpr const char* kinds[] = {"iplog", "predatalog", "subjectlog", "bodylog", "avlog"};

struct Choice {
  const char* name;
  const char* period = "all";
  const char* kind = "all";
  const char* verdict = "all";
  const char* filter = "";
  // Of the bare statements, and the logs that they read, by their places in `kinds`.
  const char* where = "";
  const char* logs = "01234";
};

constexpr Choice choices[] = {
    {.name = "all"},
    {.name = "of a day", .period = "day", .where = "servertime>=datetime('now','localtime','-1 day')"},
    {.name = "of the kind header", .kind = "header", .logs = "1"},
    {.name = "allowed", .verdict = "allowed", .where = "status=1", .logs = "01"},
    {.name = "from: a sender",
     .filter = "from:news@letters.example",
     .where = "mailfrom='news@letters.example'",
     .logs = "1234"},
    {.name = "ip: an address", .filter = "ip:10.99.9.9", .where = "IPNumber='10.99.9.9'"},
    {.name = "ip: a network",
     .filter = "ip:10.3.7.0/24",
     .where = "IPNumber>='10.3.7.' AND IPNumber<'10.3.7/'"},
};

MessagesPage& page() {
  static const std::unique_ptr<MessagesPage> shown = busy_console().shown<MessagesPage>();
  return *shown;
}

double show(const Choice& choice) {
  MessagesPage& shown = page();
  shown.period.set_text(choice.period);
  shown.kind.set_text(choice.kind);
  shown.rows.set_filter(choice.filter);
  // What is chosen is read when this one is.
  shown.verdict.set_text("neutral");
  std::uint64_t rows = 0;
  const double seconds = seconds_of([&] {
    shown.verdict.user_type(choice.verdict);
    rows = shown.rows.read(0, window).size();
  });
  require(rows > 0, choice.name);
  return seconds;
}

std::string bare_statement(const Choice& choice) {
  std::string statement;
  for (const char* log = choice.logs; *log != '\0'; ++log) {
    const std::string table = kinds[*log - '0'];
    const std::string where = *choice.where == '\0' ? "" : " WHERE " + std::string(choice.where);
    if (!statement.empty()) statement += " UNION ALL ";
    statement += "SELECT * FROM (SELECT servertime||ID||IPNumber FROM " + table + where +
                 " ORDER BY servertime DESC, ID DESC LIMIT " + std::to_string(window) + ")";
  }
  return statement;
}

double read_bare(const Choice& choice) {
  static const std::unique_ptr<Bare> bare = busy_console().bare();
  Prepared rows(*bare, bare_statement(choice));
  return seconds_of([&] { rows.read(); });
}

}  // namespace

void add_messages(Suite& suite) {
  for (const Choice& choice : choices) {
    suite.add(Comparison{std::string("messages, a window: ") + choice.name, 1.3, [&] { return show(choice); },
                         [&] { return read_bare(choice); }});
  }
  suite.add(Measure{"messages, the slowest of these windows; goal: 50 ms", 1.0,
                    [] {
                      double slowest = 0;
                      for (const Choice& choice : choices) {
                        slowest = std::max(slowest, quickest([&] { return show(choice); }));
                      }
                      return slowest * milliseconds;
                    },
                    [] { return longest_window; }});
}

}  // namespace zrl::bench
