#include "pages/installed.h"
#include "pages/logs/predatalog_page.h"

// The button that lets all addresses of a reason pass: 10,000 of them, each on the black list and in
// both logs. The host has no events to process.
namespace zrl::bench {

namespace {

constexpr int addresses = 10'000;
constexpr std::string_view reason = "on a block list";

Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    const std::string address = "'10.'||(i/65536)||'.'||(i/256%256)||'.'||(i%256)";
    const std::string time = "datetime(1100000000+i*60, 'unixepoch')";
    made.fill(numbers(addresses,
                      "INSERT INTO predatalog (IPNumber, mailfrom, reason, status, servertime) "
                      "SELECT " +
                          address + ", 'sender'||i||'@example.com', '" + std::string(reason) + "', 2, " +
                          time + " FROM n"));
    made.fill(numbers(addresses, "INSERT INTO iplog (IPNumber, status, servertime) SELECT " + address +
                                     ", 2, " + time + " FROM n"));
    return true;
  }();
  require(filled, "no addresses");
  return made;
}

void put_back() {
  installed().fill(
      "UPDATE predatalog SET status=2; UPDATE iplog SET status=2; DELETE FROM Whitehost;"
      "DELETE FROM Blackhost; INSERT INTO Blackhost (IPNumber) SELECT IPNumber FROM predatalog");
}

void require_listed() {
  const auto bare = installed().bare();
  const Arena counts = Prepared(*bare,
                                "SELECT count(*) FROM Whitehost UNION ALL "
                                "SELECT count(*) FROM iplog WHERE status=1 UNION ALL "
                                "SELECT count(*) FROM predatalog WHERE status=1")
                           .read();
  for (std::size_t i = 0; i < counts.count(); ++i) {
    require(counts[i] == std::to_string(addresses), "not all addresses were changed");
  }
}

double change_ours() {
  put_back();
  const auto page = installed().shown<PredatalogPage>();
  page->blacklist.user_click();  // goes to the last reason, which lists its addresses
  require(page->ip.items().size() == addresses, "not all addresses are listed");
  const double seconds = seconds_of([&] { page->cchange.user_click(); });
  require_listed();
  return seconds;
}

class BareChange {
 public:
  explicit BareChange(Bare& bare)
      : bare_(bare),
        predatalog_(bare, "UPDATE predatalog SET status=1 WHERE IPNumber=?1"),
        iplog_(bare, "UPDATE iplog SET status=1 WHERE IPNumber=?1"),
        begin_(bare, "BEGIN IMMEDIATE"),
        off_black_(bare, "DELETE FROM Blackhost WHERE IPNumber=?1"),
        purge_(bare,
               "DELETE FROM Whitehost WHERE IPNumber=?1 AND rowid>"
               "(SELECT min(rowid) FROM Whitehost WHERE IPNumber=?1)"),
        add_(bare,
             "INSERT INTO Whitehost (IPNumber) SELECT ?1 WHERE NOT EXISTS "
             "(SELECT 1 FROM Whitehost WHERE IPNumber=?1)"),
        commit_(bare, "COMMIT") {}

  void run(const Arena& listed) {
    Prepared(bare_, "UPDATE predatalog SET status=1 WHERE reason=?1").run(reason);
    for (std::size_t i = 0; i < listed.count(); ++i) {
      const std::string_view address = listed[i];
      predatalog_.run(address);
      iplog_.run(address);
      begin_.run();
      off_black_.run(address);
      purge_.run(address);
      add_.run(address);
      commit_.run();
    }
    const Arena reasons = Prepared(bare_,
                                   "SELECT reason FROM predatalog WHERE status=2 GROUP BY reason "
                                   "ORDER BY max(servertime), max(rowid)")
                              .read();
    require(reasons.count() == 0, "the bare statements left something");
    for (const char* status : {"1", "2", "0"}) {
      Prepared(bare_, std::string("SELECT count(*) FROM predatalog WHERE status=") + status).run();
    }
  }

 private:
  Bare& bare_;
  Prepared predatalog_, iplog_, begin_, off_black_, purge_, add_, commit_;
};

double change_bare() {
  put_back();
  const auto bare = installed().bare();
  const Arena listed =
      Prepared(*bare, "SELECT IPNumber FROM predatalog WHERE status=2 ORDER BY servertime, rowid").read();
  bare->run("PRAGMA wal_autocheckpoint=2000");  // as rarely as the component
  BareChange change(*bare);
  const double seconds = seconds_of([&] { change.run(listed); });
  require_listed();
  return seconds;
}

}  // namespace

void add_header_log(Suite& suite) {
  suite.add(Comparison{"header log: 10,000 addresses change their lists", 1.3, change_ours, change_bare});
}

}  // namespace zrl::bench
