#include "net/udp_socket.h"

#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

#include "net/dns_socket.h"

namespace zrl {

// Connecting lets the system drop what others send, and reports when nobody listens at the port.
UdpSocket::UdpSocket(const DnsServer& server) {
  handle_ = connected_socket(server, SOCK_DGRAM, error_);
}

UdpSocket::~UdpSocket() {
  if (handle_ < 0) return;
  ::shutdown(handle_, SHUT_RDWR);
  ::close(handle_);
}

bool UdpSocket::send(DnsBytes message) {
  if (error_ != 0) return false;
  if (::send(handle_, message.data(), message.size(), MSG_NOSIGNAL) < 0) fail(errno);
  return error_ == 0;
}

std::optional<std::vector<std::uint8_t>> UdpSocket::receive(std::size_t limit) {
  if (error_ != 0) return std::nullopt;
  std::vector<std::uint8_t> message(limit);
  const ssize_t size = ::recv(handle_, message.data(), message.size(), 0);
  if (size < 0) {
    if (errno != EAGAIN && errno != EINTR) fail(errno);
    return std::nullopt;
  }
  message.resize(static_cast<std::size_t>(size));
  return message;
}

void UdpSocket::fail(int error) {
  if (error_ == 0) error_ = error;
}

}  // namespace zrl
