#pragma once

#include <map>
#include <string>
#include <thread>
#include <vector>

#include "components/block_lists/block_list_components.h"
#include "support/dns_server.h"

namespace zrl::test {

// Tables of zones, a DNS server that knows what they list, and what the components report.
struct ZoneTables {
  BlockListSettings settings() {
    BlockListSettings result;
    result.dns = {[this] { return servers; }, [this] { return timeout; },
                  [this](std::chrono::milliseconds time) {
                    if (on_wait) on_wait();
                    std::this_thread::sleep_for(time);
                  }};
    result.entries = [this](Literal table) {
      StringList entries;
      for (const std::string& zone : tables[std::string(table.text())]) entries.push_back(zone);
      return entries;
    };
    result.report = [this](std::string_view what, std::string_view problem) {
      reports.push_back(std::string(what) + ": " + std::string(problem));
    };
    return result;
  }

  FakeDnsServer server;
  std::vector<std::string> servers{"127.0.0.1:" + std::to_string(server.port())};
  std::chrono::milliseconds timeout{5000};
  std::function<void()> on_wait;
  std::map<std::string, std::vector<std::string>> tables;
  std::vector<std::string> reports;
};

}  // namespace zrl::test
