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

// Queries that run at the same time, on a channel of their own. They are numbered from 0 in the order of
// their start. The console's events are served while pause() and finish() wait; what they raise is passed on.
class DnsQueries {
 public:
  struct Reply {
    int status = 0;                     // ARES_SUCCESS, ARES_ENOTFOUND, ...
    std::vector<std::uint8_t> message;  // the answer as it came; empty without success
  };

  // Asks the servers of the console's own name look-up; each query has its time-out, but never more than
  // `limit`. Raises zrl::Error if there is no server to ask. The console must outlive this.
  explicit DnsQueries(ConsoleServices& console,
                      std::chrono::milliseconds limit = std::chrono::milliseconds::max());
  DnsQueries(const DnsQueries&) = delete;
  DnsQueries& operator=(const DnsQueries&) = delete;
  ~DnsQueries();

  // Starts a query and returns its number. `type` is the record type (RFC 1035, section 3.2.2). The name is
  // used as it is: no search domain is added, and any character is allowed. A failure to send is a status, no
  // error.
  std::size_t start(const std::string& name, int type);

  // Waits a moment and processes the answers so far. To be called between many starts, so that no socket gets
  // more at once than its buffer holds.
  void pause();

  // Waits until all queries have ended. Those without an answer in time end with ARES_ETIMEOUT.
  void finish();

  // The reply to a query that has ended, until this object is destroyed.
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

// A status of c-ares as an English text.
std::string dns_status_text(int status);

}  // namespace zrl::dns
