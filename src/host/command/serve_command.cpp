#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include <unistd.h>

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

// The browser's programs and the pages' scripts are to be as weak as they can be.
void refuse_root(const ServeOptions& options) {
  if (::geteuid() != 0 || options.allow_root) return;
  throw std::runtime_error(
      "serve does not run as root, because whoever signs in works under its account: start it under an "
      "account of its own, or with --allow-root");
}

void notify_operator(std::string_view line) {
  std::cerr << "zrlconsole: " + std::string(line) + "\n" << std::flush;
}

// Signals are taken by a thread that waits for them; all others have them blocked.
sigset_t block_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGHUP);
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
  refuse_root(options);
  prepare(options.folder);
  const sigset_t signals = block_signals();
  web::WebHostOptions host_options;
  host_options.folder = options.folder;
  host_options.listen = options.listen;
  host_options.certificate = options.certificate;
  host_options.key = options.key;
  host_options.hosts = options.hosts;
  host_options.pages = pages;
  host_options.register_components = register_components;
  host_options.audit_required = options.audit_required;
  host_options.session_limits.tabs = options.tabs;
  // Each tab has a connection; requests need some beside them.
  constexpr std::size_t beside = 32;
  host_options.server_limits.connections_a_network = options.tabs + beside;
  host_options.notify = notify_operator;
  web::WebHost host(std::move(host_options));
  for (const std::string& warning : host.warnings()) notify_operator(warning);
  announce(host);
  // Stopping waits for actions that are under way; a second signal does not.
  std::thread([&host, signals] {
    const auto wait_for_end = [&signals](const auto& hang_up) {
      int signal = 0;
      while (sigwait(&signals, &signal) == 0 && signal == SIGHUP) hang_up();
    };
    wait_for_end([&host] { host.reload(); });
    host.stop();
    // From here on the host may be gone at any time.
    wait_for_end([] {});
    std::_Exit(failure);
  }).detach();
  host.run();
  return success;
}

}  // namespace zrl::command
