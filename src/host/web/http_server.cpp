#include "host/web/http_server.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <map>
#include <optional>
#include <stdexcept>

#include "host/web/http_connection.h"

namespace zrl::web {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using tcp = asio::ip::tcp;
using asio::awaitable;
using asio::use_awaitable;
using std::chrono::milliseconds;

constexpr milliseconds stop_grace{200};

// How many connections there are, in all and from each address.
class Admissions : public std::enable_shared_from_this<Admissions> {
 public:
  explicit Admissions(const ServerLimits& limits) : limits_(limits) {}

  // Holds a place until it is destroyed.
  class Place {
   public:
    Place(std::shared_ptr<Admissions> admissions, std::string address)
        : admissions_(std::move(admissions)), address_(std::move(address)) {}
    Place(Place&&) = default;
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() {
      if (admissions_) admissions_->leave(address_);
    }
    const std::string& address() const { return address_; }

   private:
    std::shared_ptr<Admissions> admissions_;
    std::string address_;
  };

  std::optional<Place> enter(const std::string& address) {
    if (total_ >= limits_.connections) return {};
    std::size_t& held = held_[address];
    if (held >= limits_.connections_an_address) return {};
    ++held;
    ++total_;
    return Place(shared_from_this(), address);
  }

 private:
  void leave(const std::string& address) {
    --total_;
    const auto found = held_.find(address);
    if (--found->second == 0) held_.erase(found);
  }

  const ServerLimits& limits_;
  std::map<std::string, std::size_t> held_;
  std::size_t total_ = 0;
};

}  // namespace

class HttpServer::Implementation {
 public:
  explicit Implementation(const ServerOptions& options)
      : options_(options), admissions_(std::make_shared<Admissions>(options_.limits)), acceptor_(io_) {
    if (!options_.certificate.empty() || !options_.key.empty()) load_certificate();
    listen();
  }

  void start(HttpHandler& handler) {
    context_.handler = &handler;
    asio::co_spawn(io_, accept_all(), asio::detached);
  }

  std::uint16_t port() const { return port_; }
  asio::io_context& io() { return io_; }

  void close_listener() {
    context_.closing = true;
    error_code ignored;
    acceptor_.close(ignored);
  }

 private:
  void load_certificate() {
    tls_.emplace(asio::ssl::context::tls_server);
    tls_->set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_tlsv1 |
                      asio::ssl::context::no_tlsv1_1);
    error_code failure;
    tls_->use_certificate_chain_file(options_.certificate.string(), failure);
    if (failure) throw std::runtime_error("cannot use the certificate " + options_.certificate.string());
    tls_->use_private_key_file(options_.key.string(), asio::ssl::context::pem, failure);
    if (failure) throw std::runtime_error("cannot use the key " + options_.key.string());
  }

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
      auto place = admissions_->enter(peer.address().to_string());
      if (!place) continue;
      socket.set_option(tcp::no_delay(true), failure);
      asio::co_spawn(io_, serve(std::move(socket), std::move(*place)), asio::detached);
    }
  }

  awaitable<void> serve(tcp::socket socket, Admissions::Place place) {
    try {
      co_await serve_connection(std::move(socket), tls_ ? &*tls_ : nullptr, place.address(), context_);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
  }

  const ServerOptions options_;
  ConnectionContext context_{.limits = options_.limits};
  std::shared_ptr<Admissions> admissions_;
  std::optional<asio::ssl::context> tls_;
  asio::io_context io_{1};
  tcp::acceptor acceptor_;
  std::uint16_t port_ = 0;
};

HttpServer::HttpServer(const ServerOptions& options)
    : implementation_(std::make_unique<Implementation>(options)) {}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const {
  return implementation_->port();
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
  asio::post(implementation_->io(), std::move(task));
}

void HttpServer::after(milliseconds time, std::function<void()> task) {
  auto timer = std::make_shared<asio::steady_timer>(implementation_->io(), time);
  timer->async_wait([timer, task = std::move(task)](error_code cancelled) {
    if (!cancelled) task();
  });
}

}  // namespace zrl::web
