#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/web/transport.h"

namespace zrl::web {

// Runs costly jobs on a few threads of its own. What waits is dropped at its end.
class WorkerPool {
 public:
  explicit WorkerPool(std::size_t threads);
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  ~WorkerPool();

  // False if too many jobs wait.
  bool run(std::function<void()> job);

 private:
  void work();

  static constexpr std::size_t max_waiting = 16;

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::function<void()>> jobs_;
  std::vector<std::thread> threads_;
  bool ending_ = false;
};

// What a password's hash costs; libsodium's units.
struct PasswordCost {
  unsigned long long operations = 3;
  std::size_t memory_bytes = 64 << 20;
};

// The accounts in a file that only its owner reads, with their passwords' Argon2id hashes. Used on
// the I/O thread; passwords are hashed, two at most at a time, and the file is written elsewhere.
class Accounts {
 public:
  // `loop` must outlive it. Raises std::runtime_error if there is a file that cannot be read.
  Accounts(std::filesystem::path file, IoLoop& loop, PasswordCost cost);

  bool empty() const { return hashes_.empty(); }

  static bool is_acceptable_name(std::string_view account);
  static bool is_acceptable_password(std::string_view password);

  // `done` is called on the I/O thread. False, and no call, if too many wait to be verified.
  bool verify(const std::string& account, std::string password, std::function<void(bool)> done);

  enum class Creation { created, exists_already, not_saved };
  // Makes the first account; `done` is called on the I/O thread. False as with verify().
  bool create_first(const std::string& account, std::string password, std::function<void(Creation)> done);

  // Gives an account another password; true is passed on if it was saved. False as with verify(), and
  // while another one is being saved.
  bool change(const std::string& account, std::string password, std::function<void(bool)> done);

 private:
  using Hashes = std::map<std::string, std::string, std::less<>>;

  void load();
  // Saves the accounts with this one's new password, elsewhere; what is held changes when that is done.
  bool store(const std::string& account, std::string password, std::function<void(bool)> done);

  const std::filesystem::path file_;
  IoLoop& loop_;
  const PasswordCost cost_;
  Hashes hashes_;
  bool saving_ = false;
  WorkerPool workers_;
};

// The text that lets whoever started the program choose the first password. Kept as a digest.
class SetupSecret {
 public:
  // Makes a new one and returns it, the only time that it is seen.
  std::string make();
  bool is(std::string_view text) const;

 private:
  std::string digest_;
};

}  // namespace zrl::web
