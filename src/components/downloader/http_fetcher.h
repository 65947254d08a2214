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

// Where the bytes of a file go. Either operation may raise zrl::Error, which fails the file.
class FetchTarget {
 public:
  virtual ~FetchTarget() = default;

  virtual void write(std::string_view bytes) = 0;
  // All bytes have been written.
  virtual void complete() {}
};

// A file to be fetched, and what became of it.
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
  // Called now and then; what it raises ends the run.
  std::function<void(const FetchProgress&)> tick;
};

// Fetches the files, some at a time, and returns when the last one has arrived or failed. A server
// that does not answer at all is tried no longer than it takes to find that out once.
void fetch(std::span<FetchJob> jobs, const FetchSettings& settings);

}  // namespace zrl::downloader
