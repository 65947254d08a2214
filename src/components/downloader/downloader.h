#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/contracts/console_services.h"
#include "core/contracts/downloader.h"

// Lists and scripts from an update server, over HTTP and HTTPS.
namespace zrl::downloader {

// What a server may cost. Bytes are counted as they arrive on the disk, after decompression.
struct Limits {
  std::uint64_t file_bytes = std::uint64_t{256} << 20;
  std::uint64_t script_bytes = std::uint64_t{8} << 20;
  std::uint64_t total_bytes = std::uint64_t{1} << 30;
  std::chrono::milliseconds connect{10'000};
  std::chrono::milliseconds file{10 * 60'000};
  std::chrono::milliseconds total{20 * 60'000};
  // A transfer that stays below so many bytes a second for so long is given up.
  long least_speed = 100;
  std::chrono::seconds stall{30};
};

struct Options {
  // Certificates that servers are held to (PEM); the system's if empty.
  std::filesystem::path certificates;
  Limits limits;
};

// Files are replaced one by one and as a whole; one that does not arrive, for whatever reason,
// stays as it is on the disk.
//
// The address is "http://..." or "https://...", and may carry a user name and a password, which
// appear in no text. Redirections are followed to http and https only, from https to https only.
// It is the setting "updateurl", read when an update begins. `files` are what updateall() fetches, by their
// names below the address, into the folder "download" of the console's.
//
// The console's events are served while an update runs; what they raise ends it.
std::shared_ptr<Downloader> make(ConsoleServices& console, std::vector<std::string> files,
                                 const Options& options = {});

}  // namespace zrl::downloader
