#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "net/dns_message.h"
#include "net/resolver_file.h"

namespace zrl {

// A UDP socket that talks to one server: datagrams from other addresses or ports never arrive.
// Nothing blocks.
class UdpSocket {
 public:
  explicit UdpSocket(const DnsServer& server);
  UdpSocket(const UdpSocket&) = delete;
  UdpSocket& operator=(const UdpSocket&) = delete;
  ~UdpSocket();

  bool send(DnsBytes message);
  // The next datagram that waits, cut at `limit` bytes; nothing if there is none.
  std::optional<std::vector<std::uint8_t>> receive(std::size_t limit);

  // The number (errno) of the first operation that failed, or 0.
  int error() const { return error_; }

 private:
  void fail(int error);

  int handle_ = -1;
  int error_ = 0;
};

}  // namespace zrl
