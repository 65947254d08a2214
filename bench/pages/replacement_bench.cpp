#include "pages/installed.h"
#include "pages/lists/replacement_page.h"

// A million words with their replacements. The bare side reads both columns and joins them, too.
namespace zrl::bench {

namespace {

constexpr int pairs = 1'000'000;
constexpr std::string_view options[] = {"editbody"};

Installed& installed() {
  static Installed made;
  static const bool filled = [] {
    made.fill(numbers(pairs,
                      "INSERT INTO rwords (orig, repl) SELECT 'word'||(i*7919%1000003), "
                      "'replacement'||i FROM n"));
    return true;
  }();
  require(filled, "no pairs");
  return made;
}

double refill_ours() {
  static const std::unique_ptr<ReplacementPage> page = installed().shown<ReplacementPage>();
  // Without a word there is nothing to remove, and the page is filled again.
  page->Text1.set_text("");
  const double seconds = seconds_of([&] { page->Command2.user_click(); });
  require(page->List1.items().size() == pairs, "the page lost pairs");
  return seconds;
}

double refill_bare() {
  static const std::unique_ptr<Bare> bare = installed().bare();
  static Prepared words(*bare, "SELECT orig FROM rwords ORDER BY rowid");
  static Prepared replacements(*bare, "SELECT repl FROM rwords ORDER BY rowid");
  static Arena lines;
  return seconds_of([&] {
    const Arena left = words.read();
    const Arena right = replacements.read();
    Arena joined;
    std::string line;
    for (std::size_t i = 0; i < left.count(); ++i) {
      line.assign(left[i]).append(" ==>> ").append(right[i]);
      joined.add(line);
    }
    lines = std::move(joined);
    read_options(*bare, options);
  });
}

}  // namespace

void add_replacements(Suite& suite) {
  suite.add(Comparison{"word replacement, 1,000,000 pairs: refilling", 1.3, refill_ours, refill_bare});
}

}  // namespace zrl::bench
