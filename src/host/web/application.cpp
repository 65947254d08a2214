#include "host/web/application.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <stdexcept>

#include <sodium.h>

#include "core/console.h"
#include "core/text/text.h"
#include "host/web/audit.h"
#include "host/web/responses.h"
#include "host/web/uploads.h"

namespace zrl::web {

namespace {

namespace json = boost::json;

constexpr std::string_view cookie_name = "zrl_session";
constexpr std::string_view download_path = "/file/";
constexpr std::size_t max_json_depth = 4;

Response too_many_tries(std::chrono::seconds wait) {
  Response response = json_response(429, {{"error", "too_many_tries"}, {"retryAfter", wait.count()}});
  response.headers.emplace_back("Retry-After", std::to_string(wait.count()));
  return response;
}

std::string cookie_header(const Request& request, std::string_view token) {
  std::string text(cookie_name);
  text.append("=").append(token).append("; Path=/; HttpOnly; SameSite=Strict");
  if (token.empty()) text += "; Max-Age=0";
  if (request.over_tls || request.origin.starts_with("https://")) text += "; Secure";
  return text;
}

std::string_view session_token(const Request& request) {
  std::string_view rest = request.cookie;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    const std::string_view cookie = trim(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (cookie.starts_with(cookie_name) && cookie.substr(cookie_name.size()).starts_with('=')) {
      return cookie.substr(cookie_name.size() + 1);
    }
  }
  return {};
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
    : settings_(std::move(settings)),
      origin_check_(settings_.listen_address, settings_.told_hosts),
      accounts_(settings_.console.folder / "accounts.json", loop, settings_.password_cost),
      sessions_(loop, settings_.console, settings_.limits,
                [this](std::string language) { settings_.language = std::move(language); }) {
  if (::sodium_init() < 0) throw std::runtime_error("no source of random numbers");
  UploadFolder(settings_.console.folder).sweep();
}

std::string Application::make_setup_secret() {
  return accounts_.empty() ? secret_.make() : std::string();
}

void Application::handle(Request request, Reply reply) {
  if (!origin_check_.is_ours(request)) {
    reply(error_response(403, "forbidden"));
  } else if (request.method == "GET") {
    reply(answer_get(request));
  } else if (request.method != "POST") {
    Response response = error_response(405, "bad_request");
    response.headers.emplace_back("Allow", "GET, POST");
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
  return session->download(std::string_view(request.path).substr(download_path.size()));
}

std::variant<std::monostate, Response, std::shared_ptr<BodySink>> Application::receive(
    const Request& request) {
  if (request.method != "POST" || request.path != "/upload") return {};
  if (!origin_check_.is_ours(request)) return error_response(403, "forbidden");
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  if (!session) return error_response(401, "signed_out");
  return session->receive_upload(request);
}

std::variant<Response, std::shared_ptr<ChannelListener>> Application::upgrade(const Request& request) {
  if (request.path != "/ws") return error_response(404, "bad_request");
  if (!origin_check_.is_ours(request)) return error_response(403, "forbidden");
  const std::shared_ptr<Session> session = sessions_.find(session_token(request));
  if (!session) return error_response(401, "signed_out");
  return session->new_listener();
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

std::optional<Response> Application::throttled(const Request& request) {
  const auto wait = throttle_.begin_try(request.remote_address, LoginThrottle::Clock::now());
  if (wait.count() == 0) return {};
  return too_many_tries(wait);
}

void Application::set_up(Request& request, const Reply& reply) {
  auto texts = texts_of<3>(request, {"secret", "account", "password"});
  if (!texts) return reply(error_response(400, "bad_request"));
  request.body.clear();
  auto& [secret, account, password] = *texts;
  if (!accounts_.empty()) return reply(error_response(409, "already_set_up"));
  if (auto refusal = throttled(request)) return reply(std::move(*refusal));
  if (!secret_.is(secret)) return reply(error_response(401, "wrong_secret"));
  throttle_.succeeded(request.remote_address);
  if (!Accounts::is_acceptable_name(account)) return reply(error_response(400, "bad_request"));
  if (!Accounts::is_acceptable_password(password)) return reply(error_response(400, "weak_password"));
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
  if (auto refusal = throttled(request)) return reply(std::move(*refusal));
  const bool taken =
      accounts_.verify(account, std::move(password), [this, request, reply, name = account](bool right) {
        if (!right) {
          note(name, "sign in", request, "wrong account or password");
          return reply(error_response(401, "wrong_password"));
        }
        throttle_.succeeded(request.remote_address);
        reply(sign_in(request, name));
      });
  if (!taken) reply(too_many_tries(std::chrono::seconds(1)));
}

Response Application::sign_in(const Request& request, const std::string& account) {
  sessions_.end(session_token(request));
  const std::string token = sessions_.begin(account);
  if (token.empty()) return error_response(503, "too_many_sessions");
  note(account, "sign in", request);
  Response response = json_response(200, {{"account", account}});
  response.headers.emplace_back("Set-Cookie", cookie_header(request, token));
  return response;
}

// Whoever else is signed in to the account may be the reason for the change, and is signed out.
void Application::change_password(Request& request, const Reply& reply) {
  const std::string token(session_token(request));
  const std::shared_ptr<Session> session = sessions_.find(token);
  if (!session) return reply(error_response(401, "signed_out"));
  auto texts = texts_of<2>(request, {"password", "new_password"});
  if (!texts) return reply(error_response(400, "bad_request"));
  request.body.clear();
  auto& [password, new_password] = *texts;
  if (!Accounts::is_acceptable_password(new_password)) return reply(error_response(400, "weak_password"));
  if (auto refusal = throttled(request)) return reply(std::move(*refusal));
  const auto saved = [this, request, reply, token, account = session->account()](bool done) {
    note(account, "change password", request, done ? "" : "not saved");
    if (!done) return reply(error_response(500, "not_saved"));
    sessions_.end_others(account, token);
    reply(json_response(200, {{"account", account}}));
  };
  const auto verified = [this, request, reply, saved, account = session->account(),
                         chosen = std::move(new_password)](bool right) {
    if (!right) {
      note(account, "change password", request, "wrong password");
      return reply(error_response(401, "wrong_password"));
    }
    throttle_.succeeded(request.remote_address);
    if (!accounts_.change(account, chosen, saved)) reply(too_many_tries(std::chrono::seconds(1)));
  };
  if (!accounts_.verify(session->account(), std::move(password), verified)) {
    reply(too_many_tries(std::chrono::seconds(1)));
  }
}

void Application::note(const std::string& account, std::string_view what, const Request& request,
                       std::string_view error) const {
  AuditLog log(settings_.console.folder / "audit.log", account);
  log.note("", "account", std::string(what) + " from " + request.remote_address, error);
}

Response Application::log_out(const Request& request) {
  if (!body_of(request)) return error_response(400, "bad_request");
  const std::string_view token = session_token(request);
  const std::shared_ptr<Session> session = sessions_.find(token);
  if (!session) return error_response(401, "signed_out");
  sessions_.end(token);
  note(session->account(), "sign out", request);
  Response response = json_response(200, {{"account", session->account()}});
  response.headers.emplace_back("Set-Cookie", cookie_header(request, {}));
  return response;
}

}  // namespace zrl::web
