#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/console.h"
#include "host/web/application.h"
#include "host/web/http_server.h"

namespace zrl::web {

struct WebHostOptions {
  std::filesystem::path folder = {};       // the console's, laid out already
  std::string listen = "127.0.0.1:8025";   // ADDRESS:PORT, [ADDRESS]:PORT; port 0 takes any that is free
  std::filesystem::path certificate = {};  // PEM; empty: no TLS
  std::filesystem::path key = {};
  std::vector<std::string> hosts = {};  // further names that browsers know this console by
  std::span<const PageEntry> pages = {};
  // Called on the threads of sessions, at the same time.
  std::function<void(Console&)> register_components = {};
  bool modeless_dialogs = false;
  // Actions are refused while they cannot be recorded in the audit log; else the operator is notified, and
  // they are done.
  bool audit_required = false;
  // Gets lines for the operator while the host runs, from any thread, at the same time.
  std::function<void(std::string_view)> notify = {};

  // There is a connection for each tab, so `connections_a_network` should exceed the tabs of a session.
  ServerLimits server_limits = {};
  SessionTable::Limits session_limits = {};
  PasswordCost password_cost = {};
};

// The web host: shows the console's pages to browsers.
class WebHost {
 public:
  // Listens already. Raises std::runtime_error if that is not possible, the certificate or the accounts
  // cannot be used, `listen` is no such address, or the folder cannot be made safe (secure_folder).
  explicit WebHost(WebHostOptions options);
  ~WebHost();

  // What to open in a browser: "http://127.0.0.1:8025/".
  const std::string& address() const { return address_; }

  // What the operator should know about the folder, the certificate and the address; a line each.
  const std::vector<std::string>& warnings() const { return warnings_; }

  // As long as there is no account: a new secret for choosing the first one, to be shown to the person who
  // started the program. Empty otherwise. To be called once, before run().
  std::string make_setup_secret();

  // Serves until stop(), and returns when all sessions have ended. An action that does not let events run
  // delays that until it has ended.
  void run();
  // Reads the certificate again; from any thread. Nothing ends by it.
  void reload();
  // Asks run() to end; from any thread. Does not wait for it.
  void stop();

 private:
  std::vector<std::string> warnings_;
  HttpServer server_;
  std::unique_ptr<Application> application_;
  std::string address_;
};

}  // namespace zrl::web
