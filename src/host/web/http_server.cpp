#include "host/web/http_server.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/beast/websocket/ssl.hpp>
#include <deque>
#include <map>
#include <optional>
#include <stdexcept>
#include <vector>

namespace zrl::web {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using boost::system::error_code;
using tcp = asio::ip::tcp;
using asio::awaitable;
using asio::use_awaitable;
using std::chrono::milliseconds;

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;
using Head = http::request_parser<http::empty_body>;
using Parser = http::request_parser<http::string_body>;
using PieceParser = http::request_parser<http::buffer_body>;

constexpr milliseconds close_grace{5000};
constexpr milliseconds stop_grace{200};
constexpr std::size_t piece_bytes = 64 << 10;

constexpr std::pair<std::string_view, std::string_view> security_headers[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; "
     "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
};

beast::string_view as_beast(std::string_view text) {
  return {text.data(), text.size()};
}
std::string as_string(beast::string_view text) {
  return {text.data(), text.size()};
}

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

template <typename Stream>
class WebSocketChannel : public Channel, public std::enable_shared_from_this<WebSocketChannel<Stream>> {
 public:
  WebSocketChannel(Stream&& stream, const ServerLimits& limits)
      : socket_(std::move(stream)),
        limits_(limits),
        stalled_(socket_.get_executor()),
        closing_time_(socket_.get_executor()),
        resumed_(socket_.get_executor()) {
    socket_.read_message_max(limits.message_bytes);
    websocket::stream_base::timeout timeout{};
    timeout.handshake_timeout = limits.handshake;
    timeout.idle_timeout = limits.silence;
    timeout.keep_alive_pings = true;
    socket_.set_option(timeout);
  }

  void send(std::string text) override {
    if (close_code_ != 0 || dead_) return;
    if (!queue_.empty() && queued_bytes_ + text.size() > limits_.send_queue_bytes) {
      cut();
      return;
    }
    queued_bytes_ += text.size();
    queue_.push_back(std::move(text));
    start_writing();
  }

  void close(int code) override {
    if (close_code_ != 0 || dead_) return;
    close_code_ = code;
    cut_after(closing_time_, close_grace);
    resume();  // the browser's close frame has to be read
    start_writing();
  }

  void resume() override {
    paused_ = false;
    resumed_.cancel();
  }

  awaitable<void> serve(const Head::value_type& request, std::shared_ptr<ChannelListener> listener) {
    bool opened = false;
    try {
      co_await socket_.async_accept(request, use_awaitable);
      opened = true;
      listener->on_open(this->shared_from_this());
      co_await read_all(*listener);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
    cut();
    if (opened) listener->on_close();
  }

 private:
  awaitable<void> read_all(ChannelListener& listener) {
    beast::flat_buffer buffer;
    for (;;) {
      co_await socket_.async_read(buffer, use_awaitable);
      if (!socket_.got_text()) {
        close(1003);
      } else if (close_code_ == 0) {
        const auto data = buffer.cdata();
        paused_ = !listener.on_text(std::string(static_cast<const char*>(data.data()), data.size()));
      }
      buffer.consume(buffer.size());
      while (paused_ && close_code_ == 0 && !dead_) {
        resumed_.expires_at(asio::steady_timer::time_point::max());
        error_code woken;
        co_await resumed_.async_wait(asio::redirect_error(use_awaitable, woken));
      }
    }
  }

  void start_writing() {
    if (writing_ || dead_) return;
    writing_ = true;
    asio::co_spawn(socket_.get_executor(), write_all(this->shared_from_this()), asio::detached);
  }

  awaitable<void> write_all([[maybe_unused]] std::shared_ptr<WebSocketChannel> self) {
    try {
      while (!queue_.empty()) {
        cut_after(stalled_, limits_.write);
        co_await socket_.async_write(asio::buffer(queue_.front()), use_awaitable);
        stalled_.cancel();
        queued_bytes_ -= queue_.front().size();
        queue_.pop_front();
      }
      if (close_code_ != 0 && !dead_) {
        co_await socket_.async_close(websocket::close_reason(static_cast<std::uint16_t>(close_code_)),
                                     use_awaitable);
      }
    } catch (const std::exception&) {
      cut();
    }
    writing_ = false;
  }

  void cut_after(asio::steady_timer& timer, milliseconds time) {
    timer.expires_after(time);
    timer.async_wait([weak = this->weak_from_this()](error_code cancelled) {
      const auto self = weak.lock();
      if (self && !cancelled) self->cut();
    });
  }

  void cut() {
    if (dead_) return;
    dead_ = true;
    error_code ignored;
    beast::get_lowest_layer(socket_).socket().close(ignored);
    stalled_.cancel();
    closing_time_.cancel();
    resume();
  }

  websocket::stream<Stream, false> socket_;
  const ServerLimits& limits_;
  asio::steady_timer stalled_;
  asio::steady_timer closing_time_;
  asio::steady_timer resumed_;
  std::deque<std::string> queue_;
  std::size_t queued_bytes_ = 0;
  int close_code_ = 0;
  bool writing_ = false;
  bool paused_ = false;
  bool dead_ = false;
};

// Lets a coroutine wait for the handler's reply.
struct PendingReply {
  explicit PendingReply(const asio::any_io_executor& executor) : waiting(executor) {}

  asio::steady_timer waiting;
  std::optional<Response> response;
};

// All but the body.
Request to_request(const Head& head, std::string remote_address, bool over_tls) {
  const Head::value_type& message = head.get();
  const auto field = [&](http::field name) { return as_string(message[name]); };
  Request request;
  request.method = as_string(message.method_string());
  request.path = as_string(message.target());
  request.path.resize(std::min(request.path.find('?'), request.path.size()));
  request.host = field(http::field::host);
  request.origin = field(http::field::origin);
  request.content_type = field(http::field::content_type);
  request.cookie = field(http::field::cookie);
  request.accepts_gzip = field(http::field::accept_encoding).find("gzip") != std::string::npos;
  request.upload = as_string(message["Upload-To"]);
  request.content_length = head.content_length().value_or(0);
  request.remote_address = std::move(remote_address);
  request.over_tls = over_tls;
  return request;
}

// The status that tells what was wrong with a request, or 0 where nobody is there to be told.
int status_of(error_code failure) {
  if (failure == http::error::header_limit) return 431;
  if (failure == http::error::body_limit) return 413;
  const bool of_the_message = failure.category() == make_error_code(http::error::bad_method).category();
  if (!of_the_message || failure == http::error::end_of_stream || failure == http::error::partial_message) {
    return 0;
  }
  return 400;
}

}  // namespace

class HttpServer::Implementation {
 public:
  explicit Implementation(const ServerOptions& options)
      : options_(options), admissions_(std::make_shared<Admissions>(options_.limits)), acceptor_(io_) {
    if (!options_.certificate.empty() || !options_.key.empty()) load_certificate();
    listen();
  }

  void start(HttpHandler& handler) {
    handler_ = &handler;
    asio::co_spawn(io_, accept_all(), asio::detached);
  }

  std::uint16_t port() const { return port_; }
  asio::io_context& io() { return io_; }

  void close_listener() {
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
      if (tls_) {
        asio::co_spawn(io_, serve_tls(std::move(socket), std::move(*place)), asio::detached);
      } else {
        asio::co_spawn(io_, serve_plain(std::move(socket), std::move(*place)), asio::detached);
      }
    }
  }

  awaitable<void> serve_plain(tcp::socket socket, Admissions::Place place) {
    try {
      co_await serve(PlainStream(std::move(socket)), place.address());
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
  }

  awaitable<void> serve_tls(tcp::socket socket, Admissions::Place place) {
    try {
      TlsStream stream(std::move(socket), *tls_);
      beast::get_lowest_layer(stream).expires_after(options_.limits.handshake);
      co_await stream.async_handshake(asio::ssl::stream_base::server, use_awaitable);
      co_await serve(std::move(stream), place.address());
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
  }

  template <typename Stream>
  awaitable<void> serve(Stream stream, std::string remote_address) {
    constexpr bool over_tls = std::is_same_v<Stream, TlsStream>;
    beast::flat_buffer buffer;
    for (;;) {
      Head head;
      head.header_limit(static_cast<std::uint32_t>(options_.limits.header_bytes));
      head.body_limit(boost::none);  // whoever takes the body has a limit
      beast::get_lowest_layer(stream).expires_after(options_.limits.request);
      error_code failure;
      co_await http::async_read_header(stream, buffer, head, asio::redirect_error(use_awaitable, failure));
      if (failure) co_return co_await refuse(stream, failure);
      const unsigned version = head.get().version();
      const bool keep_alive = head.keep_alive();
      Request request = to_request(head, remote_address, over_tls);
      if (websocket::is_upgrade(head.get())) {
        auto answer = handler_->upgrade(request);
        if (auto* listener = std::get_if<std::shared_ptr<ChannelListener>>(&answer)) {
          beast::get_lowest_layer(stream).expires_never();
          auto channel = std::make_shared<WebSocketChannel<Stream>>(std::move(stream), options_.limits);
          co_await channel->serve(head.get(), std::move(*listener));
          co_return;
        }
        co_await write(stream, std::get<Response>(answer), version, false);
        co_return;
      }
      auto receiver = handler_->receive(request);
      if (const auto* refusal = std::get_if<Response>(&receiver)) {
        co_await write(stream, *refusal, version, false);
        co_return;
      }
      std::optional<Response> response;
      if (const auto* sink = std::get_if<std::shared_ptr<BodySink>>(&receiver)) {
        failure = co_await take_body(stream, buffer, head, **sink);
        if (!failure) response = co_await answer_of([&](Reply reply) { (*sink)->finish(std::move(reply)); });
      } else {
        failure = co_await take_body(stream, buffer, head, request.body);
        if (!failure) {
          response = co_await answer_of(
              [&](Reply reply) { handler_->handle(std::move(request), std::move(reply)); });
        }
      }
      if (failure) co_return co_await refuse(stream, failure);
      const bool keep = keep_alive && acceptor_.is_open();
      co_await write(stream, *response, version, keep);
      if (!keep) co_return;
    }
  }

  // Answers a request that could not be read, where that is of use.
  template <typename Stream>
  awaitable<void> refuse(Stream& stream, error_code failure) {
    const int status = status_of(failure);
    if (status == 0) co_return;
    // Not a temporary in the call: the compiler copies such aggregates bit by bit.
    const Response refusal{.status = status};
    co_await write(stream, refusal, 11, false);
  }

  template <typename Stream>
  awaitable<error_code> take_body(Stream& stream, beast::flat_buffer& buffer, Head& head, std::string& body) {
    error_code failure;
    if (head.is_done()) co_return failure;
    if (head.content_length().value_or(0) > options_.limits.body_bytes) co_return http::error::body_limit;
    Parser parser(std::move(head));
    parser.body_limit(options_.limits.body_bytes);
    co_await http::async_read(stream, buffer, parser, asio::redirect_error(use_awaitable, failure));
    body = std::move(parser.get().body());
    co_return failure;
  }

  // As long as pieces keep coming the whole may take its time.
  template <typename Stream>
  awaitable<error_code> take_body(Stream& stream, beast::flat_buffer& buffer, Head& head, BodySink& sink) {
    error_code failure;
    if (head.is_done()) co_return failure;
    if (head.content_length().value_or(0) > sink.limit()) co_return http::error::body_limit;
    PieceParser parser(std::move(head));
    parser.body_limit(sink.limit());
    std::vector<char> piece(piece_bytes);
    while (!failure && !parser.is_done()) {
      parser.get().body().data = piece.data();
      parser.get().body().size = piece.size();
      beast::get_lowest_layer(stream).expires_after(options_.limits.request);
      co_await http::async_read(stream, buffer, parser, asio::redirect_error(use_awaitable, failure));
      if (failure == http::error::need_buffer) failure = {};
      if (!failure) sink.take({piece.data(), piece.size() - parser.get().body().size});
    }
    co_return failure;
  }

  template <typename Ask>
  awaitable<Response> answer_of(Ask ask) {
    const auto pending = std::make_shared<PendingReply>(io_.get_executor());
    pending->waiting.expires_after(options_.limits.answer);
    ask([pending](Response response) {
      if (pending->response) return;
      pending->response = std::move(response);
      pending->waiting.cancel();
    });
    error_code woken;
    if (!pending->response) {
      co_await pending->waiting.async_wait(asio::redirect_error(use_awaitable, woken));
    }
    if (!pending->response) pending->response = Response{.status = 503};
    co_return std::move(*pending->response);
  }

  template <typename Stream>
  awaitable<void> write(Stream& stream, const Response& response, unsigned version, bool keep_alive) {
    const std::string_view body = response.body.empty() ? response.asset : std::string_view(response.body);
    http::response<http::span_body<const char>> message(static_cast<http::status>(response.status), version);
    for (const auto& [name, value] : security_headers) message.set(as_beast(name), as_beast(value));
    message.set(http::field::cache_control,
                response.immutable ? "public, max-age=31536000, immutable" : "no-store");
    if (!response.content_type.empty()) message.set(http::field::content_type, response.content_type);
    for (const auto& [name, value] : response.headers) message.insert(name, value);
    message.body() = beast::span<const char>(body.data(), body.size());
    message.keep_alive(keep_alive);
    message.prepare_payload();
    if (response.source) message.content_length(response.source->size());
    beast::get_lowest_layer(stream).expires_after(options_.limits.write);
    co_await http::async_write(stream, message, use_awaitable);
    if (response.source) co_await write_pieces(stream, *response.source);
  }

  // Raises when the source has less than it told: the connection ends, and the browser knows.
  template <typename Stream>
  awaitable<void> write_pieces(Stream& stream, BodySource& source) {
    std::vector<char> piece(piece_bytes);
    for (std::uint64_t rest = source.size(); rest > 0;) {
      const std::size_t size = source.read(piece.data(), std::min<std::uint64_t>(rest, piece.size()));
      if (size == 0) throw std::runtime_error("the file became shorter");
      beast::get_lowest_layer(stream).expires_after(options_.limits.write);
      co_await asio::async_write(stream, asio::buffer(piece.data(), size), use_awaitable);
      rest -= size;
    }
  }

  const ServerOptions options_;
  HttpHandler* handler_ = nullptr;
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
