// The check of a sender by an SPF record with ten look-ups, beside the same queries one after the other
// on a channel of c-ares. A check may take 1 ms longer than the queries, which is added to their time.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

#include <ares.h>
#include <benchmark/benchmark.h>
#include <poll.h>

#include "components/dns/dns.h"
#include "suite.h"
#include "support/dns_server.h"
#include "support/fake_services.h"

namespace zrl::bench {

namespace {

using std::chrono::milliseconds;

constexpr double allowance = 0.001;  // seconds
constexpr const char* record =
    "v=spf1 include:a.example.com include:b.example.com mx a:c.example.com exists:%{ir}.%{d} ptr "
    "a:d.example.com redirect=e.example.com";

struct Query {
  const char* name;
  int type;
};
// Those of the check, in their order.
constexpr std::array<Query, 12> queries = {{{"a.example.com", 16},
                                            {"b.example.com", 16},
                                            {"f.example.com", 1},
                                            {"example.com", 15},
                                            {"mail.example.com", 1},
                                            {"c.example.com", 1},
                                            {"1.2.0.192.example.com", 1},
                                            {"1.2.0.192.in-addr.arpa", 12},
                                            {"host.example.net", 1},
                                            {"d.example.com", 1},
                                            {"e.example.com", 16},
                                            {"g.example.com", 1}}};

[[noreturn]] void fail(const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  std::exit(1);
}

class Server {
 public:
  explicit Server(milliseconds delay) {
    for (const char* line :
         {"a.example.com TXT v=spf1 ip4:198.51.100.0/24 ~all",
          "b.example.com TXT v=spf1 ip6:2001:db8::/32 a:f.example.com -all",
          "example.com MX 10 mail.example.com", "192.0.2.1 PTR host.example.net",
          "host.example.net A 192.0.2.1", "e.example.com TXT v=spf1 a:g.example.com -all"}) {
      server_.add(line);
    }
    for (const char* host : {"mail", "c", "d", "f"})
      server_.add(std::string(host) + ".example.com A 203.0.113.1");
    server_.add("g.example.com A 192.0.2.1");
    server_.set_manner({.delay = delay});
  }

  std::string address() const { return "127.0.0.1:" + std::to_string(server_.port()); }
  std::vector<std::string> queries() const { return server_.queries(); }

 private:
  test::FakeDnsServer server_;
};

double check(const Server& server) {
  test::FakeServices console;
  console.lookup.told_servers = {server.address()};
  const auto client = dns::make(console);
  SenderCheck found;
  const std::size_t before = server.queries().size();
  const double seconds = seconds_of(
      [&] { found = client->check_spf("192.0.2.1", "example.com", record, "postmaster@example.com"); });
  if (!found.authorised) fail(found.reason);
  const std::size_t asked = server.queries().size() - before;
  if (asked != queries.size()) fail("the check asked " + std::to_string(asked) + " times");
  return seconds;
}

// Waits for one answer at the sockets alone.
void run(ares_channel channel, const Query& query) {
  bool ended = false;
  const auto end = [](void* done, int, int, unsigned char*, int) { *static_cast<bool*>(done) = true; };
  ares_query(channel, query.name, 1, query.type, end, &ended);
  while (!ended) {
    std::array<ares_socket_t, ARES_GETSOCK_MAXNUM> sockets{};
    ares_getsock(channel, sockets.data(), static_cast<int>(sockets.size()));
    pollfd polled{sockets[0], POLLIN, 0};
    ::poll(&polled, 1, -1);
    ares_process_fd(channel, sockets[0], ARES_SOCKET_BAD);
  }
}

double bare(const Server& server) {
  ares_channel channel = nullptr;
  if (ares_init(&channel) != ARES_SUCCESS) fail("no channel");
  ares_set_servers_ports_csv(channel, server.address().c_str());
  const double seconds = seconds_of([&] {
    for (const Query& query : queries) run(channel, query);
  });
  ares_destroy(channel);
  return seconds + allowance;
}

void add(Suite& suite, const std::string& name, milliseconds delay) {
  const auto server = std::make_shared<Server>(delay);
  suite.add(Comparison{name, 1.0, [server] { return check(*server); }, [server] { return bare(*server); }});
}

}  // namespace

}  // namespace zrl::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  ares_library_init(ARES_LIB_INIT_ALL);
  zrl::bench::Suite suite;
  zrl::bench::add(suite, "SPF, 12 queries answered at once; bare: queries + 1 ms",
                  std::chrono::milliseconds(0));
  zrl::bench::add(suite, "SPF, 12 queries of 20 ms; bare: queries + 1 ms", std::chrono::milliseconds(20));
  return suite.run(15) ? 0 : 1;
}
