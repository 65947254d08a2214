#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "components/block_lists/block_lists.h"
#include "components/sqlite/sqlite.h"
#include "suite.h"
#include "support/dns_server.h"
#include "support/fake_services.h"
#include "support/temporary_folder.h"

// Ten zones, five white and five black, beside one, when every answer takes 50 ms; and a text with 200
// links in three zones beside one link in one. The list that matches is the last one.
namespace zrl::bench {

namespace {

constexpr std::chrono::milliseconds delay{50};
constexpr int links = 200;

std::string zone(int number) {
  return "zone" + std::to_string(number) + ".test";
}

std::vector<std::string> zones(int first, int count) {
  std::vector<std::string> result;
  for (int i = 0; i < count; ++i) result.push_back(zone(first + i));
  return result;
}

class Lists {
 public:
  Lists(int white, int black, int uri) {
    console_.lookup.told_servers = {"127.0.0.1:" + std::to_string(server_.port())};
    console_.lookup.told_time_out = std::chrono::seconds(10);
    console_.components().add<Database>([this] { return sqlite::make(console_); });
    write("wblserver", zones(0, white));
    write("rblserver", zones(white, black));
    uri_ = zones(0, uri);
    write("surblserver", uri_);
    server_.add("1.2.0.192." + zone(white + black - 1) + " A 127.0.0.2");
    server_.add("link0.test." + zone(uri - 1) + " A 127.0.0.2");
    server_.set_manner({.delay = delay});
  }

  double look_up() {
    const auto lists = block_lists::make(console_);
    auto listing = BlockLists::Listing::none;
    std::string found;
    const double seconds = seconds_of([&] {
      lists->initmodule({.client_address = "192.0.2.1", .sender_command = {}});
      lists->Value(BlockLists::connect, listing, found);
    });
    require(listing == BlockLists::Listing::black);
    return seconds;
  }

  double check(int number_of_links) {
    std::string text;
    for (int i = 0; i < number_of_links; ++i) text += "http://www.link" + std::to_string(i) + ".test/ ";
    const auto check = block_lists::make_uri_check(console_);
    const double seconds = seconds_of([&] {
      check->initmodule({});
      check->send("BODY", "SEND", text);
    });
    require(check->send() == "link0.test is listed in " + uri_.back());
    return seconds;
  }

 private:
  static void require(bool sound) {
    if (sound) return;
    std::fprintf(stderr, "wrong answer\n");
    std::exit(1);
  }

  void write(Literal table, const std::vector<std::string>& zones) {
    const ConnectionHandle connection =
        console_.components().create<Database>()->open_database("sqlite:zrl.db");
    for (const std::string& zone : zones) connection->execute(insert_into(table, "entry", zone));
  }

  test::FakeDnsServer server_;
  test::TemporaryFolder folder_;
  test::FakeServices console_{folder_.path()};
  std::vector<std::string> uri_;
};

}  // namespace

}  // namespace zrl::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  zrl::bench::Lists many(5, 5, 3);
  zrl::bench::Lists one(0, 1, 1);
  zrl::bench::Suite suite;
  suite.add(zrl::bench::Comparison{"an address in ten zones; bare: in one", 1.2,
                                   [&] { return many.look_up(); }, [&] { return one.look_up(); }});
  suite.add(zrl::bench::Comparison{"a text with 200 links in three zones; bare: one link in one", 2.0,
                                   [&] { return many.check(zrl::bench::links); },
                                   [&] { return one.check(1); }});
  return suite.run(9) ? 0 : 1;
}
