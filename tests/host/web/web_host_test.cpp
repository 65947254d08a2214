#include <chrono>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/files.h"
#include "host/web/handler_page.h"
#include "host/web/running_host.h"
#include "host/web/uploads.h"

// The web host over real connections.
namespace zrl::test {

namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

json::object login(std::string_view password) {
  return {{"account", "admin"}, {"password", password}};
}

std::string error_of(const HttpAnswer& answer) {
  return std::string(answer.object().at("error").as_string());
}

web::WebHostOptions with_pages() {
  return {.pages = test_pages()};
}

TEST(WebHost, SigningInAndOut) {
  RunningHost host(with_pages());
  WebClient client(host.port());
  EXPECT_EQ(client.get("/api/state").object(),
            json::parse(R"({"setup": true, "account": null, "language": "english", "product": "Mirvan",
                            "version": "0.1.0"})"));
  EXPECT_EQ(error_of(client.post("/api/login", login("correct horse"))), "wrong_password");
  json::object setup{{"account", "admin"}, {"password", "correct horse"}, {"secret", "wrong"}};
  EXPECT_EQ(error_of(client.post("/api/setup", setup)), "wrong_secret");
  setup["secret"] = host.secret;
  setup["password"] = "too short";
  EXPECT_EQ(error_of(client.post("/api/setup", setup)), "weak_password");
  setup["password"] = "Password2024!";
  EXPECT_EQ(error_of(client.post("/api/setup", setup)), "common_password");
  setup["password"] = "correct horse";
  const HttpAnswer answer = client.post("/api/setup", setup);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.object(), json::parse(R"({"account": "admin"})"));
  EXPECT_THAT(answer.headers.at("set-cookie"),
              ::testing::MatchesRegex("zrl_session=[0-9a-f]{64}; Path=/; HttpOnly; SameSite=Strict"));
  EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
  EXPECT_EQ(error_of(client.post("/api/setup", setup)), "already_set_up");

  WebClient other(host.port());
  EXPECT_EQ(client.get("/api/state").object().at("setup"), false);
  EXPECT_EQ(other.get("/api/state").object().at("account"), nullptr);
  EXPECT_EQ(other.post("/api/logout", json::object()).status, 401);
  EXPECT_EQ(WebSocket(other).status, 401);
  EXPECT_EQ(error_of(other.post("/api/login", login("incorrect"))), "wrong_password");
  EXPECT_EQ(other.post("/api/login", login("correct horse")).status, 200);
  EXPECT_NE(other.cookie, client.cookie);

  WebSocket socket(client);
  socket.receive("hello");
  const std::string old_cookie = client.cookie;
  EXPECT_EQ(client.post("/api/logout", json::object()).status, 200);
  EXPECT_EQ(socket.close_code(), 4002);
  client.cookie = old_cookie;
  EXPECT_EQ(WebSocket(client).status, 401);
  EXPECT_EQ(other.get("/api/state").object().at("account"), "admin");
}

TEST(WebHost, GuessingIsSlowedDown) {
  RunningHost host(with_pages());
  host.sign_in();
  WebClient client(host.port());
  HttpAnswer answer;
  int tries = 0;
  do {
    answer = client.post("/api/login", login("guess number " + std::to_string(++tries)));
  } while (answer.status == 401);
  EXPECT_EQ(tries, 6);
  EXPECT_EQ(answer.status, 429);
  EXPECT_EQ(error_of(answer), "too_many_tries");
  EXPECT_EQ(answer.object().at("retryAfter"), 1);
  EXPECT_EQ(client.post("/api/login", login(RunningHost::password)).status, 429);
}

// From one address, as behind a proxy: strangers have used up its tries.
TEST(WebHost, WhoSignedInBeforeIsNotLockedOut) {
  RunningHost host(with_pages());
  WebClient known = host.sign_in();
  EXPECT_EQ(known.post("/api/logout", json::object()).status, 200);
  WebClient stranger(host.port());
  while (stranger.post("/api/login", login("a wrong guess")).status != 429) continue;
  EXPECT_EQ(stranger.post("/api/login", login(RunningHost::password)).status, 429);
  EXPECT_EQ(known.post("/api/login", login(RunningHost::password)).status, 200);
  EXPECT_EQ(known.post("/api/login", login(RunningHost::password)).status, 200);
  // What it proves is its account alone, and it may not guess for ever either.
  EXPECT_EQ(known.post("/api/login", {{"account", "root"}, {"password", "a wrong guess"}}).status, 429);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(known.post("/api/login", login("a wrong guess")).status, 401);
  EXPECT_EQ(known.post("/api/login", login(RunningHost::password)).status, 429);
  const std::string log = read_file(host.audit_file());
  EXPECT_THAT(log, HasSubstr("\taccount\tfailed\tsign in from 127.0.0.1\ttoo many tries\n"));
}

TEST(WebHost, AnotherPassword) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  WebClient stranger = host.sign_in();
  const auto change = [&](WebClient& browser, std::string_view password, std::string_view new_password) {
    return browser.post("/api/password", {{"password", password}, {"new_password", new_password}});
  };
  WebClient nobody(host.port());
  EXPECT_EQ(error_of(change(nobody, RunningHost::password, "staple battery")), "signed_out");
  EXPECT_EQ(error_of(change(client, "a wrong guess", "staple battery")), "wrong_password");
  EXPECT_EQ(error_of(change(client, RunningHost::password, "too short")), "weak_password");
  EXPECT_EQ(error_of(change(client, RunningHost::password, "admin1234567")), "common_password");
  WebSocket socket(client);
  socket.receive("hello");
  const std::string old_cookie = client.cookie;
  EXPECT_EQ(change(client, RunningHost::password, "staple battery").status, 200);
  // The session goes on under another token.
  EXPECT_NE(client.cookie, old_cookie);
  socket.until_done(socket.open("handlers"));
  WebClient thief(host.port());
  thief.cookie = old_cookie;
  EXPECT_EQ(thief.get("/api/state").object().at("account"), nullptr);

  EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
  EXPECT_EQ(stranger.get("/api/state").object().at("account"), nullptr);
  EXPECT_EQ(error_of(nobody.post("/api/login", login(RunningHost::password))), "wrong_password");
  EXPECT_EQ(nobody.post("/api/login", login("staple battery")).status, 200);
  EXPECT_THAT(read_file(host.audit_file()),
              ::testing::HasSubstr("account\tfailed\tchange password from 127.0.0.1\twrong password\n"));
  EXPECT_THAT(read_file(host.audit_file()),
              ::testing::HasSubstr("account\tok\tchange password from 127.0.0.1\n"));
}

TEST(WebHost, RequestsThatAreNotOursAreRefused) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  const std::string own = "Host: " + client.host() + "\r\n";
  const std::string origin = "Origin: http://" + client.host() + "\r\n";
  const std::string cookie = "Cookie: zrl_session=" + client.cookie + "\r\n";
  const std::string upgrade =
      "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n";
  const std::string body = "Content-Type: application/json\r\nContent-Length: 2\r\n\r\n{}";
  struct Case {
    std::string request;
    int status;
  };
  const Case cases[] = {
      {"GET / HTTP/1.1\r\nHost: evil.example\r\n\r\n", 403},
      {"GET / HTTP/1.1\r\n\r\n", 403},
      {"GET /api/state HTTP/1.1\r\n" + own + "Origin: http://evil.example\r\n\r\n", 403},
      {"GET / HTTP/1.1\r\n" + own + "\r\n", 200},
      {"POST /api/logout HTTP/1.1\r\n" + own + cookie + body, 403},
      {"POST /api/logout HTTP/1.1\r\n" + own + "Origin: https://" + client.host() + "\r\n" + cookie + body,
       403},
      {"GET /ws HTTP/1.1\r\n" + own + cookie + upgrade + "\r\n", 403},
      {"GET /ws HTTP/1.1\r\n" + own + "Origin: http://evil.example\r\n" + cookie + upgrade + "\r\n", 403},
      {"GET /ws HTTP/1.1\r\nHost: evil.example\r\nOrigin: http://evil.example\r\n" + cookie + upgrade +
           "\r\n",
       403},
      {"GET /ws HTTP/1.1\r\n" + own + origin + cookie + upgrade + "\r\n", 101},
      {"GET /other HTTP/1.1\r\n" + own + origin + cookie + upgrade + "\r\n", 404},
      {"POST /api/login HTTP/1.1\r\n" + own + origin +
           "Content-Type: text/plain\r\nContent-Length: 2\r\n\r\n{}",
       400},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + body, 400},
      {"POST /api/nothing HTTP/1.1\r\n" + own + origin + body, 404},
      {"PUT / HTTP/1.1\r\n" + own + origin + body, 405},
      // Where a request ends, and whom it is for, is beyond doubt.
      {"GET / HTTP/1.1\r\n" + own + "Host: evil.example\r\n\r\n", 400},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Transfer-Encoding: gzip\r\n\r\n", 501},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Transfer-Encoding: chunked, gzip\r\n\r\n0\r\n\r\n",
       501},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n",
       501},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Transfer-Encoding: xchunked\r\n\r\n", 501},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Content-Type: application/json\r\n" +
           "Transfer-Encoding: Chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n",
       400},
      {"POST /api/login HTTP/1.1\r\n" + own + origin +
           "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}",
       400},
      // What is neither head nor body is not kept without a bound.
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Transfer-Encoding: chunked\r\n\r\n1;" +
           std::string(200'000, 'x'),
       400},
      {"POST /api/login HTTP/1.1\r\n" + own + origin +
           "Transfer-Encoding: chunked\r\n\r\n0\r\nX: " + std::string(200'000, 'x'),
       400},
      // The library's refusals of hand-shakes look like ours.
      {"GET /ws HTTP/1.1\r\n" + own + origin + cookie +
           "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 12\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n",
       426},
      {"GET /ws HTTP/1.1\r\n" + own + origin + cookie +
           "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n\r\n",
       400},
      {"GET /../accounts.json HTTP/1.1\r\n" + own + "\r\n", 404},
      {"nonsense\r\n\r\n", 400},
      {"GET / HTTP/1.1\r\n" + own + "X: " + std::string(20'000, 'x') + "\r\n\r\n", 431},
      {"POST /api/login HTTP/1.1\r\n" + own + origin + "Content-Length: 70000\r\n\r\n", 413},
  };
  for (const Case& tried : cases) {
    HttpAnswer answer = client.raw(tried.request);
    EXPECT_EQ(answer.status, tried.status) << tried.request.substr(0, 200);
    EXPECT_THAT(answer.headers["content-security-policy"],
                "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
                "font-src 'self'; connect-src 'self'; base-uri 'none'; form-action 'none'; "
                "frame-ancestors 'none'");
    EXPECT_EQ(answer.headers["x-content-type-options"], "nosniff");
    EXPECT_EQ(answer.headers["cache-control"], "no-store");
    EXPECT_THAT(answer.headers["server"], ::testing::AnyOf("", "zrlconsole"));
  }
  EXPECT_THAT(read_file(host.audit_file()), HasSubstr("request from 127.0.0.1 for \"evil.example\""));
  EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
}

TEST(WebHost, AHeadIsAnAnswerWithoutItsBody) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  const HttpAnswer whole = client.get("/");
  TcpConnection connection(host.port());
  // On one connection, so that a body would be taken for the next answer.
  for (const char* path : {"/", "/api/state", "/nothing"}) {
    connection.write(client.head("HEAD", path) + "\r\n");
    std::string answer;
    while (!answer.ends_with("\r\n\r\n")) answer += connection.read();
    EXPECT_THAT(answer, ::testing::StartsWith("HTTP/1.1 " + std::to_string(client.get(path).status)));
    EXPECT_THAT(answer, HasSubstr("Content-Length: " + client.get(path).headers.at("content-length")));
  }
  WebSocket socket(client);
  socket.until_done(socket.open("allcontrols"));
  socket.click("allcontrols", "offer");
  const std::string path = "/file/" + std::string(socket.receive("file").at("token").as_string());
  EXPECT_EQ(client.raw(client.head("HEAD", path, "Connection: close\r\n") + "\r\n").status, 200);
  EXPECT_THAT(read_file(host.audit_file()), ::testing::Not(HasSubstr("download")));
}

TEST(WebHost, TheFrontEndIsBuiltIn) {
  RunningHost host(with_pages());
  WebClient client(host.port());
  const HttpAnswer plain = client.get("/");
  EXPECT_EQ(plain.status, 200);
  EXPECT_EQ(plain.headers.at("content-type"), "text/html; charset=utf-8");
  EXPECT_THAT(plain.body, ::testing::StartsWith("<!"));
  EXPECT_EQ(client.get("/index.html?x=1").body, plain.body);
  const HttpAnswer zipped = client.get("/", "Accept-Encoding: gzip, br\r\n");
  EXPECT_EQ(zipped.headers.at("content-encoding"), "gzip");
  EXPECT_LT(zipped.body.size(), plain.body.size());
}

TEST(WebHost, RulesOfTheWebSocket) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  {
    WebSocket socket(client);
    socket.send_frame(2, "binary");
    EXPECT_EQ(socket.close_code(), 1003);
  }
  {
    WebSocket socket(client);
    socket.send_frame(1, std::string((1 << 20) + 1, 'x'));
    EXPECT_EQ(socket.close_code(), 1009);
  }
  {
    WebSocket socket(client);
    socket.receive("hello");
    for (int i = 0; i < 20; ++i) socket.send_text("malformed");
    EXPECT_EQ(socket.close_code(), 1008);
    EXPECT_EQ(socket.errors.size(), 20u);
  }
  WebSocket socket(client);
  socket.until_done(socket.open("handlers"));
}

// What browsers send by themselves is not what a person does.
TEST(WebHost, OnlyAPersonKeepsASessionAlive) {
  web::WebHostOptions options = with_pages();
  options.session_limits.times.idle = 600ms;
  options.session_limits.sweep = 20ms;
  RunningHost host(std::move(options));
  WebClient client = host.sign_in();
  WebSocket socket(client);
  socket.until_done(socket.open("allcontrols"));
  const auto send_for = [&](std::chrono::milliseconds time, const char* message) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
      socket.send_text(message);
      std::this_thread::sleep_for(50ms);
    }
  };
  send_for(1000ms, R"({"type": "active"})");
  EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
  send_for(1000ms, R"({"type": "rows", "form": "allcontrols", "control": "List1", "request": 1, "start": 0,
                       "count": 10, "filter": ""})");
  EXPECT_EQ(client.get("/api/state").object().at("account"), nullptr);
  EXPECT_THAT(read_file(host.audit_file()),
              HasSubstr("\taccount\tok\tthe session has ended: nobody used it\n"));
}

TEST(WebHost, IdleAndOldSessionsEnd) {
  for (const bool idle : {true, false}) {
    web::WebHostOptions options = with_pages();
    (idle ? options.session_limits.times.idle : options.session_limits.times.longest) = 600ms;
    options.session_limits.sweep = 20ms;
    RunningHost host(std::move(options));
    WebClient client = host.sign_in();
    WebSocket socket(client);
    socket.receive("hello");
    const auto begin = std::chrono::steady_clock::now();
    // Messages keep a session from being idle, but not from growing old.
    std::uint64_t sent = 0;
    while (std::chrono::steady_clock::now() - begin < (idle ? 1000ms : 400ms)) {
      sent = socket.open("boxed");
      std::this_thread::sleep_for(50ms);
    }
    EXPECT_GT(sent, 0u);
    EXPECT_EQ(client.get("/api/state").object().at("account"), "admin");
    EXPECT_EQ(socket.close_code(), 4002);
    EXPECT_EQ(client.get("/api/state").object().at("account"), nullptr);
  }
}

TEST(WebHost, SessionsAreCounted) {
  web::WebHostOptions options = with_pages();
  options.session_limits.sessions = 2;
  RunningHost host(std::move(options));
  WebClient first = host.sign_in();
  WebClient second = host.sign_in();
  WebClient third(host.port());
  EXPECT_EQ(error_of(third.post("/api/login", login(RunningHost::password))), "too_many_sessions");
  // Signing in again in the same browser ends the session that it had.
  EXPECT_EQ(second.post("/api/login", login(RunningHost::password)).status, 200);
  first.post("/api/logout", json::object());
  EXPECT_EQ(third.post("/api/login", login(RunningHost::password)).status, 200);
}

TEST(WebHost, ABlockedSessionStopsNoOther) {
  RunningHost host(with_pages());
  WebClient blocked_client = host.sign_in();
  WebSocket blocked(blocked_client);
  blocked.until_done(blocked.open("handlers"));
  const std::uint64_t seq = blocked.click("handlers", "block");
  json::object busy = blocked.receive("busy");
  EXPECT_EQ(busy.at("on"), true);
  // More events than may wait: the rest is not even read.
  std::uint64_t last = 0;
  for (int i = 0; i < 600; ++i) last = blocked.click("handlers", "count");

  std::vector<WebClient> clients;
  std::vector<std::unique_ptr<WebSocket>> sockets;
  for (int i = 0; i < 10; ++i) {
    clients.push_back(host.sign_in());
    sockets.push_back(std::make_unique<WebSocket>(clients.back()));
  }
  for (const auto& socket : sockets) socket->until_done(socket->open("handlers"));
  for (const auto& socket : sockets) socket->until_done(socket->click("handlers", "count"));
  for (const auto& socket : sockets) EXPECT_EQ(socket->held("handlers", "clicks", "caption"), "1");

  std::ofstream(host.folder() / "go") << "go";
  blocked.until_done(seq);
  blocked.until_done(last);
  EXPECT_EQ(blocked.held("handlers", "clicks", "caption"), "600");
}

TEST(WebHost, ABrowserThatDoesNotReadIsCutOff) {
  web::WebHostOptions options = with_pages();
  options.server_limits.send_queue_bytes = 1 << 20;
  RunningHost host(std::move(options));
  WebClient lazy_client = host.sign_in();
  WebSocket lazy(lazy_client);
  const std::string tab(lazy.receive("hello").at("tab").as_string());
  lazy.until_done(lazy.open("allcontrols"));
  lazy.until_done(lazy.click("allcontrols", "fill"));
  WebClient other_client = host.sign_in();
  WebSocket other(other_client);
  other.until_done(other.open("handlers"));
  int asked = 0;
  for (; asked < 100'000 && !lazy.broken; ++asked) {
    lazy.send(json::parse(R"({"type": "rows", "form": "allcontrols", "control": "List1", "request": 1,
                              "start": 0, "count": 500, "filter": ""})"));
    if (asked % 500 == 0) other.until_done(other.click("handlers", "count"));
  }
  EXPECT_TRUE(lazy.broken);
  EXPECT_GT(asked, 100);
  // It may come back.
  WebSocket again(lazy_client, "?tab=" + tab);
  EXPECT_EQ(again.receive("hello").at("open"), "allcontrols");
}

TEST(WebHost, AnAddressHasOnlySoManyConnections) {
  web::WebHostOptions options = with_pages();
  options.server_limits.connections_a_network = 3;
  options.server_limits.request = 1000ms;
  RunningHost host(std::move(options));
  WebClient first = host.sign_in();
  WebSocket open(first);
  open.receive("hello");
  std::vector<TcpConnection> connections;
  for (int i = 0; i < 3; ++i) connections.emplace_back(host.port());
  // The open WebSocket keeps its place; of those that have sent no request, the oldest gave way.
  EXPECT_EQ(connections[0].read(), "");
  connections[1].write("GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
  EXPECT_THAT(connections[1].read(), HasSubstr("200 OK"));
  // Who sends a request by the byte is not waited for.
  connections[2].write("GET / HT");
  EXPECT_EQ(connections[2].read(), "");
  open.until_done(open.open("handlers"));
  WebClient client(host.port());
  EXPECT_EQ(client.get("/").status, 200);
}

TEST(WebHost, SilentConnectionsKeepNobodyOut) {
  web::WebHostOptions options = with_pages();
  options.server_limits.connections = 20;
  options.server_limits.connections_a_network = 20;
  RunningHost host(std::move(options));
  WebClient client = host.sign_in();
  std::vector<TcpConnection> silent;
  for (int i = 0; i < 100; ++i) {
    silent.emplace_back(host.port());
    if (i % 2 == 0) silent.back().write("POST /api/login HTTP/1.1\r\nHost: 127");
    if (i % 5 == 0) {
      EXPECT_EQ(client.post("/api/login", login(RunningHost::password)).status, 200) << i;
    }
  }
}

TEST(WebHost, StoppingEndsWhatRuns) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  WebSocket socket(client);
  socket.until_done(socket.open("handlers"));
  socket.click("handlers", "pump");
  while (socket.held("handlers", "state", "caption") != "1 pumping") socket.receive("change");
  host.stop();
  EXPECT_EQ(socket.close_code(), 1001);
  EXPECT_THROW(TcpConnection(host.port()), std::runtime_error);
  host.join();
  EXPECT_TRUE(std::filesystem::exists(host.folder() / "handlers-left"));
}

std::string upload_of(const WebClient& client, const std::string& target, const std::string& content,
                      const std::string& tab) {
  return client.head("POST", "/upload?tab=" + tab,
                     "Content-Type: application/octet-stream\r\nUpload-To: " + target +
                         "\r\nContent-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content);
}

TEST(WebHost, FilesComeAndGo) {
  RunningHost host(with_pages());
  WebClient client = host.sign_in();
  EXPECT_EQ(error_of(client.raw(upload_of(client, "sample/File1/a.txt", "x", "none"))), "no_form");
  WebSocket socket(client);
  const std::string tab(socket.receive("hello").at("tab").as_string());
  socket.until_done(socket.open("allcontrols"));
  socket.click("allcontrols", "open");
  while (!socket.forms.contains("sample")) socket.receive("form");
  // More than a piece, and more than an ordinary request may bring.
  std::string content;
  while (content.size() < 3'000'000) content += "line " + std::to_string(content.size()) + "\n";
  const HttpAnswer uploaded = client.raw(upload_of(client, "sample/File1/a.txt", content, tab));
  EXPECT_EQ(uploaded.status, 200);
  EXPECT_EQ(uploaded.object().at("name"), "a.txt");
  EXPECT_EQ(read_file(host.folder() / "upload" / "a.txt", content.size()), content);
  EXPECT_EQ(client.raw(upload_of(client, "sample/File1/empty", "", tab)).object().at("name"), "empty");

  EXPECT_EQ(error_of(client.raw(upload_of(client, "sample", "x", tab))), "bad_request");
  EXPECT_EQ(client
                .raw(client.head("POST", "/upload?tab=" + tab,
                                 "Content-Type: application/octet-stream\r\nUpload-To: a/b/c\r\n"
                                 "Content-Length: 67108865\r\n\r\n"))
                .status,
            413);
  EXPECT_EQ(client.raw(client.head("POST", "/api/login", "Content-Length: 65537\r\n\r\n")).status, 413);
  WebClient stranger(host.port());
  EXPECT_EQ(error_of(stranger.raw(upload_of(stranger, "sample/File1/a.txt", "x", tab))), "signed_out");
  {
    // Broken off in the middle.
    TcpConnection connection(host.port());
    std::string request = upload_of(client, "sample/File1/broken.txt", content, tab);
    request.resize(request.size() - 1'000'000);
    connection.write(request);
  }
  const std::filesystem::path arriving = host.folder() / "upload" / ".arriving";
  for (int i = 0; i < 2400 && !std::filesystem::is_empty(arriving); ++i) std::this_thread::sleep_for(25ms);
  EXPECT_TRUE(std::filesystem::is_empty(arriving));
  EXPECT_FALSE(std::filesystem::exists(host.folder() / "upload" / "broken.txt"));

  // All together have a limit, too: of files that are there, and of those that are on their way.
  std::filesystem::resize_file(host.folder() / "upload" / "a.txt", web::UploadFolder::all_files - (70 << 20));
  TcpConnection slow(host.port());
  slow.write(client.head("POST", "/upload?tab=" + tab,
                         "Content-Type: application/octet-stream\r\nUpload-To: sample/File1/slow\r\n"
                         "Content-Length: 60000000\r\n\r\nx"));
  while (std::filesystem::is_empty(arriving)) std::this_thread::sleep_for(10ms);
  EXPECT_EQ(
      error_of(client.raw(client.head("POST", "/upload?tab=" + tab,
                                      "Content-Type: application/octet-stream\r\n"
                                      "Upload-To: sample/File1/more\r\nContent-Length: 20000000\r\n\r\n"))),
      "no_room");
  EXPECT_EQ(client.raw(upload_of(client, "sample/File1/small", "x", tab)).status, 200);

  socket.close_form("sample");
  socket.click("allcontrols", "offer");
  const json::object offer = socket.receive("file");
  const std::string path = "/file/" + std::string(offer.at("token").as_string());
  const HttpAnswer file = client.get(path);
  EXPECT_EQ(file.status, 200);
  EXPECT_EQ(file.body, "apple.example\nbanana.example\n");
  EXPECT_EQ(file.headers.at("content-type"), "application/octet-stream");
  EXPECT_EQ(file.headers.at("x-content-type-options"), "nosniff");
  EXPECT_EQ(file.headers.at("cache-control"), "no-store");
  EXPECT_THAT(file.headers.at("content-disposition"), HasSubstr("UTF-8''list%20of%20h%C3%B6sts.txt"));
  EXPECT_EQ(stranger.get(path).status, 401);
  EXPECT_EQ(host.sign_in().get(path).status, 404);  // another session's
  EXPECT_EQ(client.get("/file/../proxy.ini").status, 404);
  EXPECT_EQ(client.get("/file/").status, 404);
  std::filesystem::remove(host.folder() / "list of h\u00f6sts.txt");
  EXPECT_EQ(client.get(path).status, 404);
  EXPECT_THAT(read_file(host.audit_file()), HasSubstr("\tdownload\tok\t"));
}

}  // namespace

}  // namespace zrl::test
