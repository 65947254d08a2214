#include "host/web/http_server.h"

#include <algorithm>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <optional>
#include <stdexcept>

#include <sys/resource.h>

#include "host/web/client_network.h"
#include "host/web/http_connection.h"
#include "host/web/tls_certificate.h"

namespace zrl::web {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using tcp = asio::ip::tcp;
using asio::awaitable;
using asio::use_awaitable;
using std::chrono::milliseconds;

constexpr milliseconds stop_grace{200};

constexpr milliseconds certificate_check{1000};
// A session needs about ten, and there are 32.
constexpr std::size_t descriptors_for_sessions = 512;
constexpr rlim_t wanted_descriptors = 4096;

// Connections are cheap, but each takes a descriptor, and the customary limit is low for the sake of programs
// that use select(), which this one does not.
std::size_t affordable(std::size_t connections) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return connections;
  if (limit.rlim_cur < wanted_descriptors) {
    limit.rlim_cur = std::min(limit.rlim_max, wanted_descriptors);
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
  const auto left = static_cast<std::size_t>(limit.rlim_cur);
  return std::min(connections, std::max(left / 2, left - std::min(left, descriptors_for_sessions)));
}

}  // namespace

class HttpServer::Implementation {
 public:
  explicit Implementation(const ServerOptions& options)
      : options_(options),
        slots_({.slots = affordable(options_.limits.connections),
                .slots_a_network = options_.limits.connections_a_network}),
        acceptor_(io_) {
    if (!options_.certificate.empty() || !options_.key.empty()) {
      certificate_.emplace(options_.certificate, options_.key);
    }
    listen();
  }

  void start(HttpHandler& handler) {
    context_.handler = &handler;
    asio::co_spawn(io_, accept_all(), asio::detached);
  }

  std::uint16_t port() const { return port_; }

  std::vector<std::string> warnings() const {
    std::vector<std::string> found;
    if (certificate_) return certificate_->warnings();
    if (!acceptor_.local_endpoint().address().is_loopback()) {
      found.push_back(
          "without a certificate, passwords pass the network in the clear, unless a proxy in front "
          "adds TLS");
    }
    return found;
  }

  void reload() {
    if (certificate_) renew_certificate(true);
  }

  asio::io_context& io() { return io_; }

  void close_listener() {
    context_.closing = true;
    error_code ignored;
    acceptor_.close(ignored);
  }

 private:
  void listen() {
    const std::string where = options_.address + ":" + std::to_string(options_.port);
    error_code failure;
    const asio::ip::address address =
        asio::ip::make_address(options_.address == "localhost" ? "127.0.0.1" : options_.address, failure);
    if (failure) throw std::runtime_error("not an address to listen on: " + options_.address);
    const tcp::endpoint endpoint(address, options_.port);
    if (!failure) acceptor_.open(endpoint.protocol(), failure);
    if (!failure) acceptor_.set_option(asio::socket_base::reuse_address(true), failure);
    if (!failure) acceptor_.bind(endpoint, failure);
    if (!failure) acceptor_.listen(asio::socket_base::max_listen_connections, failure);
    if (failure) throw std::runtime_error("cannot listen on " + where + ": " + failure.message());
    port_ = acceptor_.local_endpoint().port();
  }

  awaitable<void> accept_all() {
    while (acceptor_.is_open()) {
      error_code failure;
      tcp::socket socket = co_await acceptor_.async_accept(asio::redirect_error(use_awaitable, failure));
      if (!acceptor_.is_open()) co_return;
      if (failure) {
        // Out of descriptors, say; more come back when connections end.
        asio::steady_timer pause(io_, milliseconds(100));
        co_await pause.async_wait(asio::redirect_error(use_awaitable, failure));
        continue;
      }
      const tcp::endpoint peer = socket.remote_endpoint(failure);
      if (failure) continue;
      const std::string address = peer.address().to_string();
      auto slot = slots_.enter(network_of(address), ConnectionSlots::Clock::now());
      if (!slot) continue;
      socket.set_option(tcp::no_delay(true), failure);
      asio::co_spawn(io_, serve(std::move(socket), address, std::move(slot)), asio::detached);
    }
  }

  awaitable<void> serve(tcp::socket socket, std::string address,
                        std::unique_ptr<ConnectionSlots::Slot> slot) {
    const std::shared_ptr<asio::ssl::context> tls = tls_context();
    try {
      co_await serve_connection(std::move(socket), tls.get(), std::move(address), *slot, context_);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
  }

  // Null without TLS.
  std::shared_ptr<asio::ssl::context> tls_context() {
    if (!certificate_) return {};
    const auto now = std::chrono::steady_clock::now();
    if (now >= next_certificate_check_) {
      next_certificate_check_ = now + certificate_check;
      renew_certificate(false);
    }
    return certificate_->context();
  }

  void renew_certificate(bool in_any_case) {
    const std::string problem = certificate_->renew(in_any_case);
    if (!problem.empty() && options_.notify) options_.notify(problem);
  }

  const ServerOptions options_;
  ConnectionContext context_{.limits = options_.limits};
  ConnectionSlots slots_;
  std::optional<TlsCertificate> certificate_;
  std::chrono::steady_clock::time_point next_certificate_check_{};
  asio::io_context io_{1};
  tcp::acceptor acceptor_;
  std::uint16_t port_ = 0;
};

HttpServer::HttpServer(const ServerOptions& options)
    : implementation_(std::make_unique<Implementation>(options)) {}

// Tasks that never ran hold sessions, which end with them and may want to post: there is no loop any more
// then.
HttpServer::~HttpServer() {
  const std::unique_ptr<Implementation> last = std::move(implementation_);
}

std::uint16_t HttpServer::port() const {
  return implementation_->port();
}

std::vector<std::string> HttpServer::warnings() const {
  return implementation_->warnings();
}

void HttpServer::reload() {
  post([this] { implementation_->reload(); });
}

void HttpServer::start(HttpHandler& handler) {
  implementation_->start(handler);
}

void HttpServer::run() {
  implementation_->io().run();
}

void HttpServer::close_listener() {
  implementation_->close_listener();
}

void HttpServer::stop() {
  after(stop_grace, [this] { implementation_->io().stop(); });
}

void HttpServer::post(std::function<void()> task) {
  if (implementation_) asio::post(implementation_->io(), std::move(task));
}

void HttpServer::after(milliseconds time, std::function<void()> task) {
  if (!implementation_) return;
  auto timer = std::make_shared<asio::steady_timer>(implementation_->io(), time);
  timer->async_wait([timer, task = std::move(task)](error_code cancelled) {
    if (!cancelled) task();
  });
}

}  // namespace zrl::web
