#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zrl {

// Fetches published lists and scripts from the update server. Blocks until it has finished.
class Downloader {
 public:
  static constexpr std::string_view program_id = "zrlautoupdate.downloader";

  virtual ~Downloader() = default;

  // Fetches all list files into the folder "download" and returns a status text: how many came,
  // and on a line of its own what became of each. A file that the server does not publish, or that
  // does not arrive complete, stays as it is on the disk. Raises zrl::Error if none was fetched.
  virtual std::string updateall() = 0;

  // The files that the last updateall() did not get although they may be published.
  struct Failure {
    std::string file;
    std::string reason;
  };
  virtual std::vector<Failure> failures() const { return {}; }

  // Fetches the published scripts and merges them into the table `scriptengine`: a script of the
  // same name is replaced, others stay. One transaction; raises zrl::Error if it fails.
  virtual void update_db() = 0;
};

}  // namespace zrl
