#include "slow_clients.h"

#include <cerrno>
#include <chrono>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace zrl::bench {

namespace {

constexpr std::string_view slow_request =
    "POST /api/login HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 60000\r\n\r\n{";
constexpr std::string_view greedy_request = "GET / HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";
constexpr int small_buffer = 2048;
constexpr int addresses_a_net = 200;

sockaddr_in loopback(std::uint32_t host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(host);
  return address;
}

}  // namespace

SlowClients::SlowClients(std::uint16_t port, std::size_t count, Kind kind)
    : port_(port), kind_(kind), clients_(count) {
  for (std::size_t i = 0; i < count; ++i) open(i);
  thread_ = std::thread([this] { run(); });
}

SlowClients::~SlowClients() {
  ending_ = true;
  thread_.join();
  for (const Client& client : clients_) ::close(client.socket);
}

// 127.1.0.1 and so on.
void SlowClients::open(std::size_t number) {
  Client& client = clients_[number];
  if (client.socket >= 0) ::close(client.socket);
  client = {.socket = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)};
  if (client.socket < 0) throw std::runtime_error("too few files may be open");
  if (kind_ == Kind::greedy) {
    ::setsockopt(client.socket, SOL_SOCKET, SO_RCVBUF, &small_buffer, sizeof small_buffer);
  }
  const auto net = static_cast<std::uint32_t>(number / addresses_a_net);
  const auto host = static_cast<std::uint32_t>(number % addresses_a_net);
  const sockaddr_in own = loopback(0x7f010001 + (net << 8) + host, 0);
  const sockaddr_in server = loopback(INADDR_LOOPBACK, port_);
  ::bind(client.socket, reinterpret_cast<const sockaddr*>(&own), sizeof own);
  ::connect(client.socket, reinterpret_cast<const sockaddr*>(&server), sizeof server);
  ++opened_;
}

void SlowClients::run() {
  using Clock = std::chrono::steady_clock;
  auto next = Clock::now();
  std::vector<pollfd> polled(clients_.size());
  while (!ending_) {
    const short wanted = kind_ == Kind::greedy ? short{POLLRDHUP} : short{POLLIN | POLLRDHUP};
    for (std::size_t i = 0; i < clients_.size(); ++i) polled[i] = {clients_[i].socket, wanted, 0};
    ::poll(polled.data(), polled.size(), 20);
    for (std::size_t i = 0; i < clients_.size(); ++i) {
      if (polled[i].revents != 0) open(i);
    }
    if (kind_ == Kind::silent || Clock::now() < next) continue;
    next += std::chrono::seconds(1);
    const std::string_view request = kind_ == Kind::slow ? slow_request : greedy_request;
    for (Client& client : clients_) {
      const std::size_t at = client.sent % request.size();
      const std::string_view piece = request.substr(at, kind_ == Kind::slow ? 1 : request.npos);
      const ssize_t sent = ::send(client.socket, piece.data(), piece.size(), MSG_NOSIGNAL);
      if (sent > 0) client.sent += static_cast<std::size_t>(sent);
    }
  }
}

}  // namespace zrl::bench
