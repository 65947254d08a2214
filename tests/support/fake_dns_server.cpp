// A DNS server for trying the console by hand and in browser tests:
//
//   fake_dns_server RECORDS RESOLVER_FILE
//
// answers by the records of a file (one a line, as FakeDnsServer::add() takes them; "#" begins a comment;
// "DELAY MILLISECONDS" slows every answer), writes the resolver file that leads to it, prints its port,
// and ends with its standard input. Use it with ZRL_RESOLV_CONF=RESOLVER_FILE.
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <string>

#include "core/text/text.h"
#include "support/dns_server.h"

namespace {

void read_records(const std::string& path, zrl::test::FakeDnsServer& server) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  for (std::string line; std::getline(file, line);) {
    const std::string_view record = zrl::trim(line);
    if (record.empty() || record.front() == '#') continue;
    if (record.starts_with("DELAY ")) {
      zrl::test::FakeDnsServer::Manner manner;
      manner.delay = std::chrono::milliseconds(zrl::to_number(record.substr(6)).value_or(0));
      server.set_manner(manner);
    } else {
      server.add(record);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: fake_dns_server RECORDS RESOLVER_FILE\n";
    return 2;
  }
  try {
    zrl::test::FakeDnsServer server;
    read_records(argv[1], server);
    if (!(std::ofstream(argv[2]) << server.resolver_file()))
      throw std::runtime_error("cannot write the resolver file");
    std::cout << server.port() << std::endl;
    std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "fake_dns_server: " << error.what() << "\n";
    return 1;
  }
}
