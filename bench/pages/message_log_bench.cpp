#include <algorithm>

#include "pages/installed.h"
#include "pages/logs/avlog_page.h"
#include "pages/logs/keywordlog_page.h"

// The logs of messages that were rejected for a keyword or an attachment, 200,000 rows each. The
// bare side reads the four columns of the same rows and joins them to the same lines.
namespace zrl::bench {

namespace {

constexpr int rows = 200'000;

Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    const std::string columns =
        "SELECT '10.0.'||(i%256)||'.'||(i/256%256), 'Sender'||(i*7919%5000)||'@example.com', "
        "'user'||(i%50)||'@example.org', 'Reason '||(i%300), datetime(1100000000+i*60, 'unixepoch') FROM n";
    made.fill(
        numbers(rows, "INSERT INTO subjectlog (IPNumber, mailfrom, mailto, keyword, servertime) " + columns));
    made.fill(numbers(rows, "INSERT INTO avlog (IPNumber, mailfrom, mailto, reason, servertime) " + columns));
    return true;
  }();
  require(filled, "no rows");
  return made;
}

Bare& bare() {
  static const std::unique_ptr<Bare> opened = installed().bare();
  return *opened;
}

// As the table has them: keyword or reason, address, sender, recipient.
struct BareLog {
  Arena columns[4];
  Arena lines;
};

BareLog read_bare(Prepared& select, bool in_small_letters) {
  constexpr int places[] = {4, 1, 2, 3};
  BareLog log;
  std::string text;
  while (sqlite3_step(select.handle()) == SQLITE_ROW) {
    for (int i = 0; i < 4; ++i) {
      if (!in_small_letters) {
        log.columns[i].add(select.handle(), places[i]);
        continue;
      }
      text.assign(reinterpret_cast<const char*>(sqlite3_column_text(select.handle(), places[i])),
                  static_cast<std::size_t>(sqlite3_column_bytes(select.handle(), places[i])));
      std::transform(text.begin(), text.end(), text.begin(),
                     [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
      log.columns[i].add(text);
    }
  }
  sqlite3_reset(select.handle());
  std::string line;
  for (std::size_t i = 0; i < log.columns[0].count(); ++i) {
    line.assign(log.columns[0][i]);
    for (int column = 1; column < 4; ++column) line.append(", ").append(log.columns[column][i]);
    log.lines.add(line);
  }
  return log;
}

KeywordlogPage& keyword_page() {
  static const std::unique_ptr<KeywordlogPage> shown = installed().shown<KeywordlogPage>();
  return *shown;
}

AvlogPage& attachment_page() {
  static const std::unique_ptr<AvlogPage> shown = installed().shown<AvlogPage>();
  return *shown;
}

double refresh_keywords() {
  keyword_page();
  const double seconds = seconds_of([] { keyword_page().Command13.user_click(); });
  require(keyword_page().logs.items().size() == rows, "the page lost rows");
  return seconds;
}

double refresh_attachments() {
  attachment_page();
  const double seconds = seconds_of([] { attachment_page().Command15.user_click(); });
  require(attachment_page().control14.items().size() == rows, "the page lost rows");
  return seconds;
}

double read_keywords() {
  static Prepared select(bare(), "SELECT * FROM subjectlog ORDER BY servertime DESC");
  static BareLog log;
  return seconds_of([] { log = read_bare(select, false); });
}

// The page goes to the last row, and lists the senders with its reason.
double read_attachments() {
  static Prepared select(bare(), "SELECT * FROM avlog ORDER BY servertime DESC");
  static BareLog log;
  return seconds_of([] {
    log = read_bare(select, true);
    Arena senders;
    for (std::size_t i = 0; i < log.columns[0].count(); ++i) {
      if (log.columns[0][i] == log.columns[0][rows - 1]) senders.add(log.columns[2][i]);
    }
  });
}

double click_row() {
  attachment_page();
  const double seconds = seconds_of([] { attachment_page().control14.user_choose(rows / 2); });
  require(attachment_page().from.items().size() >= rows / 300, "the page lost senders");
  return seconds;
}

double select_senders() {
  static Prepared select(
      bare(), "SELECT mailfrom FROM avlog WHERE lower(trim(reason))='reason 7' ORDER BY servertime DESC");
  Arena senders;
  return seconds_of([&] { senders = select.read(); });
}

}  // namespace

void add_message_logs(Suite& suite) {
  suite.add(Comparison{"keyword log, 200,000 rows: refresh", 1.3, refresh_keywords, read_keywords});
  suite.add(Comparison{"attachment log, 200,000 rows: refresh", 1.3, refresh_attachments, read_attachments});
  suite.add(Comparison{"attachment log, 200,000 rows: click on a row", 1.3, click_row, select_senders});
}

}  // namespace zrl::bench
