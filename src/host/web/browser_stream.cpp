#include "host/web/browser_stream.h"

#include <boost/asio/ssl/context.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <boost/beast/websocket/ssl.hpp>
#include <boost/beast/websocket/teardown.hpp>
#include <type_traits>

namespace zrl::web {

namespace asio = boost::asio;
namespace beast = boost::beast;
using boost::system::error_code;

using PlainStream = beast::tcp_stream;
using TlsStream = beast::ssl_stream<beast::tcp_stream>;

class BrowserStream::Bytes {
 public:
  virtual ~Bytes() = default;

  virtual PlainStream& lowest() = 0;
  virtual bool over_tls() const = 0;
  virtual asio::awaitable<void> handshake() = 0;
  virtual void tear_down(Completion<error_code> done) = 0;
  virtual void read(const asio::mutable_buffer& into, Transferred done) = 0;
  virtual void write(const Pieces& pieces, Transferred done) = 0;
};

template <typename Stream>
class BrowserStream::BytesOf : public Bytes {
 public:
  template <typename... Arguments>
  explicit BytesOf(Arguments&&... arguments) : stream_(std::forward<Arguments>(arguments)...) {}

  PlainStream& lowest() override { return beast::get_lowest_layer(stream_); }
  bool over_tls() const override { return std::is_same_v<Stream, TlsStream>; }

  asio::awaitable<void> handshake() override {
    if constexpr (std::is_same_v<Stream, TlsStream>) {
      co_await stream_.async_handshake(asio::ssl::stream_base::server, asio::use_awaitable);
    }
    co_return;
  }

  void tear_down(Completion<error_code> done) override {
    using beast::websocket::async_teardown;
    async_teardown(beast::role_type::server, stream_, std::move(done));
  }

  void read(const asio::mutable_buffer& into, Transferred done) override {
    stream_.async_read_some(into, std::move(done));
  }
  void write(const Pieces& pieces, Transferred done) override {
    stream_.async_write_some(pieces, std::move(done));
  }

 private:
  Stream stream_;
};

BrowserStream::BrowserStream(asio::ip::tcp::socket socket, asio::ssl::context* tls) {
  if (tls == nullptr) {
    bytes_ = std::make_unique<BytesOf<PlainStream>>(std::move(socket));
  } else {
    bytes_ = std::make_unique<BytesOf<TlsStream>>(std::move(socket), *tls);
  }
}

BrowserStream::BrowserStream(BrowserStream&&) noexcept = default;

BrowserStream::~BrowserStream() = default;

BrowserStream::executor_type BrowserStream::get_executor() const {
  return bytes_->lowest().get_executor();
}

bool BrowserStream::over_tls() const {
  return bytes_->over_tls();
}

asio::awaitable<void> BrowserStream::handshake() {
  return bytes_->handshake();
}

void BrowserStream::expires_after(std::chrono::milliseconds time) {
  bytes_->lowest().expires_after(time);
}

void BrowserStream::expires_never() {
  bytes_->lowest().expires_never();
}

void BrowserStream::close() {
  error_code ignored;
  bytes_->lowest().socket().close(ignored);
}

void BrowserStream::tear_down(Completion<error_code> done) {
  bytes_->tear_down(std::move(done));
}

void BrowserStream::read(const asio::mutable_buffer& into, Transferred done) {
  bytes_->read(into, std::move(done));
}

void BrowserStream::write(const Pieces& pieces, Transferred done) {
  bytes_->write(pieces, std::move(done));
}

}  // namespace zrl::web
