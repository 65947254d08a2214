#include <cstdio>
#include <cstdlib>
#include <thread>

#include <benchmark/benchmark.h>

#include "components/block_lists/block_list_components.h"
#include "suite.h"
#include "support/dns_server.h"

// Ten zones, five white and five black, beside one, when every answer takes 50 ms; and a text with 200
// links in three zones beside one link in one. The list that matches is the last one.
namespace zrl::bench {

namespace {

constexpr std::chrono::milliseconds delay{50};
constexpr int links = 200;

std::string zone(int number) {
  return "zone" + std::to_string(number) + ".test";
}

class Lists {
 public:
  Lists(int white, int black, int uri) {
    for (int i = 0; i < white; ++i) white_.push_back(zone(i));
    for (int i = 0; i < black; ++i) black_.push_back(zone(white + i));
    for (int i = 0; i < uri; ++i) uri_.push_back(zone(i));
    server_.add("1.2.0.192." + zone(white + black - 1) + " A 127.0.0.2");
    server_.add("link0.test." + zone(uri - 1) + " A 127.0.0.2");
    server_.set_manner({.delay = delay});
  }

  double look_up() {
    const auto lists = make_block_lists(settings());
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
    const auto check = make_uri_check(settings());
    const double seconds = seconds_of([&] {
      check->initmodule({});
      check->send("BODY", "SEND", text);
    });
    require(check->send() == "link0.test is listed in " + std::string(uri_[uri_.size() - 1]));
    return seconds;
  }

 private:
  static void require(bool sound) {
    if (sound) return;
    std::fprintf(stderr, "wrong answer\n");
    std::exit(1);
  }

  BlockListSettings settings() {
    BlockListSettings result;
    result.dns.servers = [this] {
      return std::vector<std::string>{"127.0.0.1:" + std::to_string(server_.port())};
    };
    result.dns.timeout = [] { return std::chrono::seconds(10); };
    result.dns.wait = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); };
    result.entries = [this](Literal table) {
      return table.text() == "wblserver" ? white_ : table.text() == "rblserver" ? black_ : uri_;
    };
    result.report = [](std::string_view, std::string_view) {};
    return result;
  }

  test::FakeDnsServer server_;
  StringList white_;
  StringList black_;
  StringList uri_;
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
