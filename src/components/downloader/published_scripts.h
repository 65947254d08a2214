#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zrl::downloader {

struct PublishedScript {
  std::string name;     // 1 to 255 bytes, fit for a statement
  std::string content;  // UTF-8
  std::string position;
  std::int32_t priority = 0;
  std::int32_t visible = 0;
};

// Reads an array of objects with the columns of the table `scriptengine`:
//
//   [{"scriptname": "check_net", "scriptcontent": "Function ...", "sposition": "CONNECT",
//     "prio": 10, "svisible": 1}, ...]
//
// The first two must be there. Without a position a script belongs to "NEVER"; numbers are 0
// where they are missing. Other members are ignored. Raises zrl::Error, which tells what is
// wrong, if anything else is met or a name stands there twice.
std::vector<PublishedScript> read_published_scripts(std::string_view json);

}  // namespace zrl::downloader
