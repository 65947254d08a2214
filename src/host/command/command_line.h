#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <span>
#include <string>
#include <vector>

#include "catalogue/catalogue.h"

namespace zrl::command {

// The options of `serve` on the command line.
struct ServeOptions {
  std::filesystem::path folder;
  std::string listen = "127.0.0.1:8025";  // ADDRESS:PORT
  std::string certificate;                // PEM files; TLS if both are given
  std::string key;
  bool allow_root = false;
  std::size_t tabs = 64;           // of a session
  bool audit_required = false;     // actions are refused while the audit log cannot be written
  std::vector<std::string> hosts;  // names under which browsers may reach the host besides its address
};

// The parts of the program that the command line uses.
struct Program {
  std::span<const PageEntry> pages;
  // Runs the web host until it is stopped; returns the exit status. Empty in builds without it.
  std::function<int(const ServeOptions& options, std::span<const PageEntry> pages)> serve;
};

// Exit statuses.
inline constexpr int success = 0;
inline constexpr int failure = 1;
inline constexpr int usage_error = 2;

// Runs the command line `zrlconsole ...` (arguments without the program's name) and returns its
// exit status. Reads steps from `in`, prints to `out`, and problems to `err`.
int run_command_line(const std::vector<std::string>& arguments, const Program& program, std::istream& in,
                     std::ostream& out, std::ostream& err);

// In builds with the web host only. Runs it until SIGINT or SIGTERM and returns the exit status. Prints the
// address to open and, as long as there is no account, the secret with which the first one is made. Raises
// std::exception if it cannot start.
int serve(const ServeOptions& options, std::span<const PageEntry> pages);

}  // namespace zrl::command
