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

// What a server may cost. Bytes are counted as they are written to the disk, after decompression. A file that
// exceeds a limit of its own fails alone; the two totals end the whole update.
struct Limits {
  std::uint64_t file_bytes = std::uint64_t{256} << 20;  // a list file
  std::uint64_t script_bytes = std::uint64_t{8} << 20;  // the file of all scripts
  std::uint64_t total_bytes = std::uint64_t{1} << 30;
  std::chrono::milliseconds connect{10'000};
  std::chrono::milliseconds file{10 * 60'000};
  std::chrono::milliseconds total{20 * 60'000};
  // A transfer fails when it stays below this many bytes a second for the time that follows.
  long least_speed = 100;
  std::chrono::seconds stall{30};
};

struct Options {
  // A PEM file with the authorities that a server's certificate must come from; if empty, the system's.
  std::filesystem::path certificates;
  Limits limits;
};

// The server's address is the setting "updateurl" (ConsoleServices::setting()), read when an update begins:
// "http://..." or "https://...". It may contain a user name and a password, which appear in no status and no
// error. Redirections are followed to http and https only, and from https to https only.
//
// `files` are what updateall() fetches. A name is both the path below the address and the file's name in the
// sub-folder "download" of the console's folder, which is made if it is missing. Each file is replaced as a
// whole, by a rename; one that does not arrive complete, or that is no list file, stays as it
// is on the disk: a web page, XML, JSON, a control character or a line of more than longest_list_line bytes.
// update_db() fetches "scripts.json" from the same address and keeps no copy of it.
//
// Calls block. The console's events are served meanwhile, and progress is shown; what the handlers raise ends
// the update and is passed on, without a trace of the files under way. The object belongs to the console's
// thread and must not outlive the console.
std::shared_ptr<Downloader> make(ConsoleServices& console, std::vector<PublishedFile> files,
                                 const Options& options = {});

}  // namespace zrl::downloader
