#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "core/contracts/console_services.h"

struct ares_channeldata;

namespace zrl::dns {

class DnsSockets;

// Queries that are under way at the same time, on a channel of their own. Queries are numbered from 0
// in the order of their start.
class DnsQueries {
 public:
  struct Reply {
    int status = 0;                     // ARES_SUCCESS, ARES_ENOTFOUND, ...
    std::vector<std::uint8_t> message;  // the answer as it came; empty without success
  };

  // Asks the servers of the console's own look-up of names, within its time-out and the limit. Raises
  // zrl::Error if there is no server to ask. The console must outlive this.
  explicit DnsQueries(ConsoleServices& console,
                      std::chrono::milliseconds limit = std::chrono::milliseconds::max());
  DnsQueries(const DnsQueries&) = delete;
  DnsQueries& operator=(const DnsQueries&) = delete;
  ~DnsQueries();

  // `type` is that of the records wanted (RFC 1035, section 3.2.2). Names are asked for as they are, without
  // search domains, whatever characters are in them.
  std::size_t start(const std::string& name, int type);

  // Waits a moment and takes what has come meanwhile; between many starts, so that neither side's
  // socket gets more at once than its buffer holds.
  void pause();

  // Waits until all queries have ended. Those that have not when the time is up end with
  // ARES_ETIMEOUT.
  void finish();

  // Valid for a query that has ended.
  const Reply& operator[](std::size_t query) const { return pending_[query].reply; }

 private:
  struct Pending {
    Reply reply;
    DnsQueries* owner;
    std::string asked;
    int type;
  };

  static void ended(void* pending, int status, int timeouts, unsigned char* message, int size);
  bool serve_events();
  void process(std::chrono::milliseconds wait);

  ConsoleServices& console_;
  std::chrono::milliseconds timeout_{};
  std::deque<Pending> pending_;  // the channel keeps their addresses
  std::size_t unfinished_ = 0;
  std::unique_ptr<DnsSockets> sockets_;
  ares_channeldata* channel_ = nullptr;
};

// What a status of c-ares means, in words.
std::string dns_status_text(int status);

}  // namespace zrl::dns
