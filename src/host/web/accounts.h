#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
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

// Runs costly jobs on a few threads of its own. Its destructor drops the jobs that have not begun and waits
// for the others.
class WorkerPool {
 public:
  explicit WorkerPool(std::size_t threads);
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  ~WorkerPool();

  enum class Urgency : std::uint8_t { known, stranger };

  // False if too many jobs of this urgency wait. All of the known are done before those of strangers.
  bool run(Urgency urgency, std::function<void()> job);

 private:
  void work();

  static constexpr std::size_t max_waiting = 16;

  std::mutex mutex_;
  std::condition_variable arrived_;
  std::array<std::deque<std::function<void()>>, 2> jobs_;  // by urgency
  std::vector<std::thread> threads_;
  bool ending_ = false;
};

// The cost of a password's hash (Argon2id, RFC 9106), in libsodium's units: passes, and bytes of memory.
struct PasswordCost {
  unsigned long long operations = 3;
  std::size_t memory_bytes = 64 << 20;
};

// The accounts with the Argon2id hashes of their passwords, in a file that only its owner can read. To be
// used on the I/O thread. Hashing, of at most two passwords at a time, and writing the file are done on other
// threads.
class Accounts {
 public:
  // `loop` must outlive it. Raises std::runtime_error if the file exists and cannot be read.
  Accounts(std::filesystem::path file, IoLoop& loop, PasswordCost cost);

  bool empty() const { return hashes_.empty(); }

  static bool is_acceptable_name(std::string_view account);

  // Whether the client has proven that it signed in before.
  using Urgency = WorkerPool::Urgency;

  // `done` is called on the I/O thread, later. False, and `done` is never called, if too many requests wait.
  // An unknown account takes as long as a wrong password.
  bool verify(const std::string& account, std::string password, Urgency urgency,
              std::function<void(bool)> done);

  enum class Creation { created, exists_already, not_saved };
  // Makes the first account; `done` is called on the I/O thread. False as with verify().
  bool create_first(const std::string& account, std::string password, std::function<void(Creation)> done);

  // Changes an account's password; `done` gets true if it was saved. False as with verify(), and also while
  // another password is being saved.
  bool change(const std::string& account, std::string password, std::function<void(bool)> done);

 private:
  using Hashes = std::map<std::string, std::string, std::less<>>;

  void load();
  // Saves the accounts, with this one's new password, on another thread. The accounts in memory change
  // afterwards.
  bool store(const std::string& account, std::string password, std::function<void(bool)> done);

  const std::filesystem::path file_;
  IoLoop& loop_;
  const PasswordCost cost_;
  Hashes hashes_;
  bool saving_ = false;
  WorkerPool workers_;
};

// The secret with which the person who started the program chooses the first password. Only a digest is kept.
class SetupSecret {
 public:
  // Makes a new secret, which replaces the one before, and returns it. It cannot be read again.
  std::string make();
  bool is(std::string_view text) const;

 private:
  std::string digest_;
};

}  // namespace zrl::web
