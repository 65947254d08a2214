// fake_update_server FOLDER [PORT [CERTIFICATE KEY]]
//
// Publishes the files of a folder on 127.0.0.1, prints the address and serves until it is ended by
// a signal. For trying updates by hand and in the browser.

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "support/fake_update_server.h"

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3 && argc != 5) {
    std::fprintf(stderr, "usage: fake_update_server FOLDER [PORT [CERTIFICATE KEY]]\n");
    return 2;
  }
  sigset_t ends;
  sigemptyset(&ends);
  sigaddset(&ends, SIGINT);
  sigaddset(&ends, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);

  std::optional<zrl::test::TlsFiles> tls;
  if (argc == 5) tls = {argv[3], argv[4]};
  const auto port = static_cast<std::uint16_t>(argc > 2 ? std::atoi(argv[2]) : 0);
  const zrl::test::FakeUpdateServer server(argv[1], tls, port);
  std::printf("%s\n", server.address().c_str());
  std::fflush(stdout);
  int signal = 0;
  sigwait(&ends, &signal);
  return 0;
}
