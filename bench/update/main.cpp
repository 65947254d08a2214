#include <cstdio>
#include <cstdlib>

#include <benchmark/benchmark.h>

#include "database/comparison.h"
#include "host/composition.h"
#include "host/folder.h"
#include "pages/settings/general_page.h"
#include "support/fake_update_server.h"
#include "support/recording_host.h"

// The button that updates all lists, with a million new lines in the two domain files: fetched from
// a server on loopback, written, merged. The other side imports the same files, which lie on the
// disk, into an equal database.
namespace zrl::bench {

namespace {

constexpr int lines_a_file = 500'000;

struct Lines {
  ListTable list;
  const char* file;
  unsigned seed;
};
constexpr Lines all_lines[] = {{list::black_domains, "addblack.txt", 11},
                               {list::white_domains, "addwhite.txt", 12}};

std::filesystem::path published(const Lines& lines) {
  std::filesystem::path path = list_folder() / lines.file;
  if (!std::filesystem::exists(path)) write_lines(path, host_names(lines_a_file, lines.seed));
  return path;
}

void expect_rows(Database& database, const std::string& provider) {
  ConnectionHandle conn = database.open_database(provider);
  for (const Lines& lines : all_lines) {
    if (database.get_db_array(conn, lines.list.table, lines.list.column, {}).size() == lines_a_file + 1)
      continue;
    std::fprintf(stderr, "wrong number of rows after the update\n");
    std::exit(1);
  }
}

double update_all() {
  for (const Lines& lines : all_lines) published(lines);
  const test::FakeUpdateServer server(list_folder());
  const std::filesystem::path own = folder() / "console";
  std::filesystem::remove_all(own);
  test::RecordingHost host;
  Console console(own, host);
  register_components(console);
  lay_out_folder(console);
  console.settings().regwrite_string(console.settings().path_of("updateurl"), server.address());
  GeneralPage page(console);
  page.initialise();
  ::sync();
  const double seconds = seconds_of([&] { page.Command1.user_click(); });
  expect_rows(*console.components().create<Database>(), "sqlite:proxy.db");
  return seconds;
}

double imports() {
  const std::string provider = "sqlite:imports.db";
  for (const char* ending : {"", "-wal", "-shm"})
    std::filesystem::remove(folder() / ("imports.db" + std::string(ending)));
  const auto database = access_to(provider);
  database->open_database(provider);
  for (const Lines& lines : all_lines) published(lines);
  ::sync();
  const double seconds = seconds_of([&] {
    for (const Lines& lines : all_lines) database->import_(lines.list, published(lines).string());
  });
  expect_rows(*database, provider);
  return seconds;
}

}  // namespace

}  // namespace zrl::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Suite suite;
  suite.add(zrl::bench::Comparison{"update of all lists, 1,000,000 new lines; bare: the imports", 1.3,
                                   zrl::bench::update_all, zrl::bench::imports});
  return suite.run(5) ? 0 : 1;
}
