#pragma once

#include <array>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/role.hpp>
#include <chrono>
#include <cstddef>
#include <memory>
#include <utility>

namespace boost::asio::ssl {
class context;
}

namespace zrl::web {

// A function that is called once, such as a completion handler. Can be moved, not copied.
template <typename... Arguments>
class Completion {
 public:
  template <typename Handler>
  explicit Completion(std::in_place_t, Handler&& handler)
      : held_(std::make_unique<Held<std::decay_t<Handler>>>(std::forward<Handler>(handler))) {}

  void operator()(Arguments... arguments) {
    const std::unique_ptr<Base> held = std::move(held_);
    held->call(std::move(arguments)...);
  }

 private:
  struct Base {
    virtual ~Base() = default;
    virtual void call(Arguments... arguments) = 0;
  };
  template <typename Handler>
  struct Held : Base {
    explicit Held(Handler&& handler) : handler_(std::move(handler)) {}
    explicit Held(const Handler& handler) : handler_(handler) {}
    void call(Arguments... arguments) override { std::move(handler_)(std::move(arguments)...); }
    Handler handler_;
  };

  std::unique_ptr<Base> held_;
};

// The connection to a browser, with or without TLS: an asynchronous stream in Asio's sense (AsyncReadStream
// and AsyncWriteStream), on one thread. Handlers and buffers are type-erased here, so that the code above is
// compiled once for both kinds. An operation that exceeds the time set by expires_after() ends with
// beast::error::timeout and closes the connection.
class BrowserStream {
 public:
  using executor_type = boost::asio::any_io_executor;
  using Transferred = Completion<boost::system::error_code, std::size_t>;

  // Without TLS if `tls` is null, which else must outlive it.
  BrowserStream(boost::asio::ip::tcp::socket socket, boost::asio::ssl::context* tls);
  BrowserStream(BrowserStream&&) noexcept;
  BrowserStream& operator=(BrowserStream&&) = delete;
  ~BrowserStream();

  executor_type get_executor() const;
  bool over_tls() const;
  // The server's side of the TLS handshake; nothing without TLS. Raises boost::system::system_error.
  boost::asio::awaitable<void> handshake();

  void expires_after(std::chrono::milliseconds time);
  void expires_never();
  // Closes the connection at once, without the closing messages of TLS. Pending operations end with an error.
  void close();
  // Closes every layer in order (TLS close_notify, TCP FIN) and waits for the browser to do the same.
  void tear_down(Completion<boost::system::error_code> done);

  template <typename Buffers, typename Token>
  auto async_read_some(const Buffers& buffers, Token&& token) {
    return boost::asio::async_initiate<Token, void(boost::system::error_code, std::size_t)>(
        [](auto&& handler, BrowserStream* self, const boost::asio::mutable_buffer& into) {
          self->read(into, Transferred(std::in_place, std::forward<decltype(handler)>(handler)));
        },
        token, this, gathered<boost::asio::mutable_buffer, 1>(buffers)[0]);
  }
  template <typename Buffers, typename Token>
  auto async_write_some(const Buffers& buffers, Token&& token) {
    return boost::asio::async_initiate<Token, void(boost::system::error_code, std::size_t)>(
        [](auto&& handler, BrowserStream* self, const Pieces& pieces) {
          self->write(pieces, Transferred(std::in_place, std::forward<decltype(handler)>(handler)));
        },
        token, this, gathered<boost::asio::const_buffer, most_pieces>(buffers));
  }

 private:
  // Enough buffers for a header with its body; further ones are written by the next operation.
  static constexpr std::size_t most_pieces = 8;
  using Pieces = std::array<boost::asio::const_buffer, most_pieces>;

  class Bytes;
  template <typename Stream>
  class BytesOf;

  // The first buffers that are not empty.
  template <typename Buffer, std::size_t count, typename Buffers>
  static std::array<Buffer, count> gathered(const Buffers& buffers) {
    std::array<Buffer, count> result;
    std::size_t found = 0;
    const auto end = boost::asio::buffer_sequence_end(buffers);
    for (auto it = boost::asio::buffer_sequence_begin(buffers); it != end && found < count; ++it) {
      if (const Buffer buffer(*it); buffer.size() > 0) result[found++] = buffer;
    }
    return result;
  }

  void read(const boost::asio::mutable_buffer& into, Transferred done);
  void write(const Pieces& pieces, Transferred done);

  std::unique_ptr<Bytes> bytes_;
};

// What Beast asks of a stream for WebSockets (beast::close_socket, websocket::async_teardown).
inline void beast_close_socket(BrowserStream& stream) {
  stream.close();
}
template <typename Handler>
void async_teardown(boost::beast::role_type, BrowserStream& stream, Handler&& handler) {
  stream.tear_down(Completion<boost::system::error_code>(std::in_place, std::forward<Handler>(handler)));
}

}  // namespace zrl::web
