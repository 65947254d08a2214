#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace zrl {

// What look-ups need from the console that they work for.
struct DnsSurroundings {
  // Where the servers listen: "192.0.2.1:53", "[2001:db8::1]:53".
  std::function<std::vector<std::string>()> servers;
  // How long the queries of one call may take in all.
  std::function<std::chrono::milliseconds()> timeout;
  // Returns after this time, the event loop served meanwhile.
  std::function<void(std::chrono::milliseconds)> wait;
};

}  // namespace zrl
