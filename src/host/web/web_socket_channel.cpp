#include "host/web/web_socket_channel.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <deque>

#include "host/web/security_headers.h"

namespace zrl::web {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using asio::awaitable;
using asio::use_awaitable;
using boost::system::error_code;
using std::chrono::milliseconds;

constexpr milliseconds close_grace{5000};

class WebSocketChannel : public Channel, public std::enable_shared_from_this<WebSocketChannel> {
 public:
  WebSocketChannel(BrowserStream&& stream, const ServerLimits& limits)
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
    // For refusals, too. The library would name itself as the server.
    const bool over_tls = socket_.next_layer().over_tls();
    socket_.set_option(websocket::stream_base::decorator([over_tls](websocket::response_type& answer) {
      for_each_security_header(over_tls, [&answer](std::string_view name, std::string_view value) {
        answer.set(beast::string_view(name.data(), name.size()),
                   beast::string_view(value.data(), value.size()));
      });
      answer.set(beast::http::field::cache_control, "no-store");
      answer.set(beast::http::field::server, "zrlconsole");
    }));
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

  awaitable<void> serve(const RequestHead::value_type& request, std::shared_ptr<ChannelListener> listener) {
    bool opened = false;
    try {
      co_await socket_.async_accept(request, use_awaitable);
      opened = true;
      listener->on_open(shared_from_this());
      co_await read_all(*listener);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): the connection is over
    }
    cut();
    if (opened) listener->on_close(socket_.reason().code == websocket::close_code::going_away);
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
    asio::co_spawn(socket_.get_executor(), write_all(shared_from_this()), asio::detached);
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
    timer.async_wait([weak = weak_from_this()](error_code cancelled) {
      const auto self = weak.lock();
      if (self && !cancelled) self->cut();
    });
  }

  void cut() {
    if (dead_) return;
    dead_ = true;
    socket_.next_layer().close();
    stalled_.cancel();
    closing_time_.cancel();
    resume();
  }

  websocket::stream<BrowserStream, false> socket_;
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

}  // namespace

awaitable<void> serve_web_socket(BrowserStream stream, const RequestHead::value_type& request,
                                 std::shared_ptr<ChannelListener> listener, const ServerLimits& limits) {
  auto channel = std::make_shared<WebSocketChannel>(std::move(stream), limits);
  co_await channel->serve(request, std::move(listener));
}

}  // namespace zrl::web
