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
// The first two members are required. A missing position is "NEVER", a missing number 0. Other members are
// ignored. The text is UTF-8 (RFC 8259). Raises zrl::Error with the reason if the text has another form or a
// name occurs twice.
std::vector<PublishedScript> read_published_scripts(std::string_view json);

}  // namespace zrl::downloader
