#include "host/web/http_connection.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>
#include <optional>
#include <stdexcept>
#include <vector>

#include "host/web/security_headers.h"
#include "host/web/web_socket_channel.h"

namespace zrl::web {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::awaitable;
using asio::use_awaitable;
using boost::system::error_code;
using std::chrono::milliseconds;

using Use = ConnectionSlots::Use;
using PieceParser = http::request_parser<http::buffer_body>;

constexpr std::size_t piece_bytes = 64 << 10;

// Below these no time-out is shortened.
constexpr milliseconds least_request{2000};
constexpr milliseconds least_write{5000};

beast::string_view as_beast(std::string_view text) {
  return {text.data(), text.size()};
}
std::string as_string(beast::string_view text) {
  return {text.data(), text.size()};
}

// All but the body.
Request to_request(const RequestHead& head, std::string remote_address, bool over_tls) {
  const RequestHead::value_type& message = head.get();
  const auto field = [&](http::field name) { return as_string(message[name]); };
  Request request;
  request.head_only = message.method() == http::verb::head;
  request.method = request.head_only ? "GET" : as_string(message.method_string());
  request.path = as_string(message.target());
  const std::size_t path_end = std::min(request.path.find('?'), request.path.size());
  if (path_end < request.path.size()) request.query = request.path.substr(path_end + 1);
  request.path.resize(path_end);
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

// The status for a request whose end or receiver could be understood in more than one way (RFC 9112), or 0.
int ambiguity_of(const RequestHead::value_type& message) {
  if (message.count(http::field::host) > 1) return 400;
  const auto codings = message.count(http::field::transfer_encoding);
  if (codings == 0) return 0;
  if (message.version() < 11) return 400;
  const bool is_chunked = beast::iequals(message[http::field::transfer_encoding], "chunked");
  return codings == 1 && is_chunked ? 0 : 501;
}

// The status of the answer to a request that could not be read, or 0 where nobody would receive it.
int status_of(error_code failure) {
  if (failure == http::error::header_limit) return 431;
  if (failure == http::error::body_limit) return 413;
  const bool of_the_message = failure.category() == make_error_code(http::error::bad_method).category();
  if (!of_the_message || failure == http::error::end_of_stream || failure == http::error::partial_message) {
    return 0;
  }
  return 400;
}

// Lets a coroutine wait for the handler's reply.
struct PendingReply {
  explicit PendingReply(const asio::any_io_executor& executor) : waiting(executor) {}

  asio::steady_timer waiting;
  std::optional<Response> response;
};

class Connection {
 public:
  Connection(BrowserStream stream, std::string remote_address, ConnectionSlots::Slot& slot,
             const ConnectionContext& context)
      : stream_(std::move(stream)),
        remote_address_(std::move(remote_address)),
        buffer_(context.limits.header_bytes + piece_bytes),
        slot_(slot),
        context_(context) {
    slot_.on_cut([this] { stream_.close(); });
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { slot_.on_cut({}); }

  awaitable<void> serve() {
    for (;;) {
      RequestHead head;
      head.header_limit(static_cast<std::uint32_t>(limits().header_bytes));
      head.body_limit(boost::none);  // whoever takes the body has a limit
      head_only_ = false;
      use(Use::waiting);
      expire_soon(limits().request, least_request);
      error_code failure;
      co_await http::async_read_header(stream_, buffer_, head, asio::redirect_error(use_awaitable, failure));
      if (failure) co_return co_await refuse(failure);
      if (const int status = ambiguity_of(head.get())) co_return co_await refuse(status);
      Request request = to_request(head, remote_address_, stream_.over_tls());
      head_only_ = request.head_only;
      if (websocket::is_upgrade(head.get())) {
        co_await upgrade(head, request);
        co_return;
      }
      const bool keep_alive = head.keep_alive();
      if (!co_await answer(head, std::move(request), keep_alive)) co_return;
    }
  }

 private:
  const ServerLimits& limits() const { return context_.limits; }
  void expire_after(milliseconds time) { stream_.expires_after(time); }
  // The sooner the fewer slots are left.
  void expire_soon(milliseconds time, milliseconds least) {
    expire_after(slot_.slots().shortened(time, least));
  }
  void use(Use use) { slot_.use(use, ConnectionSlots::Clock::now()); }

  awaitable<void> upgrade(const RequestHead& head, const Request& request) {
    auto answer = context_.handler->upgrade(request);
    if (const auto* refusal = std::get_if<Response>(&answer)) {
      co_await write(*refusal, head.get().version(), false);
      co_return;
    }
    use(Use::open);
    slot_.on_cut({});
    stream_.expires_never();
    co_await serve_web_socket(std::move(stream_), head.get(),
                              std::get<std::shared_ptr<ChannelListener>>(std::move(answer)), limits());
  }

  // False: the connection ends.
  awaitable<bool> answer(RequestHead& head, Request request, bool keep_alive) {
    const unsigned version = head.get().version();
    auto receiver = context_.handler->receive(request);
    if (const auto* refusal = std::get_if<Response>(&receiver)) {
      co_await write(*refusal, version, false);
      co_return false;
    }
    error_code failure;
    Response response;
    if (const auto* sink = std::get_if<std::shared_ptr<BodySink>>(&receiver)) {
      failure = co_await take_body(head, **sink);
      if (!failure) response = co_await answer_of([&](Reply reply) { (*sink)->finish(std::move(reply)); });
    } else {
      failure = co_await take_body(head, request.body);
      if (!failure) {
        response = co_await answer_of(
            [&](Reply reply) { context_.handler->handle(std::move(request), std::move(reply)); });
      }
    }
    if (failure) {
      co_await refuse(failure);
      co_return false;
    }
    const bool keep = keep_alive && !context_.closing;
    co_await write(response, version, keep);
    co_return keep;
  }

  // Answers a request that could not be read, where that is of use.
  awaitable<void> refuse(error_code failure) {
    const int status = status_of(failure);
    if (status != 0) co_await refuse(status);
  }

  awaitable<void> refuse(int status) {
    // Not a temporary in the call: the compiler copies such aggregates bit by bit.
    const Response refusal{.status = status};
    co_await write(refusal, 11, false);
  }

  awaitable<error_code> take_body(RequestHead& head, std::string& body) {
    return read_pieces(head, limits().body_bytes, false, [&body](std::string_view piece) { body += piece; });
  }

  // As long as pieces keep coming the whole may take its time.
  awaitable<error_code> take_body(RequestHead& head, BodySink& sink) {
    return read_pieces(head, sink.limit(), true, [&sink](std::string_view piece) { sink.take(piece); });
  }

  awaitable<error_code> read_pieces(RequestHead& head, std::uint64_t limit, bool patiently,
                                    std::function<void(std::string_view)> take) {
    error_code failure;
    if (head.is_done()) co_return failure;
    if (head.content_length().value_or(0) > limit) co_return http::error::body_limit;
    PieceParser parser(std::move(head));
    parser.body_limit(limit);
    std::vector<char> piece(piece_bytes);
    while (!failure && !parser.is_done()) {
      parser.get().body().data = piece.data();
      parser.get().body().size = piece.size();
      if (patiently) {
        use(Use::receiving);
        expire_after(limits().request);
      }
      co_await http::async_read(stream_, buffer_, parser, asio::redirect_error(use_awaitable, failure));
      if (failure == http::error::need_buffer) failure = {};
      if (!failure) take({piece.data(), piece.size() - parser.get().body().size});
    }
    co_return failure;
  }

  template <typename Ask>
  awaitable<Response> answer_of(Ask ask) {
    const auto pending = std::make_shared<PendingReply>(stream_.get_executor());
    use(Use::answering);
    pending->waiting.expires_after(limits().answer);
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

  awaitable<void> write(const Response& response, unsigned version, bool keep_alive) {
    const std::string_view body = response.body.empty() ? response.asset : std::string_view(response.body);
    http::response<http::span_body<const char>> message(static_cast<http::status>(response.status), version);
    for_each_security_header(stream_.over_tls(), [&message](std::string_view name, std::string_view value) {
      message.set(as_beast(name), as_beast(value));
    });
    message.set(http::field::cache_control,
                response.immutable ? "public, max-age=31536000, immutable" : "no-store");
    if (!response.content_type.empty()) message.set(http::field::content_type, response.content_type);
    for (const auto& [name, value] : response.headers) message.insert(name, value);
    message.body() = beast::span<const char>(body.data(), body.size());
    message.keep_alive(keep_alive);
    message.prepare_payload();
    if (response.source) message.content_length(response.source->size());
    use(Use::sending);
    expire_soon(limits().write, least_write);
    if (head_only_) {
      http::response_serializer<http::span_body<const char>> head(message);
      co_await http::async_write_header(stream_, head, use_awaitable);
      co_return;
    }
    co_await http::async_write(stream_, message, use_awaitable);
    if (response.source) co_await write_pieces(*response.source);
  }

  // Raises when the source has less than its size: the connection ends, by which the browser notices.
  awaitable<void> write_pieces(BodySource& source) {
    std::vector<char> piece(piece_bytes);
    for (std::uint64_t rest = source.size(); rest > 0;) {
      const std::size_t size = source.read(piece.data(), std::min<std::uint64_t>(rest, piece.size()));
      if (size == 0) throw std::runtime_error("the file became shorter");
      use(Use::sending);
      expire_soon(limits().write, least_write);
      co_await asio::async_write(stream_, asio::buffer(piece.data(), size), use_awaitable);
      rest -= size;
    }
  }

  BrowserStream stream_;
  std::string remote_address_;
  // Bounded, because chunk extensions and trailers are kept until their end, and count as no part of a body.
  beast::flat_buffer buffer_;
  bool head_only_ = false;  // of the request that is being answered
  ConnectionSlots::Slot& slot_;
  const ConnectionContext& context_;
};

}  // namespace

awaitable<void> serve_connection(asio::ip::tcp::socket socket, asio::ssl::context* tls,
                                 std::string remote_address, ConnectionSlots::Slot& slot,
                                 const ConnectionContext& context) {
  BrowserStream stream(std::move(socket), tls);
  slot.on_cut([&stream] { stream.close(); });
  stream.expires_after(slot.slots().shortened(context.limits.handshake, least_request));
  co_await stream.handshake();
  Connection connection(std::move(stream), std::move(remote_address), slot, context);
  co_await connection.serve();
}

}  // namespace zrl::web
