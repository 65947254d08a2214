#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/accounts.h"
#include "host/web/assets.h"
#include "host/web/counted_notes.h"
#include "host/web/device_cookies.h"
#include "host/web/login_throttle.h"
#include "host/web/origin_check.h"
#include "host/web/session_console.h"
#include "host/web/session_table.h"
#include "host/web/transport.h"

namespace zrl::web {

struct ApplicationSettings {
  ConsoleSettings console;
  SessionTable::Limits limits;
  PasswordCost password_cost;
  std::string listen_address;
  std::vector<std::string> told_hosts;
  std::span<const Asset> assets;
  std::string version;
  std::string language;  // until a session changes it
};

// Answers the requests of browsers: the front end's files, signing in and out, downloads and uploads, and
// WebSockets for the sessions. All calls are made on the I/O thread. docs/protocol.md has the requests.
class Application : public HttpHandler {
 public:
  // `loop` must outlive it. Raises std::runtime_error if the accounts cannot be read.
  Application(ApplicationSettings settings, IoLoop& loop);

  // A new secret for choosing the first password; empty if an account exists.
  std::string make_setup_secret();

  void handle(Request request, Reply reply) override;
  std::variant<std::monostate, Response, std::shared_ptr<BodySink>> receive(const Request& request) override;
  std::variant<Response, std::shared_ptr<ChannelListener>> upgrade(const Request& request) override;

  // Ends all sessions; `done` is called when their threads have ended.
  void stop(std::function<void()> done);

 private:
  Response answer_get(const Request& request);
  Response asset(const Request& request) const;
  Response state(const Request& request);
  void set_up(Request& request, const Reply& reply);
  void log_in(Request& request, const Reply& reply);
  void change_password(Request& request, const Reply& reply);
  Response log_out(const Request& request);
  Response sign_in(const Request& request, const std::string& account);
  void note(const std::string& account, std::string_view what, const Request& request,
            std::string_view error = {}) const;
  void note_strangers(std::string_view what, std::string_view where, std::string_view why,
                      std::uint64_t times) const;
  // Notes a request that is not ours.
  bool is_ours(const Request& request);
  LoginThrottle::Try try_of(const Request& request, const std::string& account) const;
  // The answer to a client that has tried too often; nothing for others, whose try is counted.
  std::optional<Response> throttled(const LoginThrottle::Try& attempt, std::string_view what);
  // The answer while nothing may be done because it could not be recorded; nothing otherwise.
  std::optional<Response> unrecorded() const;
  std::string device_cookie(const Request& request, const std::string& account) const;

  ApplicationSettings settings_;
  OriginCheck origin_check_;
  Accounts accounts_;
  SetupSecret secret_;
  LoginThrottle throttle_;
  DeviceCookies devices_;
  CountedNotes strangers_;
  SessionTable sessions_;
};

}  // namespace zrl::web
