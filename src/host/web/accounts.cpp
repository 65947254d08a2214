#include "host/web/accounts.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <stdexcept>

#include <sodium.h>

#include "core/text/files.h"
#include "core/text/printable.h"
#include "core/text/text.h"

namespace zrl::web {

namespace {

namespace json = boost::json;
namespace fs = std::filesystem;

constexpr std::size_t hashing_threads = 2;
constexpr std::size_t longest_name = 64;
constexpr std::size_t longest_file = 16 << 20;
constexpr std::size_t secret_letters = 20;

std::string hash_of(std::string_view password, const PasswordCost& cost) {
  std::array<char, crypto_pwhash_STRBYTES> text{};
  if (::crypto_pwhash_str(text.data(), password.data(), password.size(), cost.operations,
                          cost.memory_bytes) != 0) {
    throw std::bad_alloc();
  }
  return text.data();
}

void forget(std::string& password) {
  ::sodium_memzero(password.data(), password.size());
}

std::string text_of(const std::map<std::string, std::string, std::less<>>& hashes) {
  json::array accounts;
  for (const auto& [name, hash] : hashes)
    accounts.push_back(json::object{{"name", name}, {"password", hash}});
  return json::serialize(json::object{{"accounts", std::move(accounts)}}) + "\n";
}

std::string digest(std::string_view text) {
  std::array<unsigned char, crypto_generichash_BYTES> bytes{};
  ::crypto_generichash(bytes.data(), bytes.size(), reinterpret_cast<const unsigned char*>(text.data()),
                       text.size(), nullptr, 0);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

WorkerPool::WorkerPool(std::size_t threads) {
  for (std::size_t i = 0; i < threads; ++i) threads_.emplace_back([this] { work(); });
}

WorkerPool::~WorkerPool() {
  {
    const std::scoped_lock lock(mutex_);
    ending_ = true;
    for (auto& jobs : jobs_) jobs.clear();
  }
  arrived_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool WorkerPool::run(Urgency urgency, std::function<void()> job) {
  {
    const std::scoped_lock lock(mutex_);
    auto& jobs = jobs_.at(static_cast<std::size_t>(urgency));
    if (jobs.size() >= max_waiting) return false;
    jobs.push_back(std::move(job));
  }
  arrived_.notify_one();
  return true;
}

void WorkerPool::work() {
  for (;;) {
    std::function<void()> job;
    {
      std::unique_lock lock(mutex_);
      const auto next = [this] {
        return std::find_if(jobs_.begin(), jobs_.end(), [](const auto& jobs) { return !jobs.empty(); });
      };
      arrived_.wait(lock, [&] { return ending_ || next() != jobs_.end(); });
      if (ending_) return;
      job = std::move(next()->front());
      next()->pop_front();
    }
    job();
  }
}

Accounts::Accounts(fs::path file, IoLoop& loop, PasswordCost cost)
    : file_(std::move(file)), loop_(loop), cost_(cost), workers_(hashing_threads) {
  if (fs::exists(file_)) load();
}

void Accounts::load() {
  const std::string text = read_file(file_, longest_file);
  try {
    const json::value held = json::parse(text);
    for (const json::value& entry : held.at("accounts").as_array()) {
      hashes_.emplace(entry.at("name").as_string(), entry.at("password").as_string());
    }
  } catch (const std::exception& failure) {
    throw std::runtime_error("cannot read " + file_.string() + ": " + failure.what());
  }
}

bool Accounts::is_acceptable_name(std::string_view account) {
  return !account.empty() && account.size() <= longest_name && trim(account) == account &&
         printable(account) == account;
}

bool Accounts::verify(const std::string& account, std::string password, Urgency urgency,
                      std::function<void(bool)> done) {
  const auto found = hashes_.find(account);
  std::string hash = found == hashes_.end() ? std::string() : found->second;
  return workers_.run(urgency, [this, hash = std::move(hash), password = std::move(password),
                                done = std::move(done)]() mutable {
    bool right = false;
    try {
      if (hash.empty()) {
        (void)hash_of(password, cost_);  // the time taken does not reveal that the account is unknown
      } else {
        right = ::crypto_pwhash_str_verify(hash.c_str(), password.data(), password.size()) == 0;
      }
    } catch (const std::exception&) {
      right = false;
    }
    forget(password);
    loop_.post([right, done = std::move(done)] { done(right); });
  });
}

bool Accounts::create_first(const std::string& account, std::string password,
                            std::function<void(Creation)> done) {
  if (!empty() || saving_) {
    loop_.post([done = std::move(done)] { done(Creation::exists_already); });
    return true;
  }
  return store(account, std::move(password), [done = std::move(done)](bool saved) {
    done(saved ? Creation::created : Creation::not_saved);
  });
}

bool Accounts::change(const std::string& account, std::string password, std::function<void(bool)> done) {
  return !saving_ && store(account, std::move(password), std::move(done));
}

bool Accounts::store(const std::string& account, std::string password, std::function<void(bool)> done) {
  saving_ = workers_.run(Urgency::known, [this, account, hashes = hashes_, password = std::move(password),
                                          done = std::move(done)]() mutable {
    bool saved = false;
    try {
      hashes.insert_or_assign(account, hash_of(password, cost_));
      replace_file(file_, text_of(hashes), 0600);
      saved = true;
    } catch (const std::exception&) {
      saved = false;
    }
    forget(password);
    loop_.post([this, saved, hashes = std::move(hashes), done = std::move(done)]() mutable {
      saving_ = false;
      if (saved) hashes_ = std::move(hashes);
      done(saved);
    });
  });
  return saving_;
}

std::string SetupSecret::make() {
  static constexpr std::string_view letters = "abcdefghijkmnpqrstuvwxyz23456789";  // none looks like another
  static_assert(letters.size() == 32);
  std::string text;
  for (std::size_t i = 0; i < secret_letters; ++i) {
    if (i != 0 && i % 5 == 0) text += '-';
    text += letters[::randombytes_uniform(static_cast<std::uint32_t>(letters.size()))];
  }
  digest_ = digest(text);
  return text;
}

bool SetupSecret::is(std::string_view text) const {
  const std::string other = digest(lower(trim(text)));
  return digest_.size() == other.size() && ::sodium_memcmp(digest_.data(), other.data(), other.size()) == 0;
}

}  // namespace zrl::web
