#include "pages/installed.h"
#include "pages/logs/iplog_page.h"

// The address log with a million rows: four counts and the addresses in the order of their times.
namespace zrl::bench {

namespace {

constexpr int rows = 1'000'000;

// Logged about in the order of the times, as several connections at once are.
Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    made.fill(numbers(rows,
                      "INSERT INTO iplog (IPNumber, status, servertime) SELECT '10.'||(i%7)||'.'||"
                      "(i*7919%251)||'.'||(i*104729%256), i%3, "
                      "datetime(1100000000+i+i*7919%10, 'unixepoch') FROM n"));
    return true;
  }();
  require(filled, "no rows");
  return made;
}

Arena read_bare(Bare& bare) {
  for (const char* count :
       {"SELECT count(*) FROM iplog WHERE status=0", "SELECT count(*) FROM iplog WHERE status=2",
        "SELECT count(*) FROM iplog WHERE status=1", "SELECT count(*) FROM iplog"}) {
    Prepared(bare, count).run();
  }
  return Prepared(bare, "SELECT IPNumber FROM iplog ORDER BY servertime, rowid").read();
}

double show_ours() {
  std::unique_ptr<IplogPage> page;
  installed();
  const double seconds = seconds_of([&] { page = installed().shown<IplogPage>(); });
  require(page->iplist.items().size() == rows && page->Label8.caption() == std::to_string(rows),
          "the page lost rows");
  return seconds;
}

double show_bare() {
  std::unique_ptr<Bare> bare;
  Arena arena;
  installed();
  return seconds_of([&] {
    bare = installed().bare();
    arena = read_bare(*bare);
  });
}

double view_ours() {
  static const std::unique_ptr<IplogPage> page = installed().shown<IplogPage>();
  return seconds_of([&] { page->ipblack.user_click(); });
}

double view_bare() {
  static const std::unique_ptr<Bare> bare = installed().bare();
  Arena arena;
  return seconds_of([&] {
    for (const char* count :
         {"SELECT count(*) FROM iplog WHERE status=0", "SELECT count(*) FROM iplog WHERE status=2",
          "SELECT count(*) FROM iplog WHERE status=1", "SELECT count(*) FROM iplog"}) {
      Prepared(*bare, count).run();
    }
    arena = Prepared(*bare, "SELECT IPNumber FROM iplog WHERE status=2 ORDER BY servertime, rowid").read();
  });
}

}  // namespace

void add_iplog(Suite& suite) {
  suite.add(Comparison{"address log, 1,000,000 rows: showing the page", 1.3, show_ours, show_bare});
  suite.add(Comparison{"address log, 1,000,000 rows: one status of three", 1.3, view_ours, view_bare});
  suite.add(Measure{"address log: memory, KiB; bare: text and offsets", 1.5,
                    [] {
                      const auto page = installed().shown<IplogPage>();
                      return static_cast<double>(page->iplist.items().memory()) / 1024;
                    },
                    [] { return static_cast<double>(read_bare(*installed().bare()).size()) / 1024; }});
}

}  // namespace zrl::bench
