#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/contracts/database.h"
#include "core/contracts/downloader.h"
#include "core/contracts/host.h"

// Lists and scripts from an update server, over HTTP and HTTPS.
namespace zrl {

// What a server may cost. Bytes are counted as they arrive on the disk, after decompression.
struct DownloadLimits {
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

struct DownloaderSettings {
  std::filesystem::path folder;    // the console's; files go into its folder "download"
  std::vector<std::string> files;  // what updateall() fetches, by the names below the address

  // The server's address, asked for when an update begins.
  std::function<std::string()> address;
  // The database that update_db() merges into.
  std::function<std::shared_ptr<Database>()> database;
  std::function<std::string()> provider;

  // Called now and then while an update runs. `serve` lets waiting events run; what it raises ends
  // the update. Both may be empty.
  std::function<void()> serve;
  std::function<void(const Progress&)> report;

  // Certificates that servers are held to (PEM); the system's if empty.
  std::filesystem::path certificates;
  DownloadLimits limits;
};

// Files are replaced one by one and as a whole; one that does not arrive, for whatever reason,
// stays as it is on the disk.
//
// The address is "http://..." or "https://...", and may carry a user name and a password, which
// appear in no text. Redirections are followed to http and https only, from https to https only.
std::shared_ptr<Downloader> make_downloader(DownloaderSettings settings);

}  // namespace zrl
