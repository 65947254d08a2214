#include "host/web/application.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <stdexcept>

#include <sodium.h>

#include "core/console.h"
#include "core/contracts/console_folder.h"
#include "core/text/text.h"
#include "core/text/utf8.h"
#include "host/web/audit.h"
#include "host/web/cookies.h"
#include "host/web/password_rules.h"
#include "host/web/responses.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

constexpr std::string_view cookie_name = "zrl_session";
constexpr std::string_view download_path = "/file/";
constexpr std::size_t max_json_depth = 4;
constexpr std::size_t longest_noted = 64;  // of what strangers send
constexpr std::string_view api_path = "/api";

// A value in the query, in which nothing that we understand needs an encoding; empty without it.
std::string_view query_value(const Request& request, std::string_view name) {
  std::string_view rest = request.query;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('&'), rest.size());
    const std::string_view item = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    const std::size_t sign = std::min(item.find('='), item.size());
    if (item.substr(0, sign) == name) return item.substr(std::min(sign + 1, item.size()));
  }
  return {};
}

Response too_many_tries(std::chrono::seconds wait) {
  Response response = json_response(429, {{"error", "too_many_tries"}, {"retryAfter", wait.count()}});
  response.headers.emplace_back("Retry-After", std::to_string(wait.count()));
  return response;
}

std::string session_cookie(const Request& request, std::string_view token) {
  return set_cookie(request, {.name = cookie_name, .value = token});
}

std::string_view session_token(const Request& request) {
  return cookie_of(request, cookie_name);
}

// Before any other use of the library.
ApplicationSettings with_randomness(ApplicationSettings settings) {
  if (::sodium_init() < 0) throw std::runtime_error("no source of random numbers");
  return settings;
}

bool says_json(const Request& request) {
  const std::string_view type = request.content_type;
  return equals_ignoring_case(trim(type.substr(0, type.find(';'))), "application/json");
}

std::optional<json::object> body_of(const Request& request) {
  if (!says_json(request)) return {};
  json::parse_options options;
  options.max_depth = max_json_depth;
  boost::system::error_code failure;
  json::value body = json::parse(request.body, failure, {}, options);
  if (failure || !body.is_object()) return {};
  return std::move(body.get_object());
}

// The texts of these members, in their order; nothing if one is missing.
template <std::size_t count>
std::optional<std::array<std::string, count>> texts_of(const Request& request,
                                                       const std::array<const char*, count>& names) {
  const std::optional<json::object> body = body_of(request);
  if (!body) return {};
  std::array<std::string, count> texts;
  for (std::size_t i = 0; i < count; ++i) {
    const json::value* value = body->if_contains(names[i]);
    if (value == nullptr || !value->is_string()) return {};
    texts[i] = value->get_string();
  }
  return texts;
}

}  // namespace

Application::Application(ApplicationSettings settings, IoLoop& loop)
    : settings_(with_randomness(std::move(settings))),
      origin_check_(settings_.listen_address, settings_.told_hosts),
      accounts_(console_folder::secrets(settings_.console.folder) / "accounts.json", loop,
                settings_.password_cost),
      devices_(console_folder::secrets(settings_.console.folder) / "device.key"),
      strangers_(loop, [this](std::string_view what, std::string_view where, std::string_view why,
                              std::uint64_t times) { note_strangers(what, where, why, times); }),
      sessions_(loop, settings_.console, settings_.limits,
                [this](std::string language) { settings_.language = std::move(language); }) {}

std::string Application::make_setup_secret() {
  return accounts_.empty() ? secret_.make() : std::string();
}

void Application::handle(Request request, Reply reply) {
  if (!is_ours(request)) {
    reply(error_response(403, "forbidden"));
  } else if (request.method == "GET") {
    reply(answer_get(request));
  } else if (request.method != "POST") {
    Response response = error_response(405, "bad_request");
    response.headers.emplace_back("Allow", "GET, HEAD, POST");
    reply(std::move(response));
  } else if (request.path == "/api/login") {
    log_in(request, reply);
  } else if (request.path == "/api/setup") {
    set_up(request, reply);
  } else if (request.path == "/api/password") {
    change_password(request, reply);
  } else if (request.path == "/api/logout") {
    reply(log_out(request));
  } else {
    reply(error_response(404, "bad_request"));
  }
}

Response Application::answer_get(const Request& request) {
  if (request.path == "/api/state") return state(request);
  if (!request.path.starts_with(download_path)) return asset(request);
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  if (!session) return error_response(401, "signed_out");
  return session->download(std::string_view(request.path).substr(download_path.size()), request.head_only);
}

std::variant<std::monostate, Response, std::shared_ptr<BodySink>> Application::receive(
    const Request& request) {
  if (request.method != "POST" || request.path != "/upload") return {};
  if (!is_ours(request)) return error_response(403, "forbidden");
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  if (!session) return error_response(401, "signed_out");
  return session->receive_upload(request, query_value(request, "tab"));
}

std::variant<Response, std::shared_ptr<ChannelListener>> Application::upgrade(const Request& request) {
  if (request.path != "/ws") return error_response(404, "bad_request");
  if (!is_ours(request)) return error_response(403, "forbidden");
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  if (!session) return error_response(401, "signed_out");
  const bool may_be_a_copy = query_value(request, "copy") == "1";
  return session->new_listener(query_value(request, "tab"),
                               may_be_a_copy ? Session::Claim::maybe_a_copy : Session::Claim::own);
}

Response Application::asset(const Request& request) const {
  const std::string_view path = request.path == "/" ? std::string_view("/index.html") : request.path;
  const auto found =
      std::lower_bound(settings_.assets.begin(), settings_.assets.end(), path,
                       [](const Asset& asset, std::string_view wanted) { return asset.path < wanted; });
  if (found == settings_.assets.end() || found->path != path) {
    return {.status = 404, .content_type = "text/plain; charset=utf-8", .body = "Not found\n"};
  }
  Response response{
      .content_type = std::string(found->content_type), .asset = found->bytes, .immutable = found->immutable};
  if (!found->gzipped.empty()) {
    response.headers.emplace_back("Vary", "Accept-Encoding");
    if (request.accepts_gzip) {
      response.asset = found->gzipped;
      response.headers.emplace_back("Content-Encoding", "gzip");
    }
  }
  return response;
}

Response Application::state(const Request& request) {
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  json::object object{{"setup", accounts_.empty()},
                      {"account", nullptr},
                      {"language", settings_.language},
                      {"product", product_name},
                      {"version", settings_.version}};
  if (session) object["account"] = session->account();
  return json_response(200, object);
}

bool Application::is_ours(const Request& request) {
  if (origin_check_.is_ours(request)) return true;
  const auto shown = [](std::string_view text) { return beginning_of(text, longest_noted); };
  strangers_.happened("request",
                      request.remote_address + " for \"" + std::string(shown(request.host)) +
                          "\", sent by \"" + std::string(shown(request.origin)) + "\"",
                      "not meant for this console, or not sent by its own pages");
  return false;
}

LoginThrottle::Try Application::try_of(const Request& request, const std::string& account) const {
  const std::string device =
      devices_.device_of(cookie_of(request, DeviceCookies::name), account, DeviceCookies::Clock::now());
  return {request.remote_address, account, device};
}

std::optional<Response> Application::throttled(const LoginThrottle::Try& attempt, std::string_view what) {
  const auto wait = throttle_.begin_try(attempt, LoginThrottle::Clock::now());
  if (wait.count() == 0) return {};
  strangers_.happened(what, attempt.address, "too many tries");
  return too_many_tries(wait);
}

std::optional<Response> Application::unrecorded() const {
  if (settings_.console.audit->permits_actions()) return {};
  return error_response(503, "no_audit");
}

void Application::set_up(Request& request, const Reply& reply) {
  auto texts = texts_of<3>(request, {"secret", "account", "password"});
  if (!texts) return reply(error_response(400, "bad_request"));
  request.body.clear();
  auto& [secret, account, password] = *texts;
  if (!accounts_.empty()) return reply(error_response(409, "already_set_up"));
  if (auto refusal = unrecorded()) return reply(std::move(*refusal));
  // Guessing the secret is hopeless; the address alone counts, so that nobody can keep its owner out.
  const LoginThrottle::Try attempt{request.remote_address, {}, {}};
  if (auto refusal = throttled(attempt, "set up")) return reply(std::move(*refusal));
  if (!secret_.is(secret)) {
    strangers_.happened("set up", request.remote_address, "wrong secret");
    return reply(error_response(401, "wrong_secret"));
  }
  throttle_.succeeded(attempt);
  if (!Accounts::is_acceptable_name(account)) return reply(error_response(400, "bad_request"));
  if (const auto fault = password_fault(password, account); !fault.empty()) {
    return reply(error_response(400, fault));
  }
  const bool taken = accounts_.create_first(
      account, std::move(password), [this, request, reply, name = account](Accounts::Creation creation) {
        if (creation == Accounts::Creation::created) {
          note(name, "set up", request);
          return reply(sign_in(request, name));
        }
        const bool exists = creation == Accounts::Creation::exists_already;
        reply(exists ? error_response(409, "already_set_up") : error_response(500, "not_saved"));
      });
  if (!taken) reply(too_many_tries(std::chrono::seconds(1)));
}

void Application::log_in(Request& request, const Reply& reply) {
  auto texts = texts_of<2>(request, {"account", "password"});
  if (!texts) return reply(error_response(400, "bad_request"));
  request.body.clear();
  auto& [account, password] = *texts;
  const LoginThrottle::Try attempt = try_of(request, account);
  if (auto refusal = throttled(attempt, "sign in")) return reply(std::move(*refusal));
  const auto verified = [this, request, reply, attempt](bool right) {
    if (!right) {
      note(attempt.account, "sign in", request, "wrong account or password");
      return reply(error_response(401, "wrong_password"));
    }
    throttle_.succeeded(attempt);
    reply(sign_in(request, attempt.account));
  };
  const auto urgency = attempt.device.empty() ? Accounts::Urgency::stranger : Accounts::Urgency::known;
  if (!accounts_.verify(account, std::move(password), urgency, verified)) {
    reply(too_many_tries(std::chrono::seconds(1)));
  }
}

Response Application::sign_in(const Request& request, const std::string& account) {
  sessions_.end(session_token(request));
  const std::string token = sessions_.begin(account);
  if (token.empty()) return error_response(503, "too_many_sessions");
  note(account, "sign in", request);
  Response response = json_response(200, {{"account", account}});
  response.headers.emplace_back("Set-Cookie", device_cookie(request, account));
  response.headers.emplace_back("Set-Cookie", session_cookie(request, token));
  return response;
}

std::string Application::device_cookie(const Request& request, const std::string& account) const {
  const std::string text =
      devices_.issue(account, try_of(request, account).device, DeviceCookies::Clock::now());
  return set_cookie(
      request,
      {.name = DeviceCookies::name, .value = text, .path = api_path, .lasts = DeviceCookies::valid_for});
}

// Whoever else is signed in to the account may be the reason for the change, and is signed out; whoever has
// learnt this session's token, too.
void Application::change_password(Request& request, const Reply& reply) {
  const std::string token(session_token(request));
  const std::shared_ptr<Session> session = sessions_.find(token);
  if (!session) return reply(error_response(401, "signed_out"));
  auto texts = texts_of<2>(request, {"password", "new_password"});
  if (!texts) return reply(error_response(400, "bad_request"));
  request.body.clear();
  auto& [password, new_password] = *texts;
  const std::string& account = session->account();
  if (const auto fault = password_fault(new_password, account); !fault.empty()) {
    return reply(error_response(400, fault));
  }
  if (auto refusal = unrecorded()) return reply(std::move(*refusal));
  // Only somebody who knew the password has a session, so each session is a lane of its own.
  const LoginThrottle::Try attempt{request.remote_address, account, "session " + token};
  if (auto refusal = throttled(attempt, "change password")) return reply(std::move(*refusal));
  const auto saved = [this, request, reply, token, account](bool done) {
    note(account, "change password", request, done ? "" : "not saved");
    if (!done) return reply(error_response(500, "not_saved"));
    sessions_.end_others(account, token);
    Response response = json_response(200, {{"account", account}});
    const std::string renewed = sessions_.renew(token);
    if (!renewed.empty()) response.headers.emplace_back("Set-Cookie", session_cookie(request, renewed));
    reply(std::move(response));
  };
  const auto verified = [this, request, reply, saved, attempt, chosen = std::move(new_password)](bool right) {
    if (!right) {
      note(attempt.account, "change password", request, "wrong password");
      return reply(error_response(401, "wrong_password"));
    }
    throttle_.succeeded(attempt);
    if (!accounts_.change(attempt.account, chosen, saved)) reply(too_many_tries(std::chrono::seconds(1)));
  };
  if (!accounts_.verify(account, std::move(password), Accounts::Urgency::known, verified)) {
    reply(too_many_tries(std::chrono::seconds(1)));
  }
}

void Application::note(const std::string& account, std::string_view what, const Request& request,
                       std::string_view error) const {
  AuditLog log(settings_.console.audit, std::string(beginning_of(account, longest_noted)));
  log.note("", "account", std::string(what) + " from " + request.remote_address, error);
}

void Application::note_strangers(std::string_view what, std::string_view where, std::string_view why,
                                 std::uint64_t times) const {
  AuditLog log(settings_.console.audit, "-");
  std::string text(what);
  if (times > 1) text += ", " + std::to_string(times) + " times, the last one";
  log.note("", "account", text.append(" from ").append(where), why);
}

void Application::stop(std::function<void()> done) {
  strangers_.flush();
  sessions_.stop(std::move(done));
}

Response Application::log_out(const Request& request) {
  if (!body_of(request)) return error_response(400, "bad_request");
  const std::string_view token = session_token(request);
  const std::shared_ptr<Session> session = sessions_.find(token);
  if (!session) return error_response(401, "signed_out");
  sessions_.end(token);
  note(session->account(), "sign out", request);
  Response response = json_response(200, {{"account", session->account()}});
  response.headers.emplace_back("Set-Cookie", session_cookie(request, {}));
  return response;
}

}  // namespace zrl::web
