#include <malloc.h>

#include "core/contracts/mail_message.h"
#include "core/text/utf8.h"
#include "pages/installed.h"
#include "pages/logs/monitor_page.h"

// The archive with 20,000 mails of 50 kB. Its page holds the rows' keys and one mail; so what it
// costs beyond a page over a single mail must be those keys alone.
namespace zrl::bench {

namespace {

constexpr int mails = 20'000;
constexpr int domains = 1'000'000;
constexpr std::size_t mail_size = 50'000;

std::string source_of(int number) {
  std::string source = "From: Ann <ann@example.com>\r\nTo: bob@example.org\r\nSubject: Mail " +
                       std::to_string(number) +
                       "\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
  for (int line = 0; source.size() < mail_size; ++line) {
    source += "Line " + std::to_string(line) + " of a mail that was read once and kept for ever.\r\n";
  }
  return source;
}

void fill(const Installed& archive, int count) {
  constexpr int mails_a_transaction = 500;
  const auto bare = archive.bare();
  Prepared insert(*bare,
                  "INSERT INTO marchive (mid, subject, sender, sdom, sip, envelope, mailheader, returnaddr, "
                  "servertime, tstamp, timestamp, email) SELECT '<'||?2||'@example.com>', 'Mail '||?2, "
                  "'ann@example.com', 'example.com', '192.0.2.1', 'ann@example.com, bob@example.org', "
                  "'From: ann@example.com', 'example.com', datetime(1100000000+?2*60, 'unixepoch'), ?2, ?2, "
                  "?1");
  for (int i = 0; i < count; ++i) {
    if (i % mails_a_transaction == 0) bare->run("BEGIN");
    sqlite3_bind_int(insert.handle(), 2, i);
    insert.run(source_of(i));
    if (i % mails_a_transaction == mails_a_transaction - 1 || i + 1 == count) bare->run("COMMIT");
  }
  bare->run("PRAGMA wal_checkpoint(TRUNCATE)");
}

Installed& large() {
  static Installed made;
  static const bool filled = (fill(made, mails), true);
  require(filled, "no mails");
  return made;
}

Installed& small() {
  static Installed made;
  static const bool filled = (fill(made, 1), true);
  require(filled, "no mail");
  return made;
}

// Shows the page and leaves it again.
double show(Installed& archive, std::int64_t newest) {
  std::unique_ptr<MonitorPage> page;
  const double seconds = seconds_of([&] { page = archive.shown<MonitorPage>(); });
  require(page->HScroll1.max() == newest && page->mail.text().size() >= mail_size, "the page lost mails");
  page->terminate();
  return seconds;
}

double read_keys() {
  const auto bare = large().bare();
  Prepared keys(*bare, "SELECT rowid FROM marchive ORDER BY servertime DESC, tstamp DESC");
  std::vector<std::int64_t> held;
  return seconds_of([&] {
    while (sqlite3_step(keys.handle()) == SQLITE_ROW) held.push_back(sqlite3_column_int64(keys.handle(), 0));
  });
}

double move_ours() {
  static const std::unique_ptr<MonitorPage> page = large().shown<MonitorPage>();
  page->HScroll1.user_scroll(0);
  const double seconds = seconds_of([] { page->HScroll1.user_scroll(mails - 1); });
  require(page->msubject.text() == "Mail 0", "the page does not show the last mail");
  return seconds;
}

// One mail by its key, and its text.
double move_bare() {
  static const std::unique_ptr<Bare> bare = large().bare();
  static Prepared select(*bare, "SELECT * FROM marchive WHERE rowid=1");
  const auto component = large().console.components().create<MailMessage>();
  std::string texts[14];
  std::string shown;
  return seconds_of([&] {
    require(sqlite3_step(select.handle()) == SQLITE_ROW, "no first mail");
    for (int column = 0; column < 14; ++column) {
      texts[column].assign(static_cast<const char*>(sqlite3_column_blob(select.handle(), column)),
                           static_cast<std::size_t>(sqlite3_column_bytes(select.handle(), column)));
    }
    sqlite3_reset(select.handle());
    shown = valid_utf8(texts[13]);
    texts[6] = component->parse(texts[13]).text_body;
  });
}

// A domain goes onto the black list, which is shown then; entries for all mailboxes of a domain are
// shown without their "*@".
Installed& listed() {
  static Installed made;
  static const bool filled =
      (made.fill(numbers(domains,
                         "INSERT INTO blacklist (entry) SELECT CASE i%10 WHEN 0 THEN "
                         "'*@' ELSE '' END||'host'||(i*7919%1000003)||'.example' FROM n")),
       true);
  require(filled, "no domains");
  return made;
}

double list_ours() {
  static const std::unique_ptr<MonitorPage> page = listed().shown<MonitorPage>();
  page->sdom.user_type("new.example");
  const double seconds = seconds_of([] { page->Command4.user_click(); });
  require(page->List1.items().size() > domains, "the page lost domains");
  return seconds;
}

double list_bare() {
  static const std::unique_ptr<Bare> bare = listed().bare();
  static Arena shown;
  Prepared rows(*bare, "SELECT entry FROM blacklist ORDER BY rowid");
  Prepared remove(*bare, "DELETE FROM whitelist WHERE entry=?1");
  Prepared add(*bare,
               "INSERT INTO blacklist (entry) SELECT ?1 WHERE NOT EXISTS "
               "(SELECT 1 FROM blacklist WHERE entry=?1)");
  return seconds_of([&] {
    remove.run("new.example");
    add.run("new.example");
    shown = rows.read();
  });
}

std::size_t heap() {
  const struct mallinfo2 info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

double memory(Installed& archive) {
  constexpr double kilo = 1024;
  archive.shown<MonitorPage>();  // what the libraries keep for good
  const std::size_t before = heap();
  const auto page = archive.shown<MonitorPage>();
  return static_cast<double>(heap() - before) / kilo;
}

double memory_of_keys() {
  return static_cast<double>(mails * sizeof(std::int64_t)) / 1024;
}

}  // namespace

void add_archive(Suite& suite) {
  suite.add(Comparison{"archive, 20,000 mails: showing; bare: one, and keys", 1.3,
                       [] { return quickest([] { return show(large(), mails - 1); }); },
                       [] { return quickest([] { return show(small(), 0); }) + quickest(read_keys); }});
  suite.add(Comparison{"archive, 20,000 mails: the last; bare: with parsing", 1.3,
                       [] { return quickest(move_ours); }, [] { return quickest(move_bare); }});
  suite.add(Comparison{"archive: one more of 1,000,000 domains, and their list", 1.3, list_ours, list_bare});
  suite.add(Measure{"archive: memory, KiB; bare: one mail, and keys", 1.3, [] { return memory(large()); },
                    [] { return memory(small()) + memory_of_keys(); }});
}

}  // namespace zrl::bench
