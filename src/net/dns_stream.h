#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "net/dns_message.h"
#include "net/resolver_file.h"

namespace zrl {

// One query over TCP (RFC 7766), for an answer that did not fit into a datagram: a connection of its own, on
// which each message has its length before it. No call blocks or raises an error; after the first failure
// there will be no answer, and error() says why.
class DnsStream {
 public:
  // Begins to connect to the server's address and port. The query is copied.
  DnsStream(const DnsServer& server, DnsBytes query);
  DnsStream(const DnsStream&) = delete;
  DnsStream& operator=(const DnsStream&) = delete;
  ~DnsStream();

  // Sends and receives what can be. To be called until it returns the answer, which may have any content, or
  // the stream has failed.
  std::optional<std::vector<std::uint8_t>> take_answer();

  // The number (errno) of the first operation that failed, or 0. A connection that the server closed before
  // the end of its answer is ECONNRESET.
  int error() const { return error_; }

 private:
  void send();
  bool receive();
  void fail(int error);

  std::vector<std::uint8_t> unsent_;
  std::vector<std::uint8_t> received_;
  int handle_ = -1;
  int error_ = 0;
};

}  // namespace zrl
