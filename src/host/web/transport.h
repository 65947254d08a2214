#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// HTTP and WebSockets as the web host sees them. No type of a network library appears here, so that
// everything above builds quickly and is tested without a network.
//
// Everything but IoLoop::post() and IoLoop::after() is called on the one I/O thread.
namespace zrl::web {

class IoLoop {
 public:
  virtual ~IoLoop() = default;

  // From any thread. Tasks of one thread run in their order.
  virtual void post(std::function<void()> task) = 0;
  virtual void after(std::chrono::milliseconds time, std::function<void()> task) = 0;
};

struct Request {
  std::string method;
  std::string path;   // without the query
  std::string query;  // what follows the "?"
  std::string host;
  std::string origin;
  std::string content_type;
  std::string cookie;
  std::string upload;                // the header Upload-To
  std::uint64_t content_length = 0;  // 0 if it is not given
  std::string body;
  std::string remote_address;
  bool head_only = false;  // a HEAD, whose method is given as GET: the body of the answer is not sent
  bool accepts_gzip = false;
  bool over_tls = false;
};

// What a response sends piece by piece, after its head.
class BodySource {
 public:
  virtual ~BodySource() = default;

  virtual std::uint64_t size() const = 0;
  // Returns the number of bytes read; 0 before the end means that the rest cannot be read.
  virtual std::size_t read(char* data, std::size_t size) = 0;
};

struct Response {
  int status = 200;
  std::string content_type = {};
  std::vector<std::pair<std::string, std::string>> headers = {};
  std::string body = {};
  std::string_view asset = {};              // sent if there is no body; lives as long as the program
  bool immutable = false;                   // the browser may keep it for good; others it never keeps
  std::shared_ptr<BodySource> source = {};  // sent in place of body and asset
};

// Answers a request, once, now or later. Later calls are ignored.
using Reply = std::function<void(Response)>;

// Receives the body of a request piece by piece. If it is destroyed without finish(), the request was cut
// off.
class BodySink {
 public:
  virtual ~BodySink() = default;

  // The longest body that it takes.
  virtual std::uint64_t limit() const = 0;
  virtual void take(std::string_view piece) = 0;
  // The body is complete.
  virtual void finish(Reply reply) = 0;
};

// The server's end of an open WebSocket. Ignores calls after its end.
class Channel {
 public:
  virtual ~Channel() = default;

  // Never waits. A browser that lets too much pile up is cut off.
  virtual void send(std::string text) = 0;
  // What was sent before still goes out, for a few seconds.
  virtual void close(int code) = 0;
  // Reads on after on_text() said to pause.
  virtual void resume() = 0;
};

class ChannelListener {
 public:
  virtual ~ChannelListener() = default;

  virtual void on_open(std::shared_ptr<Channel> channel) = 0;
  // False: no more is read until Channel::resume().
  virtual bool on_text(std::string text) = 0;
  // The last call, also after Channel::close(). `left` is true if the browser said that the page has been
  // left or loaded anew; a line that was lost does not.
  virtual void on_close(bool left) = 0;
};

class HttpHandler {
 public:
  virtual ~HttpHandler() = default;

  // A request whose head has come: who takes its body, an answer that refuses it (the connection ends
  // then), or nothing: handle() gets it whole.
  virtual std::variant<std::monostate, Response, std::shared_ptr<BodySink>> receive(
      const Request& request) = 0;
  virtual void handle(Request request, Reply reply) = 0;
  // A WebSocket is asked for: who listens to it, or the answer that refuses it.
  virtual std::variant<Response, std::shared_ptr<ChannelListener>> upgrade(const Request& request) = 0;
};

}  // namespace zrl::web
