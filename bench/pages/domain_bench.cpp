#include "pages/installed.h"
#include "pages/lists/domain_page.h"

// The domain lists with a million entries on the black list. Every change is followed by a refill of
// both lists, so each of these costs about one reading of them.
namespace zrl::bench {

namespace {

constexpr int entries = 1'000'000;
constexpr std::string_view entry = "new.example";
constexpr std::string_view options[] = {"ReturnPath", "checkbodydom", "checkheaderdom", "checkbw",
                                        "checkblhelo"};

Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    const auto bare = made.bare();
    bare->run("BEGIN; DELETE FROM blacklist");
    Prepared insert(*bare, "INSERT INTO blacklist (entry) VALUES (?1)");
    for (const std::string& name : host_names(entries, 21)) insert.run(name);
    bare->run("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    return true;
  }();
  require(filled, "no entries");
  return made;
}

// What the bare engine holds after a refill.
struct Lists {
  Arena white;
  Arena black;
};

class BarePage {
 public:
  explicit BarePage(Bare& bare)
      : bare_(bare),
        white_(bare, "SELECT entry FROM whitelist ORDER BY rowid"),
        black_(bare, "SELECT entry FROM blacklist ORDER BY rowid"),
        insert_(bare, "INSERT INTO blacklist (entry) VALUES (?1)"),
        delete_black_(bare, "DELETE FROM blacklist where entry=?1"),
        delete_white_(bare, "DELETE FROM whitelist where entry=?1") {}

  void fill() {
    lists_ = {white_.read(), black_.read()};
    require(lists_.black.count() >= entries, "the bare loop lost entries");
    read_options(bare_, options);
    write_version(bare_);
  }

  void add(const std::string& domain) {
    delete_black_.run(domain);
    delete_white_.run(domain);
    insert_.run(domain);
    delete_white_.run(domain);
    delete_white_.run("@*" + domain);
    fill();
  }

  void remove(const std::string& domain) {
    delete_black_.run(domain);
    delete_black_.run("@*" + domain);
    fill();
  }

 private:
  Bare& bare_;
  Prepared white_, black_, insert_, delete_black_, delete_white_;
  Lists lists_;
};

DomainPage& page() {
  static const std::unique_ptr<DomainPage> shown = installed().shown<DomainPage>();
  return *shown;
}

BarePage& bare_page() {
  static const std::unique_ptr<Bare> bare = installed().bare();
  static const std::unique_ptr<BarePage> made = [] {
    auto filled = std::make_unique<BarePage>(*bare);
    filled->fill();
    return filled;
  }();
  return *made;
}

double show_ours() {
  std::unique_ptr<DomainPage> shown;
  installed();
  const double seconds = seconds_of([&] { shown = installed().shown<DomainPage>(); });
  require(shown->List2.items().size() >= entries, "the page lost entries");
  return seconds;
}

double show_bare() {
  std::unique_ptr<Bare> bare;
  std::unique_ptr<BarePage> shown;
  installed();
  const double seconds = seconds_of([&] {
    bare = installed().bare();
    shown = std::make_unique<BarePage>(*bare);
    shown->fill();
  });
  shown.reset();
  return seconds;
}

bool listed(const DomainPage& shown) {
  return shown.List2.items().find(entry) < shown.List2.items().size();
}

double add_ours() {
  page().Text1.user_type(entry);
  const double seconds = seconds_of([] { page().Command3.user_click(); });
  require(listed(page()), "the entry was not added");
  return seconds;
}

double remove_ours() {
  installed().execute(insert_into("blacklist", "entry", entry));
  page().Text1.user_type(entry);
  const double seconds = seconds_of([] { page().Command4.user_click(); });
  require(!listed(page()), "the entry was not removed");
  return seconds;
}

double add_bare() {
  bare_page();
  return seconds_of([] { bare_page().add(std::string(entry)); });
}

double remove_bare() {
  installed().execute(insert_into("blacklist", "entry", entry));
  bare_page();
  return seconds_of([] { bare_page().remove(std::string(entry)); });
}

double refill_ours() {
  page();
  return seconds_of([] { page().refrall.user_click(); });
}

double refill_bare() {
  bare_page();
  return seconds_of([] { bare_page().fill(); });
}

}  // namespace

void add_domains(Suite& suite) {
  suite.add(Comparison{"domains, 1,000,000 entries: showing the page", 1.3, show_ours, show_bare});
  suite.add(Comparison{"domains, 1,000,000 entries: refilling", 1.3, refill_ours, refill_bare});
  suite.add(Comparison{"domains, 1,000,000 entries: adding one", 1.3, add_ours, add_bare});
  suite.add(Comparison{"domains, 1,000,000 entries: removing one", 1.3, remove_ours, remove_bare});
}

}  // namespace zrl::bench
