#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "core/contracts/console_services.h"
#include "core/contracts/name_lookup.h"
#include "core/text/error.h"

namespace zrl::test {

// What a component gets of its console, as a test wants it. It has no components of its own.
class FakeServices : public ConsoleServices {
 public:
  // Servers and a time-out; looks no names up but hosts, where `find_address` is set.
  class Names : public NameLookup {
   public:
    StringList mail_exchangers(std::string_view) override { throw Error(1, "no mail exchanger"); }
    std::string host_address(std::string_view host) override {
      return find_address ? find_address(host) : throw Error(1, "no address");
    }
    std::vector<std::string> servers() override { return told_servers; }
    std::chrono::milliseconds time_out() override { return told_time_out; }
    bool asks_only_servers() const override { return find_address != nullptr; }

    std::vector<std::string> told_servers;
    std::chrono::milliseconds told_time_out{5000};
    std::function<std::string(std::string_view host)> find_address;
  };

  explicit FakeServices(std::filesystem::path folder = {}) : folder_(std::move(folder)) {}

  const std::filesystem::path& folder() const override { return folder_; }
  std::string setting(std::string_view name) override { return settings[std::string(name)]; }
  ComponentRegistry& components() override { return registry; }
  NameLookup& names() override { return lookup; }
  std::string regex_match(std::string_view entry, std::string_view text) override {
    return match ? match(entry, text) : std::string();
  }
  void wait(std::chrono::milliseconds time) override {
    ++waits;
    if (on_wait) on_wait();
    if (sleeps) std::this_thread::sleep_for(time);
  }
  void process_events() override {
    ++yields;
    if (on_process_events) on_process_events();
  }
  void show_progress(const Progress& progress) override {
    if (on_progress) on_progress(progress);
  }
  void record_failure(std::string_view step, std::string_view problem) override {
    failures.push_back(std::string(step) + ": " + std::string(problem));
  }

  std::map<std::string, std::string> settings{{"dataprovider", "sqlite:zrl.db"}};
  ComponentRegistry registry;
  Names lookup;
  std::function<std::string(std::string_view entry, std::string_view text)> match;
  std::function<void()> on_wait;
  std::function<void()> on_process_events;
  std::function<void(const Progress&)> on_progress;
  bool sleeps = true;  // wait() takes its time
  int waits = 0;
  int yields = 0;
  std::vector<std::string> failures;

 private:
  std::filesystem::path folder_;
};

}  // namespace zrl::test
