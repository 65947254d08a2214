#pragma once

#include <string>
#include <string_view>

namespace zrl {

// Fetches published lists and scripts from the update server. Blocks until it has finished.
class Downloader {
 public:
  static constexpr std::string_view program_id = "zrlautoupdate.downloader";

  virtual ~Downloader() = default;

  // Fetches all list files into the folder "download" and returns a status text.
  virtual std::string updateall() = 0;

  // Fetches the published scripts and merges them into the table `scriptengine`.
  virtual void update_db() = 0;
};

}  // namespace zrl
