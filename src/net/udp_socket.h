#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "net/dns_message.h"
#include "net/resolver_file.h"

namespace zrl {

// A UDP socket (RFC 768) that is connected to one server: datagrams from other addresses or ports never
// arrive. It is bound to a port that the system chooses. No call blocks or raises an error; after the first
// failure, all further operations fail, and error() says why.
class UdpSocket {
 public:
  // Opens and connects the socket. An address that cannot be read is EADDRNOTAVAIL.
  explicit UdpSocket(const DnsServer& server);
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;
  ~UdpSocket();

  // Sends one datagram. True means that the system accepted it, not that it arrives.
  bool send(DnsBytes message);
  // The next datagram that has arrived, cut at `limit` bytes; nothing if there is none yet or the socket has
  // failed, because nobody listens at the server's port for example.
  std::optional<std::vector<std::uint8_t>> receive(std::size_t limit);

  // The number (errno) of the first operation that failed, or 0.
  int error() const { return error_; }

 private:
  void fail(int error);

  int handle_ = -1;
  int error_ = 0;
};

}  // namespace zrl
