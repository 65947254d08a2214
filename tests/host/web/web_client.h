#pragma once

#include <boost/json.hpp>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/browser_end.h"

namespace zrl::test {

struct HttpAnswer {
  int status = 0;
  std::map<std::string, std::string> headers;  // by lower-case name, the last of each
  std::vector<std::string> cookies;            // of all headers Set-Cookie
  std::string body;

  json::object object() const { return json::parse(body).as_object(); }
};

// A TCP connection to a server on this machine. Reading gives up when `patience` is over.
class TcpConnection {
 public:
  explicit TcpConnection(std::uint16_t port);
  TcpConnection(TcpConnection&& other) noexcept;
  TcpConnection(const TcpConnection&) = delete;
  TcpConnection& operator=(const TcpConnection&) = delete;
  ~TcpConnection();

  // False if the server has closed.
  bool write(std::string_view bytes);
  // At least one byte; empty at the end of the stream.
  std::string read();
  int descriptor() const { return socket_; }

 private:
  int socket_ = -1;
};

// A browser without a screen: it keeps the cookie and sends what browsers send.
class WebClient {
 public:
  explicit WebClient(std::uint16_t port) : port_(port), host_("127.0.0.1:" + std::to_string(port)) {}

  HttpAnswer get(std::string_view path, std::string_view more_headers = {});
  HttpAnswer post(std::string_view path, const json::value& body);
  // Any request, as it stands, on a connection of its own.
  HttpAnswer raw(std::string_view request);

  // A head with our own Host and Origin and the cookie.
  std::string head(std::string_view method, std::string_view path, std::string_view more_headers = {}) const;

  const std::string& host() const { return host_; }
  std::uint16_t port() const { return port_; }
  std::string cookie;
  std::string device;

 private:
  std::uint16_t port_;
  std::string host_;
};

// The browser's end of a WebSocket.
class WebSocket : public BrowserEnd {
 public:
  // Opens it with the client's cookie; `status` tells whether that worked (101). The query names the tab.
  explicit WebSocket(WebClient& client, std::string_view query = {});

  int status = 0;
  bool broken = false;  // something could not be sent

  void send_frame(int opcode, std::string_view payload);
  // Reads until the server closes: its code, 0 without a close frame.
  int close_code();

 private:
  struct Frame {
    bool last = true;
    int opcode = 0;
    std::string payload;
  };

  void transmit(const std::string& text) override { send_frame(1, text); }
  std::optional<std::string> next_text() override;
  std::optional<Frame> read_frame();
  bool fill(std::size_t bytes);

  TcpConnection connection_;
  std::string buffer_;
  int close_code_ = 0;
  bool closed_ = false;
};

}  // namespace zrl::test
