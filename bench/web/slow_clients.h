#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>
#include <thread>
#include <vector>

namespace zrl::bench {

// Clients that hold connections to a port of this machine, each from a loopback address of its own, on a
// thread of its own. A connection that the server cuts is opened again at once.
class SlowClients {
 public:
  enum class Kind : std::uint8_t {
    silent,  // send nothing
    slow,    // send a request by one byte a second
    greedy,  // ask for a page again and again, and don't read it
  };

  SlowClients(std::uint16_t port, std::size_t count, Kind kind);
  SlowClients(const SlowClients&) = delete;
  SlowClients& operator=(const SlowClients&) = delete;
  ~SlowClients();

  // How many connections were opened, the first ones included.
  std::uint64_t opened() const { return opened_; }

 private:
  struct Client {
    int socket = -1;
    std::size_t sent = 0;
  };

  void open(std::size_t number);
  void run();

  const std::uint16_t port_;
  const Kind kind_;
  std::vector<Client> clients_;
  std::atomic<std::uint64_t> opened_ = 0;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

}  // namespace zrl::bench
