#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/web/transport.h"

namespace zrl::web {

struct ServerLimits {
  // Both give way as ConnectionSlots says. The first is lower where the system grants fewer open files.
  std::size_t connections = 1024;
  // Of an IPv4 address, or 64 bits of an IPv6 one: all tabs of a session, and some requests beside them.
  std::size_t connections_a_network = 96;
  std::size_t header_bytes = 16 << 10;
  std::size_t body_bytes = 64 << 10;
  std::size_t message_bytes = 1 << 20;      // a WebSocket message from the browser
  std::size_t send_queue_bytes = 16 << 20;  // what may wait for a browser, beside one message
  // The first three are shortened for requests and responses as the connections become many.
  std::chrono::milliseconds request{30000};  // to send a request whole, the pause before it included
  std::chrono::milliseconds handshake{10000};
  std::chrono::milliseconds write{30000};    // for the browser to take one message or response
  std::chrono::milliseconds answer{60000};   // for the handler to reply
  std::chrono::milliseconds silence{60000};  // of a WebSocket; the browser is pinged before
};

struct ServerOptions {
  std::string address = "127.0.0.1";  // an IP address, or "localhost"
  std::uint16_t port = 0;             // 0: any that is free
  std::filesystem::path certificate;  // PEM; empty: no TLS
  std::filesystem::path key;
  ServerLimits limits;
  // Gets a line for the operator, on the I/O thread, when a changed certificate cannot be used.
  std::function<void(std::string_view)> notify;
};

// An HTTP/1.1 and WebSocket server on one thread, the one that calls run(). Every response carries
// the security headers.
class HttpServer : public IoLoop {
 public:
  // Binds and listens; raises std::runtime_error if that fails or the certificate is unusable.
  explicit HttpServer(const ServerOptions& options);
  ~HttpServer() override;

  std::uint16_t port() const;

  // What the operator should know before others use the server; a line each.
  std::vector<std::string> warnings() const;
  // From any thread: reads the certificate again. Connections stay.
  void reload();

  // Before run(): begins to accept connections. The handler must live until run() has returned.
  void start(HttpHandler& handler);
  void run();
  // On the I/O thread: accepts no more connections.
  void close_listener();
  // From any thread: run() returns soon; what has been sent may still go out before.
  void stop();

  void post(std::function<void()> task) override;
  void after(std::chrono::milliseconds time, std::function<void()> task) override;

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace zrl::web
