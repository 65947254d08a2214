#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <thread>

#include "host/command/command_line.h"
#include "host/command/step_runner.h"
#include "host/composition.h"
#include "host/folder.h"
#include "host/web/web_host.h"

namespace zrl::command {

namespace {

void prepare(const std::filesystem::path& folder) {
  StepRunner host([] { return std::nullopt; }, false);
  Console console(folder, host);
  register_components(console);
  if (std::filesystem::exists(folder)) {
    update_product_version(console);
  } else {
    lay_out_folder(console);
  }
}

// Signals are taken by a thread that waits for them; all others have them blocked.
sigset_t block_stop_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  // The ends of the programs that pages start are waited for.
  std::signal(SIGCHLD, SIG_DFL);
  std::signal(SIGPIPE, SIG_IGN);
  return signals;
}

void announce(web::WebHost& host) {
  std::cout << "Open " << host.address() << '\n' << std::flush;
  const std::string secret = host.make_setup_secret();
  if (!secret.empty()) {
    std::cout << "First start: choose an account and a password there with this secret: " << secret << '\n'
              << std::flush;
  }
}

}  // namespace

int serve(const ServeOptions& options, std::span<const PageEntry> pages) {
  prepare(options.folder);
  const sigset_t signals = block_stop_signals();
  web::WebHostOptions host_options;
  host_options.folder = options.folder;
  host_options.listen = options.listen;
  host_options.certificate = options.certificate;
  host_options.key = options.key;
  host_options.hosts = options.hosts;
  host_options.pages = pages;
  host_options.register_components = register_components;
  web::WebHost host(std::move(host_options));
  announce(host);
  // Stopping waits for actions that are under way; a second signal does not.
  std::thread([&host, signals] {
    int signal = 0;
    sigwait(&signals, &signal);
    host.stop();
    sigwait(&signals, &signal);
    std::_Exit(failure);
  }).detach();
  host.run();
  return success;
}

}  // namespace zrl::command
