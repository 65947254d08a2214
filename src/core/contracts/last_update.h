#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// When the lists were last fetched from the update server, and how that went: a file in the console's folder,
// written by the downloader and read by pages.
namespace zrl {

struct LastUpdate {
  std::int64_t time = 0;  // seconds since 1970, UTC
  std::string problem;    // UTF-8, for people; empty if every published file was fetched
};

// Nothing if there was no update yet, or if the file cannot be read or understood.
std::optional<LastUpdate> read_last_update(const std::filesystem::path& folder);
// Replaces the file. It is for information only, so a failure is not reported.
void write_last_update(const std::filesystem::path& folder, const LastUpdate& update);

}  // namespace zrl
