#include "support/fake_service_manager.h"

#include <algorithm>
#include <csignal>
#include <fstream>
#include <functional>
#include <stdexcept>

#include <fcntl.h>
#include <fnmatch.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace zrl::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* manager_name = "org.freedesktop.systemd1";
constexpr const char* manager_path = "/org/freedesktop/systemd1";
constexpr const char* unit_path = "/org/freedesktop/systemd1/unit/any";

void require(int result, const char* what) {
  if (result < 0) throw std::runtime_error(std::string(what) + " failed: " + std::to_string(-result));
}

std::vector<std::string> read_texts(sd_bus_message* call) {
  std::vector<std::string> result;
  const char* text = nullptr;
  require(sd_bus_message_enter_container(call, 'a', "s"), "reading");
  while (sd_bus_message_read_basic(call, 's', static_cast<void*>(&text)) > 0) result.emplace_back(text);
  require(sd_bus_message_exit_container(call), "reading");
  return result;
}

bool is_among(const std::vector<std::string>& patterns, const std::string& name) {
  return std::ranges::any_of(patterns, [&](const std::string& pattern) {
    return ::fnmatch(pattern.c_str(), name.c_str(), FNM_NOESCAPE) == 0;
  });
}

}  // namespace

FakeServiceManager::FakeServiceManager(std::chrono::milliseconds takes) : takes_(takes) {
  start_bus();
  join_bus();
  thread_ = std::thread([this] { serve(); });
}

FakeServiceManager::~FakeServiceManager() {
  stopping_ = true;
  thread_.join();
  sd_bus_close_unref(bus_);
  end_bus();
}

// The bus ends with this process, however that ends.
void FakeServiceManager::start_bus() {
  const std::string config = folder_.path() / "bus.conf";
  std::ofstream(config) << "<busconfig><type>custom</type><listen>" << address()
                        << "</listen><auth>EXTERNAL</auth><policy context='default'><allow user='*'/>"
                           "<allow own='*'/><allow send_destination='*'/><allow receive_sender='*'/>"
                           "</policy></busconfig>\n";
  const std::string option = "--config-file=" + config;
  daemon_ = ::fork();
  if (daemon_ != 0) return;
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
  ::execl("/usr/bin/dbus-daemon", "dbus-daemon", option.c_str(), "--nofork", nullptr);
  ::_exit(127);
}

void FakeServiceManager::end_bus() {
  if (daemon_ == 0) return;
  ::kill(daemon_, SIGKILL);
  ::waitpid(daemon_, nullptr, 0);
  daemon_ = 0;
}

void FakeServiceManager::join_bus() {
  const Clock::time_point end = Clock::now() + std::chrono::seconds(10);
  for (;;) {
    require(sd_bus_new(&bus_), "making a bus");
    sd_bus_set_address(bus_, address().c_str());
    sd_bus_set_bus_client(bus_, 1);
    if (sd_bus_start(bus_) >= 0) break;
    sd_bus_unref(bus_);
    if (Clock::now() > end) throw std::runtime_error("dbus-daemon does not start");
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  const auto answer_call = [](sd_bus_message* call, void* self, sd_bus_error*) {
    return static_cast<FakeServiceManager*>(self)->answer(call);
  };
  require(sd_bus_add_fallback(bus_, nullptr, manager_path, answer_call, this), "adding objects");
  require(sd_bus_request_name(bus_, manager_name, 0), "taking the manager's name");
}

void FakeServiceManager::serve() {
  while (!stopping_) {
    const int progress = sd_bus_process(bus_, nullptr);
    if (progress < 0) return;
    constexpr std::uint64_t nap_microseconds = 5000;
    if (progress == 0) sd_bus_wait(bus_, nap_microseconds);
  }
}

void FakeServiceManager::add(const std::string& name, bool running, const std::string& load) {
  const std::scoped_lock lock(mutex_);
  units_.push_back({name, load, running});
}

void FakeServiceManager::finish() {
  const std::scoped_lock lock(mutex_);
  for (Unit& unit : units_) {
    if (unit.changed) unit.changed = Clock::now();
  }
}

std::vector<std::string> FakeServiceManager::orders() {
  const std::scoped_lock lock(mutex_);
  return orders_;
}

const char* FakeServiceManager::Unit::active() const {
  if (changed) return running ? "deactivating" : "activating";
  return running ? "active" : "inactive";
}

const char* FakeServiceManager::Unit::sub() const {
  if (changed) return running ? "stop-sigterm" : "start-pre";
  return running ? "running" : "dead";
}

FakeServiceManager::Unit* FakeServiceManager::find(const std::string& name) {
  const auto found = std::ranges::find(units_, name, &Unit::name);
  return found == units_.end() ? nullptr : &*found;
}

void FakeServiceManager::settle() {
  for (Unit& unit : units_) {
    if (!unit.changed || Clock::now() < *unit.changed) continue;
    unit.running = !unit.running;
    unit.changed.reset();
  }
}

int FakeServiceManager::order(sd_bus_message* call, const std::string& member) {
  const char* name = nullptr;
  const char* mode = nullptr;
  require(sd_bus_message_read(call, "ss", &name, &mode), "reading");
  orders_.push_back(member + " " + name + " " + mode);
  if (manner_ == Manner::denying) {
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_INTERACTIVE_AUTHORIZATION_REQUIRED,
                                      "Interactive authentication required.");
  }
  Unit* unit = find(name);
  if (unit == nullptr) return sd_bus_reply_method_errorf(call, "org.freedesktop.systemd1.NoSuchUnit", "No");
  if (unit->running != (member == "StartUnit")) unit->changed = Clock::now() + takes_;
  return sd_bus_reply_method_return(call, "o", "/org/freedesktop/systemd1/job/1");
}

int FakeServiceManager::answer(sd_bus_message* call) {
  const std::scoped_lock lock(mutex_);
  const std::string member = sd_bus_message_get_member(call);
  if (manner_ == Manner::silent) return 1;
  if (manner_ == Manner::babbling) return sd_bus_reply_method_return(call, "a(su)", 1, "x", 1U);
  if (manner_ == Manner::vanishing) return sd_bus_close(bus_), 1;
  settle();
  if (member == "Get") return sd_bus_reply_method_return(call, "v", "t", state_time);
  if (member == "StartUnit" || member == "StopUnit") return order(call, member);

  const bool by_name = member == "ListUnitsByNames";
  const bool files = member == "ListUnitFilesByPatterns";
  if (!by_name) read_texts(call);  // no states are asked for
  const std::vector<std::string> wanted = read_texts(call);
  sd_bus_message* reply = nullptr;
  require(sd_bus_message_new_method_return(call, &reply), "answering");
  require(sd_bus_message_open_container(reply, 'a', files ? "(ss)" : "(ssssssouso)"), "answering");
  for (const Unit& unit : units_) {
    const bool loaded = unit.running || unit.changed || unit.load == "not-found";
    if (!is_among(wanted, unit.name) || (files ? unit.load == "not-found" : !by_name && !loaded)) continue;
    if (files) {
      sd_bus_message_append(reply, "(ss)", ("/lib/systemd/system/" + unit.name).c_str(), "enabled");
    } else {
      sd_bus_message_append(reply, "(ssssssouso)", unit.name.c_str(), "", unit.load.c_str(), unit.active(),
                            unit.sub(), "", unit_path, unit.changed ? 1U : 0U, "", "/");
    }
  }
  sd_bus_message_close_container(reply);
  const int sent = sd_bus_send(nullptr, reply, nullptr);
  sd_bus_message_unref(reply);
  return sent < 0 ? sent : 1;
}

}  // namespace zrl::test
