#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "components/downloader/downloader.h"

namespace zrl::downloader {

// Receives the bytes of a file, in order. Either operation may raise zrl::Error, which fails the file.
class FetchTarget {
 public:
  virtual ~FetchTarget() = default;

  virtual void write(std::string_view bytes) = 0;
  // Called once, after the last byte. Not called for a file that failed.
  virtual void complete() {}
};

// A file to be fetched, and the outcome. `target` must outlive the fetch; the address may contain a password.
struct FetchJob {
  enum class Outcome : std::uint8_t { fetched, not_published, failed };

  std::string url;
  FetchTarget* target = nullptr;
  std::uint64_t byte_limit = 0;

  Outcome outcome = Outcome::failed;
  std::uint64_t bytes = 0;
  std::string reason;  // why it failed, printable
};

struct FetchProgress {
  std::size_t finished = 0;
  std::size_t files = 0;
  std::uint64_t bytes = 0;
};

struct FetchSettings {
  Limits limits;
  std::filesystem::path certificates;
  bool encrypted_only = false;
  // Called about every 20 ms on the caller's thread; what it raises ends the run and is passed on.
  std::function<void(const FetchProgress&)> tick;
};

// Fetches the files, a few at a time, and returns when the last one has arrived or failed. The failure of a
// file is in its job and is no error of this call. If a server does not answer at all, the remaining files
// fail without a further attempt.
void fetch(std::span<FetchJob> jobs, const FetchSettings& settings);

}  // namespace zrl::downloader
