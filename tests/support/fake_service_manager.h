#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "support/temporary_folder.h"

struct sd_bus;
struct sd_bus_message;

namespace zrl::test {

// A message bus of its own and, on it, a stand-in for systemd's manager, which knows as many units as
// it is told of and answers as badly as it is told.
class FakeServiceManager {
 public:
  enum class Manner {
    obliging,
    denying,    // refuses orders for lack of permission
    silent,     // never answers
    vanishing,  // leaves the bus instead of answering
    babbling,   // answers with something else
  };

  // Since when units are in their state, in microseconds since 1970.
  static constexpr std::uint64_t state_time = 1'700'000'000'000'000;

  // Starting and stopping take this time, or until finish().
  explicit FakeServiceManager(std::chrono::milliseconds takes = std::chrono::hours(1));
  FakeServiceManager(const FakeServiceManager&) = delete;
  FakeServiceManager& operator=(const FakeServiceManager&) = delete;
  ~FakeServiceManager();

  // What DBUS_SYSTEM_BUS_ADDRESS must be to lead here.
  std::string address() const { return "unix:path=" + (folder_.path() / "bus").string(); }

  // A unit with a file. Units that are not running are forgotten, until they are asked for by name.
  void add(const std::string& name, bool running, const std::string& load = "loaded");
  void set_manner(Manner manner) { manner_ = manner; }
  void finish();
  void end_bus();

  // What was ordered: "StartUnit mirvan.service replace".
  std::vector<std::string> orders();

 private:
  struct Unit {
    std::string name;
    std::string load;
    bool running;
    std::optional<std::chrono::steady_clock::time_point> changed = {};  // when the order will be done

    const char* active() const;
    const char* sub() const;
  };

  void start_bus();
  void join_bus();
  void serve();
  Unit* find(const std::string& name);
  void settle();
  int answer(sd_bus_message* call);
  int order(sd_bus_message* call, const std::string& member);

  TemporaryFolder folder_;
  std::chrono::milliseconds takes_;
  pid_t daemon_ = 0;
  sd_bus* bus_ = nullptr;
  std::mutex mutex_;
  std::vector<Unit> units_;
  std::vector<std::string> orders_;
  std::atomic<Manner> manner_ = Manner::obliging;
  std::atomic<bool> stopping_ = false;
  std::thread thread_;
};

}  // namespace zrl::test
