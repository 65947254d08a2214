#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include <openssl/ssl.h>

namespace zrl::test {

struct TlsFiles {
  std::filesystem::path certificate;
  std::filesystem::path key;
};

class LoopbackServer;

// The server's end of a connection.
class ServedConnection {
 public:
  ServedConnection(LoopbackServer& server, int fd, SSL_CTX* tls);
  ServedConnection(const ServedConnection&) = delete;
  ServedConnection& operator=(const ServedConnection&) = delete;
  ~ServedConnection();

  // Some bytes; none when the client or the server has ended the connection.
  std::string receive();
  // False if the connection is gone.
  bool send(std::string_view bytes);
  // False, and earlier, if the server stops.
  bool pause(std::chrono::milliseconds time);

 private:
  LoopbackServer& server_;
  int fd_;
  SSL* tls_ = nullptr;
  bool good_ = true;
};

// A server on a port of 127.0.0.1 that does with each connection what it is told, on a thread of
// its own. Destroying it ends all connections.
class LoopbackServer {
 public:
  using Handler = std::function<void(ServedConnection&)>;

  // Any free port if `port` is 0.
  explicit LoopbackServer(Handler handler, const std::optional<TlsFiles>& tls = {}, std::uint16_t port = 0);
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;
  ~LoopbackServer();

  std::uint16_t port() const { return port_; }
  int connections() const { return accepted_; }

 private:
  friend class ServedConnection;

  struct Client {
    int fd;
    std::thread thread;
  };

  void accept_all();
  void serve(int fd);

  Handler handler_;
  std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> tls_;
  int listener_;
  std::uint16_t port_ = 0;
  std::atomic<int> accepted_ = 0;
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  std::list<Client> clients_;
  std::thread acceptor_;
};

// A port of 127.0.0.1 that nobody listened on a moment ago.
std::uint16_t free_port();

// A certificate for this name ("IP:127.0.0.1", "DNS:localhost") that signs itself, and its key. It expires
// after so many seconds.
TlsFiles make_certificate(const std::filesystem::path& folder, const std::string& name, long lasts = 3600);

}  // namespace zrl::test
