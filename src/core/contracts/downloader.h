#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/contracts/list_tables.h"

namespace zrl {

// A list file of the update server: its name, without a folder, and what its lines are.
struct PublishedFile {
  std::string name;
  ListKind kind;
};

// Fetches published lists and scripts from the update server, which the registry value `updateurl` names.
// Calls return when all transfers have ended; the console's events are served meanwhile, and what they raise
// ends the call.
class Downloader {
 public:
  static constexpr std::string_view program_id = "zrlautoupdate.downloader";

  virtual ~Downloader() = default;

  // Fetches all list files into the folder "download" of the console's folder and returns a status text
  // (UTF-8): how many were fetched, and the result for each file on a line of its own. A file that the server
  // does not publish, that does not arrive complete, or that is no list file (but a web page, XML, JSON or
  // binary) stays as it is on the disk. Raises zrl::Error if none was fetched. Notes when it ended, and how,
  // see last_update.h.
  virtual std::string updateall() = 0;

  // The files that the last updateall() did not fetch although they may be published, with the reason as
  // UTF-8 for people.
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
