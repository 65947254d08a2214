#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "host/composition.h"
#include "host/folder.h"
#include "host/web/web_client.h"
#include "host/web/web_host.h"
#include "slow_clients.h"
#include "support/recording_host.h"
#include "support/temporary_folder.h"

// How long signing in takes, from the connection to the answer and with passwords hashed as they are in use,
// while other clients hold connections. The argument is the number of times.
namespace zrl::bench {

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using Kind = SlowClients::Kind;

constexpr double goal = 1.0;  // seconds, at the 99th percentile
constexpr const char* password = "correct horse";

struct Load {
  const char* name;
  std::size_t clients;
  Kind kind;
};
constexpr Load loads[] = {{"nobody else", 0, Kind::silent},
                          {"500 slow clients", 500, Kind::slow},
                          {"1000 silent sockets", 1000, Kind::silent},
                          {"2000 silent sockets", 2000, Kind::silent},
                          {"500 that don't read", 500, Kind::greedy}};

web::WebHostOptions options_for(const std::filesystem::path& folder) {
  test::RecordingHost nobody;
  Console console(folder, nobody);
  register_components(console);
  lay_out_folder(console);
  web::WebHostOptions options;
  options.folder = folder;
  options.listen = "127.0.0.1:0";
  options.register_components = register_components;
  return options;
}

double sign_in(test::WebClient& client, const char* path, const boost::json::object& credentials) {
  const Clock::time_point begin = Clock::now();
  const test::HttpAnswer answer = client.post(path, credentials);
  if (answer.status != 200) throw std::runtime_error("not signed in: " + std::to_string(answer.status));
  return Seconds(Clock::now() - begin).count();
}

bool measure(int times) {
  const test::TemporaryFolder folder;
  web::WebHost host(options_for(folder.path()));
  const boost::json::object credentials{
      {"account", "admin"}, {"password", password}, {"secret", host.make_setup_secret()}};
  std::thread serving([&host] { host.run(); });
  const std::string& address = host.address();
  const auto port = static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
  test::WebClient client(port);
  sign_in(client, "/api/setup", credentials);

  bool met = true;
  std::printf("%-22s %8s %8s %8s %12s\n", "signing in beside", "median", "99 %", "longest", "connections");
  for (const Load& load : loads) {
    SlowClients others(port, load.clients, load.kind);
    std::this_thread::sleep_for(std::chrono::seconds(2));
    std::vector<double> taken;
    for (int i = 0; i < times; ++i) taken.push_back(sign_in(client, "/api/login", credentials));
    std::sort(taken.begin(), taken.end());
    const double late = taken[(taken.size() * 99 + 99) / 100 - 1];
    std::printf("%-22s %6.3f s %6.3f s %6.3f s %12llu%s\n", load.name, taken[taken.size() / 2], late,
                taken.back(), static_cast<unsigned long long>(others.opened()),
                late > goal ? "  MISSED" : "");
    std::fflush(stdout);
    met = met && late <= goal;
  }
  host.stop();
  serving.join();
  return met;
}

}  // namespace

}  // namespace zrl::bench

int main(int argc, char** argv) {
  return zrl::bench::measure(argc > 1 ? std::atoi(argv[1]) : 100) ? 0 : 1;
}
